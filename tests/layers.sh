#!/bin/bash
# Each layer of the library stands on those before it alone: fails for every include of a later one's header. A public
# header belongs to the first layer that has a source of its name.
set -euo pipefail
cd "$(dirname "$0")/.."
layers=(cpp/Platform cpp/ZoPrimitives cpp/Persistence/{checksums,records,instances,schema,objects,text} cpp/Values cpp/Geometry)
declare -A home # rank of a header's layer
for rank in "${!layers[@]}"; do
    while IFS= read -r file; do
        case $file in
        *.h) header=${file#cpp/} ;;
        *) header=ZoPrimitives/$(basename "$file" .cpp).h ;;
        esac
        : "${home[$header]:=$rank}"
    done < <(find "${layers[rank]}" -name '*.h' -o -name '*.cpp')
done
failed=0
for rank in "${!layers[@]}"; do
    while IFS=: read -r file line header; do
        if [ "${home[$header]:-0}" -gt "$rank" ]; then
            echo "$file:$line: ${layers[rank]} includes $header of ${layers[${home[$header]}]}"
            failed=1
        fi
    done < <(grep -rno '#include "[^"]*"' "${layers[rank]}" | sed 's/#include "\(.*\)"/\1/')
done
exit $failed
