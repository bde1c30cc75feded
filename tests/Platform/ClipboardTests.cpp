#include "Platform/Clipboard.h"
#include "support/FaultyServices.h"
#include "support/PrivateClipboard.h"

#include <gtest/gtest.h>
#include <thread>

namespace {

using namespace ZoPrimitives::Platform;
using ZoPrimitives::Testing::FaultyServices;
using ZoPrimitives::Testing::PrivateClipboard;

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
    const std::tuple<const char*, unsigned, std::string> rows[] = {
        {"first", format, "first"}, {"shorter", format, "2"}, {"with a zero", format, zeros},
        {"empty", format, ""},      {"large", format, large}, {"in another format", other, "other"},
    };
    for (const auto& [name, written, data] : rows) {
        EXPECT_TRUE(Copy(written, data)) << name;
        EXPECT_TRUE(Paste(written) == data) << name;
        EXPECT_EQ(Paste(written == format ? other : format), std::nullopt) << name;
    }
}

TEST_F(RealClipboardTests, IsClosedToThoseWhoHaveNotOpenedIt) {
    std::size_t size = 1;
    EXPECT_FALSE(Current().SetClipboardData(format, "x", 1));
    EXPECT_EQ(LastError(), ErrorClipboardNotOpen);
    EXPECT_EQ(Current().ClipboardData(format, size), nullptr);
    Current().CloseClipboard();
}

TEST_F(RealClipboardTests, AnotherThreadWaitsASecondAtMost) {
    ASSERT_TRUE(Current().OpenClipboard());
    FaultyServices services;
    unsigned waited = 0;
    services.onWait = [&](unsigned milliseconds) { waited += milliseconds; };
    bool open = true;
    unsigned long error = 0;
    std::thread([&] {
        open = services.OpenClipboard();
        error = LastError();
    }).join();
    EXPECT_FALSE(open);
    EXPECT_EQ(error, ErrorSharingViolation);
    EXPECT_EQ(waited, 1000u);

    EXPECT_FALSE(services.OpenClipboard()) << "a second time on the same thread";
    EXPECT_EQ(LastError(), ErrorSharingViolation);
    EXPECT_EQ(waited, 1000u);
}

TEST_F(RealClipboardTests, AThreadThatEndsClosesIt) {
    std::thread([] { EXPECT_TRUE(Current().OpenClipboard()); }).join();
    EXPECT_TRUE(Current().OpenClipboard());
}

} // namespace
