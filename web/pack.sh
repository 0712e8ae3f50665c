#!/bin/sh
# web/pack.sh MODULES DIRECTORY: the npm package in DIRECTORY/package, and packed beside it, with the
# modules from MODULES. The same bytes whoever packs it, where and when: npm sees to times and owners.
set -eu

mkdir -p "$2/package"
modules=$(cd "$1" && pwd)
into=$(cd "$2/package" && pwd)
cd "$(dirname "$0")"
cp package/* "$modules/hxzirpa.wasm" "$modules/program.wasm" ../LICENSE "$into"
# Types are the same for both ways to load it, but each has to have its own.
cp package/index.d.mts "$into/index.d.cts"
# The version stands in one place alone, with two numbers of the three that npm wants.
version=$(sed -n 's/.*kVersion = "\(.*\)".*/\1/p' ../as/asOptions.h).0
sed -i "s/^  \"name\": .*/&\n  \"version\": \"$version\",/" "$into/package.json"
chmod 644 "$into"/*
chmod 755 "$into/program.mjs"
cd "$into"
npm pack --silent --offline --pack-destination .. >/dev/null
