#!/bin/bash
# mistakes.sh COMPILER: compiles what a developer does wrong on the first day, one mistake at a time. None may compile; the
# compiler must first say the sentence that stands before it, and no more than a screen in all ("at length": or more).
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
screen=40
failed=0

prelude='#include "ZoPrimitives/ZoPrimitives.h"
#include <string>
using namespace ZoPrimitives;
class Storey : public ZoObjectStreamable { REGISTER_ZO_BEGIN(Storey) DECLARE_ZO_FIELD(double, height) REGISTER_ZO_END };
class Other : public ZoObjectStreamable { REGISTER_ZO_BEGIN(Other) REGISTER_ZO_END };
struct Plain {};
enum class Huge : long long { One };
'
# A class called Wrong: its bases, the beginning of its registration, the rest; the sentence.
mistakes='
ZoObjectStreamable | REGISTER_ZO_BEGIN(Wrong) | DECLARE_ZO_FIELD(std::string, name) REGISTER_ZO_END | DECLARE_ZO_FIELD takes int, unsigned, bool
ZoObjectStreamable | REGISTER_ZO_BEGIN(Wrong) | DECLARE_ZO_FIELD(Storey, first) REGISTER_ZO_END | DECLARE_ZO_FIELD takes int, unsigned, bool
ZoObjectStreamable | REGISTER_ZO_BEGIN(Wrong) | DECLARE_ZO_FIELD(Huge, huge) REGISTER_ZO_END | DECLARE_ZO_FIELD takes int, unsigned, bool
ZoObjectStreamable | REGISTER_ZO_BEGIN(Wrong) | DECLARE_ZO_FIELD_LIST(bool, flags) REGISTER_ZO_END | DECLARE_ZO_FIELD_LIST takes int, float, double or ZoString
ZoObjectStreamable | REGISTER_ZO_BEGIN(Wrong) | DECLARE_ZO_FIELD_CHILD(Plain, plain) REGISTER_ZO_END | a field'\''s objects must derive from ZoStreamableBase
ZoObjectStreamable | REGISTER_ZO_BEGIN(Wrong) | DECLARE_ZO_FIELD_REFERENCE_LIST(Plain, plain) REGISTER_ZO_END | a field'\''s objects must derive from ZoStreamableBase
ZoObjectStreamable | REGISTER_ZO_BEGIN(Wrong, Storey) | REGISTER_ZO_END | a parent must be a base of the class in C++ too
Storey | REGISTER_ZO_BEGIN(Wrong) | REGISTER_ZO_END | the class has a registered base that is not named as a parent
ZoObjectStreamable | REGISTER_ZO_BEGIN(Wrong) | REGISTER_ZO_END explicit Wrong(int) {} | the class needs a public constructor that takes ZoStreamableBase::StreamableInit
Plain | REGISTER_ZO_BEGIN(Wrong) | REGISTER_ZO_END | at length: the class must derive from ZoStreamableBase or ZoObjectStreamable
Storey, public Other | REGISTER_ZO_BEGIN(Wrong, Storey, Other) | REGISTER_ZO_END | the class must derive from ZoStreamableBase or ZoObjectStreamable
ZoObjectStreamable | | DECLARE_ZO_FIELD(int, count) REGISTER_ZO_END | at length: REGISTER_ZO_BEGIN_must_stand_before_the_field_lines
'

# Of a class without a mistake too: otherwise anything could be the reason.
compile() {
    printf '%sclass Wrong : public %s {\n%s\n%s\n};\nTZoClass* Register(TZoMetaData* s) { return Wrong::Register(s); }\n' \
        "$prelude" "$2" "$3" "$4" | "$1" -std=c++17 -fsyntax-only -I"$here/../../public/include" -x c++ - 2>&1
}
compile "$1" Storey 'REGISTER_ZO_BEGIN(Wrong, Storey)' 'DECLARE_ZO_FIELD(int, count) REGISTER_ZO_END' ||
    { echo "without a mistake it must compile" && exit 1; }

while IFS='|' read -r bases begin rest sentence; do
    [ -n "$bases" ] || continue
    sentence=${sentence# }
    if said=$(compile "$1" "$bases" "$begin" "$rest"); then
        echo "this compiles: $bases|$begin|$rest"
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
        printf '%s: %s lines, and first:\n%s\n' "$bases|$begin|$rest" "$lines" "$first"
        failed=1
    fi
done <<<"$mistakes"
exit $failed
