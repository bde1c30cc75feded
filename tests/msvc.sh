#!/bin/bash
# msvc.sh LIBRARIES: reads the public headers (C++17) and the sources for Windows (C++20) as clang does for Microsoft's
# platform: its object model, its rules for exports, its widths. Microsoft's own headers are not here: mingw's stand for them.
# LIBRARIES: the folder with TBB's, cctz's and mimalloc's headers.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake/messages/library build/texts
# Where mingw's headers are; the compiler's own come from clang.
includes=$(x86_64-w64-mingw32-g++-posix -E -v -x c++ /dev/null 2>&1 |
    sed -n '/^#include </,/^End/s/^ \(.*\)/\1/p' | grep -vE '/lib/gcc/[^/]*/[^/]*/include(-fixed)?$' | sed 's/^/-isystem /' | tr '\n' ' ')
compiler="clang++ --target=x86_64-pc-windows-msvc -fno-ms-compatibility -fmsc-version=0 -fms-extensions -fsyntax-only
    -Wall -Wextra -Wpedantic -Werror -Werror=gnu -Wmicrosoft -Wnon-virtual-dtor -Wno-pragma-once-outside-header
    -D__declspec=__declspec -D__GCC_DESTRUCTIVE_SIZE=64 -D__GCC_CONSTRUCTIVE_SIZE=64
    -nostdinc++ $includes -isystem $1/include -isystem $1/include/mimalloc-2.0 -Ipublic/include -Icpp -Ibuild/texts"

# As an application sees them behind <windows.h>, which defines min and max.
{
    grep -hoE '^#include <[a-z_]+>' -r public/include | sort -u
    printf '#define min(a, b) neither\n#define max(a, b) either\n#include "ZoPrimitives/ZoPrimitives.h"\n'
} | $compiler -std=c++17 -x c++ -

# One compiler for each processor; the flags hold no spaces of their own.
printf '%s\n' public/include/ZoPrimitives/*.h | xargs -P "$(nproc)" -I{} $compiler -std=c++17 -x c++ {}
find cpp -name '*.cpp' -not -path '*/posix/*' | xargs -P "$(nproc)" -I{} $compiler -std=c++20 -DZO_BUILDING_LIBRARY {}
echo "$(find public/include -name '*.h' | wc -l) headers and $(find cpp -name '*.cpp' -not -path '*/posix/*' | wc -l) sources read for x86_64-pc-windows-msvc."
