#include "Platform/Platform.h"
#include "support/PrivateClipboard.h"

#include <gtest/gtest.h>
#include <optional>
#include <thread>

namespace {

using namespace ZoPrimitives::Platform;
using ZoPrimitives::Testing::PrivateClipboard;

/// What the clipboard holds, less the zeros that the system may put behind; none for none.
std::optional<std::string> Held(unsigned format) {
    std::size_t size = 0;
    const void* data = Current().ClipboardData(format, size);
    if (data == nullptr) return std::nullopt;
    std::string bytes(static_cast<const char*>(data), size);
    bytes.erase(bytes.find_last_not_of('\0') + 1);
    return bytes;
}

struct RealClipboardTests : testing::Test {
    ~RealClipboardTests() override { Current().CloseClipboard(); }

    PrivateClipboard clipboard;
    unsigned format = Current().ClipboardFormat("ZoPrimitives.Test");
    unsigned other = Current().ClipboardFormat("ZoPrimitives.Test: other/*");
};

TEST_F(RealClipboardTests, FormatsAreKnownByName) {
    EXPECT_NE(format, 0u);
    EXPECT_NE(format, other);
    EXPECT_EQ(Current().ClipboardFormat("zoprimitives.TEST"), format);
    EXPECT_EQ(Current().ClipboardFormat(""), 0u);
    EXPECT_EQ(Current().ClipboardFormat(nullptr), 0u);
}

TEST_F(RealClipboardTests, HoldsOneBlockUntilTheNext) {
    const std::string zeros("a\0b", 3);
    const std::string large(3'000'000, 'x');
    const struct {
        const char* name;
        unsigned format;
        std::string data;
    } rows[] = {
        {"first", format, "first"}, {"shorter", format, "2"}, {"with a zero", format, zeros},
        {"empty", format, ""},      {"large", format, large}, {"in another format", other, "other"},
    };
    for (const auto& row : rows) {
        ASSERT_TRUE(Current().OpenClipboard()) << row.name;
        EXPECT_TRUE(Current().SetClipboardData(row.format, row.data.data(), row.data.size())) << row.name;
        Current().CloseClipboard();
        ASSERT_TRUE(Current().OpenClipboard()) << row.name;
        EXPECT_TRUE(Held(row.format) == row.data) << row.name;
        EXPECT_EQ(Held(row.format == format ? other : format), std::nullopt) << row.name;
        Current().CloseClipboard();
    }
}

TEST_F(RealClipboardTests, IsClosedToThoseWhoHaveNotOpenedIt) {
    std::size_t size = 1;
    EXPECT_FALSE(Current().SetClipboardData(format, "x", 1));
    EXPECT_EQ(LastError(), ErrorClipboardNotOpen);
    EXPECT_EQ(Current().ClipboardData(format, size), nullptr);
    Current().CloseClipboard();
}

// Answers at once, and counts for how long it would have slept.
struct Impatient : Services {
    void Wait(unsigned milliseconds) override { waited += milliseconds; }
    unsigned waited = 0;
};

TEST_F(RealClipboardTests, AnotherThreadWaitsASecondAtMost) {
    ASSERT_TRUE(Current().OpenClipboard());
    Impatient services;
    bool open = true;
    unsigned long error = 0;
    std::thread([&] {
        open = services.OpenClipboard();
        error = LastError();
    }).join();
    EXPECT_FALSE(open);
    EXPECT_EQ(error, ErrorSharingViolation);
    EXPECT_EQ(services.waited, 1000u);

    EXPECT_FALSE(services.OpenClipboard()) << "a second time on the same thread";
    EXPECT_EQ(LastError(), ErrorSharingViolation);
    EXPECT_EQ(services.waited, 1000u);
}

TEST_F(RealClipboardTests, AThreadThatEndsClosesIt) {
    std::thread([] { EXPECT_TRUE(Current().OpenClipboard()); }).join();
    EXPECT_TRUE(Current().OpenClipboard());
}

} // namespace
