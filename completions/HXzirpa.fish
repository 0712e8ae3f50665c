# Completion of HXzirpa for fish.

# True as long as options may follow: they end at the source file, and whatever follows it is
# ignored.
function __HXzirpa_awaits_source
    set -l words (commandline -opc)
    set -e words[1]
    set -l is_value 0
    for word in $words
        if test $is_value = 1
            set is_value 0
        else if contains -- $word -o -d -D -I -C
            set is_value 1
        else if not string match -q -- '-*' $word
            return 1
        end
    end
    return 0
end

function __HXzirpa_sources
    string match -r -- '.*(?:/|\.szirpa)$' (__fish_complete_suffix .szirpa)
end

# The value of -I may be joined to it.
function __HXzirpa_include_directories
    __fish_complete_directories (commandline -ct | string replace -r '^-I' '')
end

complete -c HXzirpa -f
complete -c HXzirpa -n __HXzirpa_awaits_source -a '(__HXzirpa_sources)'

# Options of one dash that are not joined to each other.
function __HXzirpa_option
    complete -c HXzirpa -n __HXzirpa_awaits_source $argv
end
__HXzirpa_option -o L -d 'Write the listing'
__HXzirpa_option -o S -d 'Print the symbol table'
__HXzirpa_option -o A -d 'Write the C array (needs -L)'
__HXzirpa_option -o g -d 'Write debug records'
__HXzirpa_option -o w -d 'Print warnings'
__HXzirpa_option -o S1 -d 'Accepted, without effect'
__HXzirpa_option -o S2 -d 'Accepted, without effect'
__HXzirpa_option -o S3 -d 'Accepted, without effect'
__HXzirpa_option -o o -r -F -d 'Name the S-record file'
__HXzirpa_option -o d -x -a '(__fish_complete_directories)' -d 'Name the source directory'
__HXzirpa_option -s D -x -d 'Define a symbol with the value 0'
__HXzirpa_option -s I -x -a '(__HXzirpa_include_directories)' -d 'Search a directory for the source'
__HXzirpa_option -s C -x -a 'nocase nopure nonative' -d 'Choose a compatibility option'
functions -e __HXzirpa_option
