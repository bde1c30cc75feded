#include "Platform/Clipboard.h"
#include "Platform/windows/Windows.h"

#include <gtest/gtest.h>

namespace {

using namespace ZoPrimitives::Platform;

TEST(RealClipboardOwnerTests, IsOneWindowOfTheThreads) {
    HWND owners[2];
    for (HWND& owner : owners) {
        EXPECT_TRUE(Copy(Current().ClipboardFormat("ZoPrimitives.Test"), "x"));
        owner = GetClipboardOwner();
        EXPECT_EQ(GetWindowThreadProcessId(owner, nullptr), GetCurrentThreadId());
    }
    EXPECT_EQ(owners[0], owners[1]);
}

} // namespace
