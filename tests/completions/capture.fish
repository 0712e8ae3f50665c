# Prints what fish offers for command lines: capture.fish COMPLETION LINE...
#
# Each line's offers are followed by a line "end of offers".
source $argv[1]
for line in $argv[2..-1]
    complete -C $line | string replace -r '\t.*' ''
    echo "end of offers"
end
