# Completion of zirpa for fish.

function __zirpa_command
    set -l words (commandline -opc)
    test (count $words) -ge 2; and contains -- $words[2] $argv
end

function __zirpa_sources
    string match -r -- '.*(?:/|\.szirpa)$' (__fish_complete_suffix .szirpa)
end

set -l assembling '__zirpa_command build check map'

complete -c zirpa -f
complete -c zirpa -n __fish_use_subcommand -a build -d 'Write the outputs'
complete -c zirpa -n __fish_use_subcommand -a check -d 'Say what is wrong'
complete -c zirpa -n __fish_use_subcommand -a map -d 'Show the 256 addresses'
complete -c zirpa -n __fish_use_subcommand -a explain -d 'Explain a diagnostic'
complete -c zirpa -n __fish_use_subcommand -a lsp -d 'Serve editors'
complete -c zirpa -n '__zirpa_command lsp' -l stdio -d 'On standard input and output'
complete -c zirpa -n __fish_use_subcommand -a dis -d 'Make a source of bytes'
complete -c zirpa -n __fish_use_subcommand -a diff -d 'Compare two programs'
complete -c zirpa -n __fish_use_subcommand -l version -d 'Show the version'
complete -c zirpa -s h -l help -d 'Show the options'
complete -c zirpa -n '__zirpa_command explain' -a 'all (zirpa explain)'
complete -c zirpa -n $assembling -a '(__zirpa_sources)'

complete -c zirpa -n $assembling -s D -l define -x -d 'Define a name, as 0'
complete -c zirpa -n $assembling -s C -l compatibility -x -a 'nocase nopure nonative' -d 'Choose a compatibility option'
complete -c zirpa -n $assembling -l allow -x -a '(zirpa explain)' -d 'Hide warnings of a kind'
complete -c zirpa -n $assembling -l deny -x -a 'all (zirpa explain)' -d 'Make errors of warnings'
complete -c zirpa -n $assembling -l warn -x -a unused-label -d 'Show further warnings'
complete -c zirpa -n $assembling -l strict -d 'Fail after warnings too'
complete -c zirpa -n $assembling -l color -x -a 'auto always never' -d 'Colours'
complete -c zirpa -n $assembling -s q -l quiet -d 'Show errors alone'
complete -c zirpa -n $assembling -l stdin-name -r -F -d 'Name of a source from standard input'

complete -c zirpa -n '__zirpa_command check' -l format -x -a 'text json sarif' -d 'Format'
complete -c zirpa -n '__zirpa_command map' -l svg -r -F -d 'Write the picture as SVG'
complete -c zirpa -n '__zirpa_command build check' -s g -l debug -d 'Debug records, or their lines'

complete -c zirpa -n '__zirpa_command build' -s o -l output -r -F -d 'Name the S-record file'
complete -c zirpa -n '__zirpa_command build' -s L -l listing -d 'Write a listing'
complete -c zirpa -n '__zirpa_command build' -s A -l array -d 'Write a C array (needs --listing)'
complete -c zirpa -n '__zirpa_command build' -s S -l symbols -d 'Write or print the symbol table'
complete -c zirpa -n '__zirpa_command build' -s w -l list-warnings -d 'List warnings too'
complete -c zirpa -n '__zirpa_command build' -l depfile -r -F -d 'Write dependencies'
complete -c zirpa -n '__zirpa_command build' -l stdout -d 'Print the S-records alone'
complete -c zirpa -n '__zirpa_command build' -s I -l include -x -a '(__fish_complete_directories)' -d 'Accepted, without effect'
complete -c zirpa -n '__zirpa_command build' -s d -l debug-directory -x -a '(__fish_complete_directories)' -d 'Accepted, without effect'
complete -c zirpa -n '__zirpa_command build' -l address-width -x -a '1 2 3' -d 'Accepted, without effect'

set -l programs '__zirpa_command dis diff'

complete -c zirpa -n $programs -F
complete -c zirpa -n $programs -l from -x -a 'records image script array' -d 'Format of the file'
complete -c zirpa -n $programs -l base -x -d 'Address of the first byte'
complete -c zirpa -n $programs -l code -x -d 'Code begins there'
complete -c zirpa -n $programs -l data -x -d 'A range of data'
complete -c zirpa -n $programs -l string -x -d 'The range of a text'
complete -c zirpa -n $programs -l table -x -d 'A range of addresses'
complete -c zirpa -n $programs -l label -x -d 'Name an address'
complete -c zirpa -n $programs -l hints -r -F -d 'Read hints'
complete -c zirpa -n $programs -l symbols -r -F -d 'Take names from a symbol table'
complete -c zirpa -n $programs -l debug -r -F -d 'Take lines from debug records'
complete -c zirpa -n $programs -l color -x -a 'auto always never' -d 'Colours'

complete -c zirpa -n '__zirpa_command dis' -s o -l output -r -F -d 'Name the source'
complete -c zirpa -n '__zirpa_command dis' -l bytes -d 'Comments with bytes'
complete -c zirpa -n '__zirpa_command dis' -l xref -d 'Comments where labels are used'
complete -c zirpa -n '__zirpa_command dis' -l verify -d 'Assemble and compare first'
complete -c zirpa -n '__zirpa_command dis' -l graph -r -F -d 'Write the flow for Graphviz'
complete -c zirpa -n '__zirpa_command dis' -l save-hints -r -F -d 'Write what was found'
