_korvex_dao() {
  local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}
  local command= index options= words= files=
  # Of --option=value bash makes three words.
  if [[ $word == = ]]; then
    word=
  elif [[ $previous == = ]]; then
    previous=${COMP_WORDS[COMP_CWORD-2]}
  fi
  for ((index = 1; index < COMP_CWORD; ++index)); do
    if [[ ${COMP_WORDS[index]} != -* ]]; then
      command=${COMP_WORDS[index]}
      break
    fi
  done
  case "$command $previous" in
    'check --format') words='github json sarif short text' ;;
    'check --color') words='always auto never' ;;
    'check --warn') words='not-runnable reading-update lost-where full-scan unread-columns repeated-result-column unyielded-column pack-column unused-definition unused-table empty-list unused-argument unknown-class unknown-property unread-attribute duplicate-name duplicate-version undefined-map unfinished-list-reference ignored-content misplaced-when duplicate-column repeated-property duplicate-argument malformed-argument empty-method doubled-keyword lost-resumable doubtful-value expression-syntax unused-suppression unknown-warning' ;;
    'check --no-warn') words='not-runnable reading-update lost-where full-scan unread-columns repeated-result-column unyielded-column pack-column unused-definition unused-table empty-list unused-argument unknown-class unknown-property unread-attribute duplicate-name duplicate-version undefined-map unfinished-list-reference ignored-content misplaced-when duplicate-column repeated-property duplicate-argument malformed-argument empty-method doubled-keyword lost-resumable doubtful-value expression-syntax unused-suppression unknown-warning' ;;
    'check --schema') words='' ;;
    'check --function') words='' ;;
    'check --collation') words='' ;;
    'check --module') words='' ;;
    'check --indexed') words='' ;;
    'check --models') files=yes ;;
    'check --max-bytes') words='' ;;
    'explain --format') words='markdown text' ;;
    'dump --format') words='json tree' ;;
    'dump --max-bytes') words='' ;;
    'unpack --hex') words='' ;;
    'unpack --db') files=yes ;;
    'unpack --table') words='' ;;
    'unpack --column') words='' ;;
    'unpack --where') words='' ;;
    'unpack --format') words='json table' ;;
    'run --db') files=yes ;;
    'run --arguments') files=yes ;;
    'run --table') words='' ;;
    'run --format') words='csv json table' ;;
    'upgrade --db') files=yes ;;
    'sql --schema') words='' ;;
    'sql --function') words='' ;;
    'sql --collation') words='' ;;
    'sql --module') words='' ;;
    'sql --table') words='' ;;
    'schema --format') words='rnc rng xsd' ;;
    'schema --root') words='' ;;
    'lsp --max-bytes') words='' ;;
    *)
      case $command in
        '') options='-h --help --version' words='check explain dump unpack run upgrade sql models schema lsp completion' ;;
        check) options='-h --help --format --color --warn --no-warn --werror --schema --function --collation --module --indexed --models --no-strict --keep-white-space --max-bytes' files=yes ;;
        explain) options='-h --help --format' words='' ;;
        dump) options='-h --help --format --no-strict --keep-white-space --max-bytes' files=yes ;;
        unpack) options='-h --help --hex --db --table --column --where --format' files=yes ;;
        run) options='-h --help --db --arguments --table --format --print-sql --write' words='' ;;
        upgrade) options='-h --help --db' files=yes ;;
        sql) options='-h --help --schema --function --collation --module --plan --table' words='' ;;
        models) options='-h --help' files=yes ;;
        schema) options='-h --help --format --root'  ;;
        lsp) options='-h --help --stdio --max-bytes'  ;;
        completion) options='-h --help' words='bash fish zsh' ;;
      esac
      ;;
  esac
  if [[ $options && $word == -* ]]; then
    words=$options
    files=
  fi
  COMPREPLY=()
  if [[ $files ]]; then
    local IFS=$'\n'
    compopt -o filenames 2>/dev/null
    COMPREPLY=($(compgen -f -- "$word"))
  elif [[ $words ]]; then
    COMPREPLY=($(compgen -W "$words" -- "$word"))
  fi
}
complete -F _korvex_dao korvex-dao
