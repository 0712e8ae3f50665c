#!/bin/sh
# Draws the picture in docs/dis.md: the flow of an example, as zirpa dis sees it.
#
#     tools/write_flow.sh DIRECTORY_OF_THE_PROGRAMS >docs/flow.svg
set -eu
top=$(dirname "$(readlink -f "$0")")/..
programs=$(readlink -f "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
"$programs/HXzirpa" -S "$top/examples/sort.szirpa" >sort.sym
"$programs/zirpa" dis --symbols sort.sym --graph sort.dot sort.s19 >sort.szirpa
# Graphviz names its own version, which is not to make a difference.
dot -Tsvg sort.dot | sed '/^<!--/d; /^ -->/d; s/<!--.*-->//'
