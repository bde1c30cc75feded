#include "ZoPrimitives/ZoAssert.h"

#include "Platform/Platform.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/xContainer.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

using namespace ZoPrimitives;

namespace {

struct Boxes : Platform::Services {
    void ShowMessageBox(const char* text) override { shown.emplace_back(text); }
    std::vector<std::string> shown;
};

class ZoAssertTest : public testing::Test {
protected:
    void SetUp() override { previous = Platform::Install(&boxes); }
    void TearDown() override {
        SetAssertionFunctor(nullptr);
        XZoAssert::ShowMessageBox(true);
        Platform::Install(previous);
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

    Boxes boxes;
    Platform::Services* previous = nullptr;
};

struct Counted : IAssertFunctor {
    explicit Counted(int& calls, int& living) : called(calls), alive(living) { ++alive; }
    ~Counted() override { --alive; }
    void operator()(const char*, const char*, const char*, int) override { ++called; }
    int& called;
    int& alive;
};

void FailIndex() { ZO_ASSERT_AT(1 > 2, "pos < length()", "public/include/ZoPrimitives/ZoString", 514); }

TEST_F(ZoAssertTest, WithoutFunctorOnlyThrows) {
    EXPECT_EQ(Thrown(FailIndex), "AssertWithFunctor");
    EXPECT_TRUE(boxes.shown.empty());
}

TEST_F(ZoAssertTest, FunctorThatReturnsStillThrows) {
    int called = 0;
    int alive = 0;
    SetAssertionFunctor(new Counted(called, alive));
    EXPECT_EQ(Thrown(FailIndex), "AssertWithFunctor");
    EXPECT_EQ(called, 1);
}

TEST_F(ZoAssertTest, LibraryOwnsTheFunctor) {
    int called = 0;
    int alive = 0;
    auto* first = new Counted(called, alive);
    SetAssertionFunctor(first);
    SetAssertionFunctor(first);
    EXPECT_EQ(alive, 1) << "installing the installed one again must keep it";
    SetAssertionFunctor(new Counted(called, alive));
    EXPECT_EQ(alive, 1);
    SetAssertionFunctor(nullptr);
    EXPECT_EQ(alive, 0);
    EXPECT_EQ(Thrown(FailIndex), "AssertWithFunctor");
    EXPECT_EQ(called, 0);
}

TEST_F(ZoAssertTest, QuietHandlerThrowsTheComposedText) {
    SetAssertionFunctor(new ZoAssertFunctor);
    XZoAssert::ShowMessageBox(false);
    EXPECT_EQ(Thrown(FailIndex), "Error: ( pos < length() )");
    EXPECT_EQ(Thrown([] { AssertWithFunctor("a > b", "look at %d", "cpp/x", 7); }),
              "FAILED: look at %d\nError: ( a > b )");
    EXPECT_EQ(Thrown([] { HandleAsserting("x", nullptr, "cpp/x", 7); }), "Error: ( x )");
    EXPECT_TRUE(boxes.shown.empty());
}

TEST_F(ZoAssertTest, LoudHandlerShowsTheBoxAndThrowsCrashRpt) {
    SetAssertionFunctor(new ZoAssertFunctor);
    EXPECT_TRUE(XZoAssert::ShowMessageBox());
    EXPECT_EQ(Thrown(FailIndex), "CrashRpt");
    ASSERT_EQ(boxes.shown.size(), 1u);
    EXPECT_EQ(boxes.shown[0], "Assertion failed!\n\nFile: public/include/ZoPrimitives/ZoString\nLine: 514\n\n"
                              "Expression: Error: ( pos < length() )");
}

TEST_F(ZoAssertTest, LongTextsAreCut) {
    const std::string text(100'000, 'x');
    EXPECT_EQ(Thrown([&] { HandleAsserting(text.c_str(), text.c_str(), text.c_str(), 1); }), "CrashRpt");
    ASSERT_EQ(boxes.shown.size(), 1u);
    EXPECT_EQ(boxes.shown[0].size(), 511u);
    XZoAssert::ShowMessageBox(false);
    const std::string message = Thrown([&] { HandleAsserting(text.c_str(), "", "", 1); });
    EXPECT_EQ(message, ("Error: ( " + text).substr(0, message.size()));
    EXPECT_GE(message.size(), 500u);
}

TEST_F(ZoAssertTest, ExpectReturnsAndKeepsTheAssertionText) {
    XZoAssert::ShowMessageBox(false);
    const char* message = nullptr;
    try {
        HandleAsserting("first", "", "", 1);
    } catch (const XZoAssert& e) {
        message = e.Message();
    }
    EXPECT_NO_THROW(Expect("second", "", "", 2));
    EXPECT_STREQ(message, "Error: ( first )");
    EXPECT_TRUE(boxes.shown.empty());

    // The text of an assertion may itself be asserted.
    EXPECT_EQ(Thrown([&] { HandleAsserting(message, "", "", 3); }), "Error: ( Error: ( first ) )");

    XZoAssert::ShowMessageBox(true);
    EXPECT_NO_THROW(Expect("third", "hint", "cpp/a", 4));
    ASSERT_EQ(boxes.shown.size(), 1u);
    EXPECT_EQ(boxes.shown[0],
              "Assertion failed!\n\nFile: cpp/a\nLine: 4\n\nExpression: FAILED: hint\nError: ( third )");
}

TEST_F(ZoAssertTest, ConditionIsEvaluatedOnce) {
    int evaluated = 0;
    ZO_ASSERT(++evaluated > 0, "evaluated", "tests");
    EXPECT_EQ(evaluated, 1);
}

template <class Exception, class Base>
constexpr bool DERIVES = std::is_base_of_v<Base, Exception> && !std::is_same_v<Base, Exception>;

static_assert(DERIVES<XReadStream, XStream> && DERIVES<XWriteStream, XStream>);
static_assert(DERIVES<XEndOfStream, XStream> && !DERIVES<XEndOfStream, XReadStream>);
static_assert(DERIVES<XInvalidObject, XStream> && DERIVES<XUnversionableVersion, XStream>);
static_assert(DERIVES<XNewerVersion, XReadStream> && DERIVES<XWriteStreamOutOfSpace, XWriteStream>);
static_assert(DERIVES<XInvalidFileType, XStream> && DERIVES<XInvalidLanguage, XStream> &&
              DERIVES<XInvalidVersion, XStream>);
static_assert(DERIVES<XEndSection, XStreamer> && DERIVES<XInvalidHandle, XStreamer> &&
              DERIVES<XUnknownObject, XStreamer>);
static_assert(DERIVES<xIteratorOverrunContainerLimit, xContainer> &&
              DERIVES<xContainerSizeExceeded, xContainer> && DERIVES<xFind, xContainer> &&
              DERIVES<xObjectNotFoundInContainer, xContainer> && DERIVES<xSelect, xContainer>);
static_assert(!DERIVES<xRegionContainsExceeded, xContainer> && !DERIVES<xInvalidConversion, xContainer>);

TEST(XStreamTest, Texts) {
    const struct {
        const char* name;
        XStream exception;
        const char* message;
        const char* location;
    } rows[] = {
        {"read", XReadStream("Arquivo corrompido", "A::B #3"), "Arquivo corrompido", "A::B #3"},
        {"write", XWriteStream("m", "l"), "m", "l"},
        {"full device", XWriteStreamOutOfSpace("A::Write"), "Espa\xE7o em disco insuficiente.", "A::Write"},
        {"end", XEndOfStream(), "End-of-file", ""},
        {"incomplete", XInvalidObject(), "Invalid object : data still incomplete after read.", ""},
        {"newer", XNewerVersion(), "", ""},
        {"unversionable", XUnversionableVersion(), "", ""},
        {"file type", XInvalidFileType(), "", ""},
        {"language", XInvalidLanguage(), "", ""},
        {"version", XInvalidVersion(), "", ""},
    };
    for (const auto& row : rows) {
        EXPECT_STREQ(row.exception.Message().c_str(), row.message) << row.name;
        EXPECT_STREQ(row.exception.Location().c_str(), row.location) << row.name;
    }
}

} // namespace
