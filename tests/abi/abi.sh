#!/bin/bash
# abi.sh LIBRARY [--write]: compares what applications are compiled against (functions, their parameters, layouts and
# virtual tables of the types that they reach) with the recorded interface, and fails for every change but additions;
# with --write, records it. The library must have debug information.
set -euo pipefail
library=$(realpath "$1")
cd "$(dirname "$0")/../.."
recorded=tests/abi/ZoPrimitives.abi.xz
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
abidw --headers-dir public/include --drop-private-types --exported-interfaces-only --no-show-locs --no-comp-dir-path \
    --no-corpus-path --no-elf-needed --no-parameter-names --no-write-default-sizes --out-file "$folder/now.abi" "$library"
if [ "${2:-}" = --write ]; then
    xz -9 --stdout "$folder/now.abi" >"$recorded"
    exit
fi
xz --decompress --stdout "$recorded" >"$folder/recorded.abi"
# What was added is in the list of exports (tests/exports).
abidiff --no-added-syms "$folder/recorded.abi" "$folder/now.abi"
