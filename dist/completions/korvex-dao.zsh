#compdef korvex-dao
_korvex-dao() {
  local context state state_descr line
  local -A opt_args
  local -a commands=(
    'check:Check definition documents and print what is wrong with them'
    'explain:Explain a rule, by a wrong and a right example'
    'dump:Print the element trees of a definition document'
    'unpack:Print what a packed column holds'
    'run:Run a method on an SQLite database'
    'upgrade:Lead an SQLite database to the newest version'
    'schema:Print a schema of definition documents, for editors'
    'lsp:Serve an editor as a language server'
    'completion:Print a script by which a shell completes korvex-dao'
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
            '(--format)--format=[How to print the findings\: text (if not given), short, json, sarif, or github]:WORD:(github json sarif short text)' \
            '(--color)--color=[When to color the text\: always, never, or auto (if not given)\: on a terminal without NO_COLOR]:WORD:(always auto never)' \
            '*--warn=[Give the warnings of this name; may be repeated]:NAME:(unread-attribute duplicate-name undefined-map unfinished-list-reference ignored-content misplaced-when duplicate-column repeated-property duplicate-argument lost-resumable doubtful-value unused-suppression unknown-warning)' \
            '*--no-warn=[Do not give the warnings of this name; may be repeated]:NAME:(unread-attribute duplicate-name undefined-map unfinished-list-reference ignored-content misplaced-when duplicate-column repeated-property duplicate-argument lost-resumable doubtful-value unused-suppression unknown-warning)' \
            '(--werror)--werror[Treat warnings as errors]' \
            '(--no-strict)--no-strict[Skip the check for well-formed XML; only for documents that have passed it before]' \
            '(--keep-white-space)--keep-white-space[Keep texts of white space only; a map with indented children is refused then]' \
            '(--max-bytes)--max-bytes=[The largest document to read, in bytes; 67108864 if not given]:N: ' \
            '*:PATH:_files'
          ;;
        explain)
          _arguments \
            '(-h --help)-h[Print this help message and exit]' \
            '(-h --help)--help[Print this help message and exit]' \
            '(--format)--format=[How to print it\: text (if not given) or markdown]:WORD:(markdown text)' \
            '::RULE: '
          ;;
        dump)
          _arguments \
            '(-h --help)-h[Print this help message and exit]' \
            '(-h --help)--help[Print this help message and exit]' \
            '(--format)--format=[How to print the elements\: json (if not given), or tree for people]:WORD:(json tree)' \
            '(--no-strict)--no-strict[Skip the check for well-formed XML; only for documents that have passed it before]' \
            '(--keep-white-space)--keep-white-space[Keep texts of white space only; a map with indented children is refused then]' \
            '(--max-bytes)--max-bytes=[The largest document to read, in bytes; 67108864 if not given]:N: ' \
            ':FILE:_files'
          ;;
        unpack)
          _arguments \
            '(-h --help)-h[Print this help message and exit]' \
            '(-h --help)--help[Print this help message and exit]' \
            '(--hex)--hex=[One value in hexadecimal digits, or - when standard input holds them]:DIGITS: ' \
            '(--db)--db=[An SQLite database with values in a column]:FILE:_files' \
            '(--table)--table=[The table, or a view, that has the column]:NAME: ' \
            '(--column)--column=[The column with the values]:NAME: ' \
            '(--where)--where=[Only the rows that meet this SQL condition]:CONDITION: ' \
            '(--format)--format=[How to print the values\: table (if not given) or json]:WORD:(json table)' \
            '::FILE:_files'
          ;;
        run)
          _arguments \
            '(-h --help)-h[Print this help message and exit]' \
            '(-h --help)--help[Print this help message and exit]' \
            '(--db)--db=[The database]:FILE:_files' \
            '(--arguments)--arguments=[A JSON object with arguments, or - for standard input; those after METHOD count more]:FILE:_files' \
            '(--table)--table=[The table, for a method with assignedTable]:NAME: ' \
            '(--format)--format=[How to print the rows\: table (if not given), json or csv]:WORD:(csv json table)' \
            '(--print-sql)--print-sql[Print the SQL with its values, and run nothing]' \
            '(--write)--write[Let the method change data]' \
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
        schema)
          _arguments \
            '(-h --help)-h[Print this help message and exit]' \
            '(-h --help)--help[Print this help message and exit]' \
            '(--format)--format=[How to write the schema\: rnc (if not given) or rng, which are RELAX NG, or xsd, XML Schema 1.0]:WORD:(rnc rng xsd)' \
            '(--root)--root=[The tag of the root; if not given, any, and for xsd korvex]:TAG: '
          ;;
        lsp)
          _arguments \
            '(-h --help)-h[Print this help message and exit]' \
            '(-h --help)--help[Print this help message and exit]' \
            '(--stdio)--stdio[What it does in any case; many editors pass it]' \
            '(--max-bytes)--max-bytes=[The largest message to read, in bytes; 67108864 if not given]:N: '
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
