#include "Platform/TypeNames.h"

#include "Platform/Platform.h"

#include <gtest/gtest.h>

namespace {

using namespace ZoPrimitives;

template <class A, class B>
class Pair {};
struct Thing {};
enum class Kind {};

// Saved texts hold them: each compiler's name of a type gives the same text.
TEST(TypeNamesTests, AreTheSameWithEveryCompiler) {
    EXPECT_EQ(Platform::TypeName(typeid(Platform::Services)), "ZoPrimitives::Platform::Services");
    EXPECT_EQ(Platform::TypeName(typeid(Pair<Thing, Pair<Kind, long long>>)),
              "(anonymous namespace)::Pair<(anonymous namespace)::Thing, "
              "(anonymous namespace)::Pair<(anonymous namespace)::Kind, long long> >");
    const struct {
        const char* microsofts;
        const char* common;
    } rows[] = {
        {"int", "int"},
        {"class ZoPrimitives::ZoBoolean", "ZoPrimitives::ZoBoolean"},
        {"struct Thing", "Thing"},
        {"class `anonymous namespace'::Thing", "(anonymous namespace)::Thing"},
        {"class frame::`anonymous namespace'::Thing", "frame::(anonymous namespace)::Thing"},
        {"class Pair<struct Thing,class Pair<enum Kind,__int64> >", "Pair<Thing, Pair<Kind, long long> >"},
        {"class Box<unsigned __int64>", "Box<unsigned long long>"},
        {"class Box<union Subclass>", "Box<Subclass>"},
        {"class my__int64", "my__int64"},
    };
    for (const auto& [microsofts, common] : rows) EXPECT_EQ(Platform::CommonTypeName(microsofts), common);
}

} // namespace
