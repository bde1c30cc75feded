// What a developer does wrong on the first day, one mistake a compilation: mistakes.sh defines MISTAKE.
// Behind each stands what the compiler says first, and "at length" where more than a screen follows.
#include "ZoPrimitives/ZoPrimitives.h"

#include <string>

using namespace ZoPrimitives;

class Storey : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Storey)
    DECLARE_ZO_FIELD(double, height)
    REGISTER_ZO_END
};

struct Plain {};

#if MISTAKE == 1 // DECLARE_ZO_FIELD takes int, unsigned, bool
class Wrong : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Wrong)
    DECLARE_ZO_FIELD(std::string, name)
    REGISTER_ZO_END
};
#elif MISTAKE == 2  // DECLARE_ZO_FIELD takes int, unsigned, bool
class Wrong : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Wrong)
    DECLARE_ZO_FIELD(Storey, first)
    REGISTER_ZO_END
};
#elif MISTAKE == 3  // DECLARE_ZO_FIELD_LIST takes int, float, double or ZoString
class Wrong : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Wrong)
    DECLARE_ZO_FIELD_LIST(bool, flags)
    REGISTER_ZO_END
};
#elif MISTAKE == 4  // a field's objects must derive from ZoStreamableBase
class Wrong : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Wrong)
    DECLARE_ZO_FIELD_CHILD(Plain, plain)
    REGISTER_ZO_END
};
#elif MISTAKE == 5  // a parent must be a base of the class in C++ too
class Wrong : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Wrong, Storey)
    REGISTER_ZO_END
};
#elif MISTAKE == 6  // the class has a registered base that is not named as a parent
class Wrong : public Storey {
    REGISTER_ZO_BEGIN(Wrong)
    REGISTER_ZO_END
};
#elif MISTAKE == 7  // the class needs a public constructor that takes ZoStreamableBase::StreamableInit
class Wrong : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Wrong)
    REGISTER_ZO_END
    explicit Wrong(int) {}
};
#elif MISTAKE == 8  // at length: the class must derive from ZoStreamableBase or ZoObjectStreamable
class Wrong {
    REGISTER_ZO_BEGIN(Wrong)
    REGISTER_ZO_END
};
#elif MISTAKE == 9  // the class must derive from ZoStreamableBase or ZoObjectStreamable
class Other : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Other)
    REGISTER_ZO_END
};
class Wrong : public Storey, public Other {
    REGISTER_ZO_BEGIN(Wrong, Storey, Other)
    REGISTER_ZO_END
};
#elif MISTAKE == 10 // at length: REGISTER_ZO_BEGIN_must_stand_before_the_field_lines
class Wrong : public ZoObjectStreamable {
    DECLARE_ZO_FIELD(int, count)
    REGISTER_ZO_END
};
#elif MISTAKE == 11 // DECLARE_ZO_FIELD takes int, unsigned, bool
enum class Huge : long long { One };
class Wrong : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Wrong)
    DECLARE_ZO_FIELD(Huge, huge)
    REGISTER_ZO_END
};
#elif MISTAKE == 12 // a field's objects must derive from ZoStreamableBase
class Wrong : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Wrong)
    DECLARE_ZO_FIELD_REFERENCE_LIST(Plain, plain)
    REGISTER_ZO_END
};
#else
using Wrong = Storey;
#endif

TZoClass* RegisterWrong(TZoMetaData* schema) { return Wrong::Register(schema); }
