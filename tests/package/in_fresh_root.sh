#!/bin/sh
# Runs in a fresh root: installs /tmp/hxzirpa.deb, shows what it brings and does, and removes it.
set -eu

all_files() {
    find / -xdev \( -path /proc -o -path /sys -o -path /dev -o -path /tmp -o -path /var/log \
        -o -path /var/cache -o -path '/var/lib/dpkg/*-old' \) -prune -o -print | sort
}

all_files >/tmp/before
dpkg --install /tmp/hxzirpa.deb >/dev/null
dpkg --verify hxzirpa
all_files >/tmp/installed
# Files as they are, directories with a slash.
comm -13 /tmp/before /tmp/installed | while read -r path; do
    if [ -d "$path" ]; then echo "new $path/"; else echo "new $path"; fi
done

mkdir /tmp/work
cd /tmp/work
HXzirpa -L -S -g -A /usr/share/doc/hxzirpa/examples/report.szirpa | sed 's/^/printed /'
sed 's/^/record /' report.s19
for output in *; do echo "output $output"; done

dpkg --purge hxzirpa >/dev/null
all_files >/tmp/after
comm -3 /tmp/before /tmp/after | sed 's/^/left /'
if dpkg-query --show hxzirpa >/dev/null 2>&1; then echo "left hxzirpa in dpkg's records"; fi
echo "end"
