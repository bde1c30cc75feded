#include "ZoPrimitives/ZoAssert.h"

#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/xContainer.h"
#include "support/FaultyServices.h"

#include <gtest/gtest.h>

using namespace ZoPrimitives;

namespace {

struct ZoAssertTest : testing::Test {
    ~ZoAssertTest() override {
        SetAssertionFunctor(nullptr);
        XZoAssert::ShowMessageBox(showing);
    }
    template <class Operation>
    static std::string Thrown(Operation operation) {
        try {
            operation();
        } catch (const XZoAssert& e) {
            return e.Message();
        }
        return "nothing thrown";
    }

    Testing::FaultyServices boxes;
    bool showing = XZoAssert::ShowMessageBox();
};

void FailIndex() { ZO_ASSERT_AT(1 > 2, "pos < length()", "public/include/ZoPrimitives/ZoString", 514); }

TEST_F(ZoAssertTest, WhatFailedCanBeAskedWithAndWithoutAFunctor) {
    const std::string tooLong(3000, 'x');
    const auto fail = [&] { AssertWithFunctor("a < b", tooLong.c_str(), nullptr, 12); };
    XZoAssert::ShowMessageBox(false);
    for (const bool installs : {false, true}) {
        SetAssertionFunctor(installs ? new ZoAssertFunctor : nullptr);
        try {
            fail();
        } catch (const XZoAssertFailed& failed) {
            const XZoAssertFailed copy = failed;
            EXPECT_STREQ(copy.Expression(), "a < b");
            EXPECT_EQ(copy.Hint(), tooLong.substr(0, 1023));
            EXPECT_STREQ(copy.File(), "");
            EXPECT_EQ(copy.Line(), 12);
        }
    }
}

TEST_F(ZoAssertTest, TheFunctorIsCalledOwnedAndReplaced) {
    static int called = 0;
    static int alive = 0;
    struct Counted : IAssertFunctor {
        Counted() { ++alive; }
        ~Counted() override { --alive; }
        void operator()(const char*, const char*, const char*, int) override { ++called; }
    };
    EXPECT_EQ(Thrown(FailIndex), "AssertWithFunctor");
    auto* first = new Counted;
    SetAssertionFunctor(first);
    SetAssertionFunctor(first);
    EXPECT_EQ(alive, 1) << "installing the installed one again keeps it";
    EXPECT_EQ(Thrown(FailIndex), "AssertWithFunctor") << "though it returns";
    EXPECT_EQ(called, 1);
    SetAssertionFunctor(new Counted);
    EXPECT_EQ(alive, 1);
    SetAssertionFunctor(nullptr);
    EXPECT_EQ(alive, 0);
    EXPECT_EQ(Thrown(FailIndex), "AssertWithFunctor");
    EXPECT_EQ(called, 1);
    EXPECT_TRUE(boxes.messages.empty());
    int evaluated = 0;
    ZO_ASSERT(++evaluated > 0, "evaluated", "tests");
    EXPECT_EQ(evaluated, 1);
}

TEST_F(ZoAssertTest, TheHandlerThrowsTheTextOrShowsIt) {
    SetAssertionFunctor(new ZoAssertFunctor);
    EXPECT_TRUE(XZoAssert::ShowMessageBox());
    EXPECT_EQ(Thrown(FailIndex), "CrashRpt");
    EXPECT_NO_THROW(Expect("third", "hint", "cpp/a", 4));
    const std::vector<std::string> shown = {
        "Assertion failed!\n\nFile: public/include/ZoPrimitives/ZoString\nLine: 514\n\n"
        "Expression: Error: ( pos < length() )",
        "Assertion failed!\n\nFile: cpp/a\nLine: 4\n\nExpression: FAILED: hint\nError: ( third )"};
    EXPECT_EQ(boxes.messages, shown);

    XZoAssert::ShowMessageBox(false);
    EXPECT_FALSE(XZoAssert::ShowMessageBox());
    EXPECT_EQ(Thrown(FailIndex), "Error: ( pos < length() )");
    EXPECT_EQ(Thrown([] { AssertWithFunctor("a > b", "look at %d", "cpp/x", 7); }),
              "FAILED: look at %d\nError: ( a > b )");
    EXPECT_EQ(Thrown([] { HandleAsserting(nullptr, nullptr, nullptr, 7); }), "Error: (  )");
    try {
        HandleAsserting("first", "", "", 1);
    } catch (const XZoAssert& e) {
        EXPECT_NO_THROW(Expect("second", "", "", 2));
        EXPECT_STREQ(e.Message(), "Error: ( first )") << "a text of its own";
        // The text of an assertion may itself be asserted.
        EXPECT_EQ(Thrown([&] { HandleAsserting(e.Message(), "", "", 3); }), "Error: ( Error: ( first ) )");
    }
    EXPECT_EQ(boxes.messages, shown);
}

TEST_F(ZoAssertTest, LongTextsAreCut) {
    const std::string text(100'000, 'x');
    EXPECT_EQ(Thrown([&] { HandleAsserting(text.c_str(), text.c_str(), text.c_str(), 1); }), "CrashRpt");
    EXPECT_NO_THROW(Expect(text.c_str(), nullptr, nullptr, 1));
    for (const std::string& shown : boxes.messages) EXPECT_EQ(shown.size(), 511u);
    XZoAssert::ShowMessageBox(false);
    const std::string message = Thrown([&] { HandleAsserting(text.c_str(), "", "", 1); });
    EXPECT_EQ(message, ("Error: ( " + text).substr(0, message.size()));
    EXPECT_GE(message.size(), 500u);
}

static_assert(!std::is_base_of_v<XReadStream, XEndOfStream>);
static_assert(!std::is_base_of_v<xContainer, xRegionContainsExceeded>);
static_assert(!std::is_base_of_v<xContainer, xInvalidConversion>);

} // namespace
