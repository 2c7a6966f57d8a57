#compdef korvex-dao
_korvex-dao() {
  local context state state_descr line
  local -A opt_args
  local -a commands=(
    'check:Check definition documents and print the findings'
    'explain:Explain a rule, with a wrong and a right example'
    'dump:Print the element trees of a definition document'
    'unpack:Print what a packed column holds'
    'run:Run a method on an SQLite database'
    'upgrade:Upgrade an SQLite database to the newest version'
    'sql:Print the variants of a method as SQL'
    'models:Print the model classes of an app, for '\''check --models'\'''
    'schema:Print a schema of definition documents, for editors'
    'lsp:Serve an editor as a language server'
    'completion:Print a shell completion script for korvex-dao'
  )
  _arguments -C \
    '(-h --help)-h[Print this help message and exit]' \
    '(-h --help)--help[Print this help message and exit]' \
    '(--version)--version[Print the version and exit]' \
    '1:command:->command' \
    '*::argument:->argument'
  case $state in
    command) _describe command commands ;;
    argument)
      case $line[1] in
        check)
          _arguments \
            '(-h --help)-h[Print this help message and exit]' \
            '(-h --help)--help[Print this help message and exit]' \
            '(--format)--format=[The output format\: text (default), short, json, sarif, or github]:WORD:(github json sarif short text)' \
            '(--color)--color=[When to use color\: always, never, or auto (default)\: on a terminal that is not dumb, unless NO_COLOR is set]:WORD:(always auto never)' \
            '*--warn=[Enable the warnings with this name; repeatable]:NAME:(not-runnable reading-update lost-where full-scan unread-columns repeated-result-column unyielded-column pack-column unused-definition unused-table empty-list unused-argument unknown-class unknown-property unread-attribute duplicate-name duplicate-version undefined-map unfinished-list-reference ignored-content misplaced-when duplicate-column repeated-property duplicate-argument malformed-argument empty-method doubled-keyword lost-resumable doubtful-value expression-syntax unused-suppression unknown-warning)' \
            '*--no-warn=[Disable the warnings with this name; repeatable]:NAME:(not-runnable reading-update lost-where full-scan unread-columns repeated-result-column unyielded-column pack-column unused-definition unused-table empty-list unused-argument unknown-class unknown-property unread-attribute duplicate-name duplicate-version undefined-map unfinished-list-reference ignored-content misplaced-when duplicate-column repeated-property duplicate-argument malformed-argument empty-method doubled-keyword lost-resumable doubtful-value expression-syntax unused-suppression unknown-warning)' \
            '(--werror)--werror[Treat warnings as errors]' \
            '(--schema)--schema=[Check all SQL against a schema\: '\''upgrades'\'' for that of the upgrades, an SQL script, or a database]:SOURCE: ' \
            '*--function=[Declare an SQL function of the app, NAME/ARGS; repeatable]:NAME/ARGS: ' \
            '*--collation=[Declare a collation of the app; repeatable]:NAME: ' \
            '*--module=[Declare a module of virtual tables of the app; repeatable]:NAME: ' \
            '*--indexed=[Warn where a statement reads all rows of this table; repeatable]:TABLE: ' \
            '(--models)--models=[Check classes and properties against these\: C++ with model classes, or JSON from '\''models'\'']:FILE:_files' \
            '(--no-strict)--no-strict[Skip the well-formedness check; only for documents that have passed it before]' \
            '(--keep-white-space)--keep-white-space[Keep white-space-only text; maps with indented children are then rejected]' \
            '(--max-bytes)--max-bytes=[The maximum size of a document in bytes (default\: 67108864)]:N: ' \
            '*:PATH:_files'
          ;;
        explain)
          _arguments \
            '(-h --help)-h[Print this help message and exit]' \
            '(-h --help)--help[Print this help message and exit]' \
            '(--format)--format=[The output format\: text (default) or markdown]:WORD:(markdown text)' \
            '::RULE: '
          ;;
        dump)
          _arguments \
            '(-h --help)-h[Print this help message and exit]' \
            '(-h --help)--help[Print this help message and exit]' \
            '(--format)--format=[The output format\: json (default), or tree for people]:WORD:(json tree)' \
            '(--no-strict)--no-strict[Skip the well-formedness check; only for documents that have passed it before]' \
            '(--keep-white-space)--keep-white-space[Keep white-space-only text; maps with indented children are then rejected]' \
            '(--max-bytes)--max-bytes=[The maximum size of a document in bytes (default\: 67108864)]:N: ' \
            ':FILE:_files'
          ;;
        unpack)
          _arguments \
            '(-h --help)-h[Print this help message and exit]' \
            '(-h --help)--help[Print this help message and exit]' \
            '(--hex)--hex=[One value in hexadecimal digits, or - to read the digits from standard input]:DIGITS: ' \
            '(--db)--db=[An SQLite database with packed values in a column]:FILE:_files' \
            '(--table)--table=[The table or view that has the column]:NAME: ' \
            '(--column)--column=[The column with the values]:NAME: ' \
            '(--where)--where=[Only the rows that meet this SQL condition]:CONDITION: ' \
            '(--format)--format=[The output format\: table (default) or json]:WORD:(json table)' \
            '::FILE:_files'
          ;;
        run)
          _arguments \
            '(-h --help)-h[Print this help message and exit]' \
            '(-h --help)--help[Print this help message and exit]' \
            '(--db)--db=[The database]:FILE:_files' \
            '(--arguments)--arguments=[A JSON object with arguments, or - for standard input; arguments after METHOD take precedence]:FILE:_files' \
            '(--table)--table=[The table for a method with assignedTable]:NAME: ' \
            '(--format)--format=[The output format\: table (default), json or csv]:WORD:(csv json table)' \
            '(--print-sql)--print-sql[Print the SQL and its bound values without running it]' \
            '(--write)--write[Allow the method to change data]' \
            ':PATH:_files' \
            ':METHOD: ' \
            '*:ARGUMENT: '
          ;;
        upgrade)
          _arguments \
            '(-h --help)-h[Print this help message and exit]' \
            '(-h --help)--help[Print this help message and exit]' \
            '(--db)--db=[The database]:FILE:_files' \
            ':PATH:_files'
          ;;
        sql)
          _arguments \
            '(-h --help)-h[Print this help message and exit]' \
            '(-h --help)--help[Print this help message and exit]' \
            '(--schema)--schema=[Prepare each variant\: '\''upgrades'\'' for the schema of the upgrades, an SQL script, or a database]:SOURCE: ' \
            '*--function=[Declare an SQL function of the app, NAME/ARGS; repeatable]:NAME/ARGS: ' \
            '*--collation=[Declare a collation of the app; repeatable]:NAME: ' \
            '*--module=[Declare a module of virtual tables of the app; repeatable]:NAME: ' \
            '(--plan)--plan[Print SQLite'\''s query plan of each variant]' \
            '(--table)--table=[The table for a method with assignedTable (default\: T)]:NAME: ' \
            ':PATH:_files' \
            ':METHOD: '
          ;;
        models)
          _arguments \
            '(-h --help)-h[Print this help message and exit]' \
            '(-h --help)--help[Print this help message and exit]' \
            ':FILE:_files'
          ;;
        schema)
          _arguments \
            '(-h --help)-h[Print this help message and exit]' \
            '(-h --help)--help[Print this help message and exit]' \
            '(--format)--format=[The schema language\: rnc (default) or rng for RELAX NG, xsd for XML Schema 1.0]:WORD:(rnc rng xsd)' \
            '(--root)--root=[The root tag (default\: any; korvex for xsd)]:TAG: '
          ;;
        lsp)
          _arguments \
            '(-h --help)-h[Print this help message and exit]' \
            '(-h --help)--help[Print this help message and exit]' \
            '(--stdio)--stdio[Accepted for compatibility; standard input and output are always used]' \
            '(--max-bytes)--max-bytes=[The maximum size of a message in bytes (default\: 67108864)]:N: '
          ;;
        completion)
          _arguments \
            '(-h --help)-h[Print this help message and exit]' \
            '(-h --help)--help[Print this help message and exit]' \
            ':SHELL:(bash fish zsh)'
          ;;
      esac
      ;;
  esac
}
if [[ $funcstack[1] == _korvex-dao ]]; then _korvex-dao "$@"; else compdef _korvex-dao korvex-dao; fi
