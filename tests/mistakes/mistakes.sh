#!/bin/bash
# mistakes.sh COMPILER: compiles each mistake of mistakes.cpp. None may compile; the compiler must first say the sentence
# that stands behind it, and no more than a screen in all.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
screen=40
failed=0
compile() { "$1" -std=c++17 -fsyntax-only -I"$here/../../public/include" -DMISTAKE="$2" "$here/mistakes.cpp" 2>&1; }

compile "$1" 0 || { echo "without a mistake it must compile" && exit 1; }
while read -r number sentence; do
    if said=$(compile "$1" "$number"); then
        echo "mistake $number compiles"
        failed=1
        continue
    fi
    first=$(grep -m1 'error' <<<"$said")
    lines=$(wc -l <<<"$said")
    if [[ $sentence == "at length: "* ]]; then
        sentence=${sentence#at length: }
        lines=0
    fi
    if [[ $first != *"$sentence"* ]] || [ "$lines" -gt "$screen" ]; then
        printf 'mistake %s: %s lines, and first:\n%s\n' "$number" "$lines" "$first"
        failed=1
    fi
done < <(sed -n 's/^#\(el\)\?if MISTAKE == \([0-9]*\) *\/\/ \(.*\)/\2 \3/p' "$here/mistakes.cpp")
exit $failed
