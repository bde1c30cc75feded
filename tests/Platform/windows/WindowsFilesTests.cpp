#include "Platform/Platform.h"
#include "Platform/windows/Windows.h"
#include "support/FaultyServices.h"
#include "support/TemporaryFolder.h"

#include <filesystem>
#include <gmock/gmock.h>

namespace {

using namespace ZoPrimitives::Platform;
using testing::ElementsAre;
using testing::IsEmpty;
using ZoPrimitives::Testing::FaultyServices;
using ZoPrimitives::Testing::TemporaryFolder;

struct WindowsFilesTests : testing::Test {
    WindowsFilesTests() {
        folder.Write("source", "new");
        folder.Write("target", "old");
        services.onWait = [&](unsigned milliseconds) {
            waits.push_back(milliseconds);
            if (waits.size() == released) Release();
        };
    }
    ~WindowsFilesTests() override { Release(); }

    bool Copy() {
        return Current().CopyWholeFile(folder.Path("source").c_str(), folder.Path("target").c_str());
    }
    /// As another program would, sharing what it likes.
    void Hold(const char* name, DWORD share) {
        held =
            CreateFileA(folder.Path(name).c_str(), GENERIC_READ, share, nullptr, OPEN_EXISTING, 0, nullptr);
        ASSERT_NE(held, INVALID_HANDLE_VALUE);
    }
    void Release() {
        if (held != INVALID_HANDLE_VALUE) CloseHandle(std::exchange(held, INVALID_HANDLE_VALUE));
    }

    TemporaryFolder folder;
    FaultyServices services;
    std::vector<unsigned> waits;
    std::size_t released = 0; // by the wait of this number
    HANDLE held = INVALID_HANDLE_VALUE;
};

TEST_F(WindowsFilesTests, ACopyOutlastsShortInterference) {
    released = 3;
    Hold("target", FILE_SHARE_READ);
    EXPECT_TRUE(Copy());
    EXPECT_THAT(waits, ElementsAre(10, 20, 40));
    EXPECT_EQ(folder.Read("target"), "new");
}

TEST_F(WindowsFilesTests, ACopyEndsWhenInterferenceDoesNot) {
    Hold("target", 0);
    EXPECT_FALSE(Copy());
    EXPECT_EQ(LastError(), ErrorSharingViolation);
    EXPECT_THAT(waits, ElementsAre(10, 20, 40, 80, 160, 320, 640));
    Release();
    EXPECT_EQ(folder.Read("target"), "old");
}

TEST_F(WindowsFilesTests, NobodyWaitsForWhatStays) {
    const std::tuple<const char*, std::string, std::string, unsigned long> rows[] = {
        {"a read-only target", folder.Path("source"), folder.Path("readonly"), ErrorAccessDenied},
        {"itself", folder.Path("target"), folder.Path() + "/./target", ErrorSharingViolation},
    };
    folder.Write("readonly", "old");
    folder.MakeReadOnly("readonly");
    for (const auto& [name, from, to, error] : rows) {
        EXPECT_FALSE(Current().CopyWholeFile(from.c_str(), to.c_str())) << name;
        EXPECT_EQ(LastError(), error) << name;
    }
    EXPECT_THAT(waits, IsEmpty());
}

TEST_F(WindowsFilesTests, AReadOnlyFileIsCopiedAsOne) {
    folder.MakeReadOnly("source");
    EXPECT_TRUE(Current().CopyWholeFile(folder.Path("source").c_str(), folder.Path("fresh").c_str()));
    bool readOnly = false;
    EXPECT_TRUE(Current().FileExists(folder.Path("fresh").c_str(), &readOnly));
    EXPECT_TRUE(readOnly);
    EXPECT_EQ(folder.Read("fresh"), "new");
}

TEST_F(WindowsFilesTests, ACopyWithoutRoomLeavesTheTarget) {
    ULARGE_INTEGER available;
    ASSERT_TRUE(GetDiskFreeSpaceExA(folder.Path().c_str(), &available, nullptr, nullptr));
    const HANDLE file =
        CreateFileA(folder.Path("source").c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    LARGE_INTEGER size;
    size.QuadPart = static_cast<LONGLONG>(available.QuadPart + (1ULL << 30));
    const bool larger = SetFilePointerEx(file, size, nullptr, FILE_BEGIN) && SetEndOfFile(file);
    CloseHandle(file);
    if (!larger) GTEST_SKIP() << "no file here can be larger than the disk";
    EXPECT_FALSE(Copy());
    EXPECT_EQ(LastError(), ErrorDiskFull);
    EXPECT_EQ(folder.Read("target"), "old");
}

TEST_F(WindowsFilesTests, KnowsThePathsOfOtherMachines) {
    const std::tuple<const char*, bool> rows[] = {
        {R"(\\server\share\plan.zo)", true},
        {"//server/share/plan.zo", true},
        {R"(\\?\UNC\server\share\plan.zo)", true},
        {R"(\\?\unc\server\share\plan.zo)", true},
        {R"(\\?\C:\windows\plan.zo)", false},
        {R"(\\.\C:)", false},
        {R"(C:\windows\none\plan.zo)", false},
        {"plan.zo", false},
        {"", false},
    };
    for (const auto& [path, network] : rows) EXPECT_EQ(Services().NetworkFile(path), network) << path;
}

TEST_F(WindowsFilesTests, PathsAreBytesOfTheCodePage) {
    if (GetACP() != 1252) GTEST_SKIP() << "another code page";
    const std::string path = folder.Path() + "\\a\xE7\xE3o.zo";
    const FileHandle file =
        Current().OpenFile(path.c_str(), Access::ReadWrite, Share::Read, Creation::CreateAlways);
    ASSERT_NE(file, nullptr);
    Current().CloseFile(file);
    EXPECT_TRUE(std::filesystem::exists(std::filesystem::path(folder.Path()) / L"a\u00E7\u00E3o.zo"));
}

TEST_F(WindowsFilesTests, OthersMayReadWhatIsBeingWrittenAndNothingElse) {
    const FileHandle file = Current().OpenFile(folder.Path("target").c_str(), Access::ReadWrite, Share::Read,
                                               Creation::OpenExisting);
    const std::tuple<DWORD, DWORD, bool> rows[] = {
        {GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, true},
        {GENERIC_READ, FILE_SHARE_READ, false},
        {GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, false},
        {DELETE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, false},
    };
    for (const auto& [access, share, opens] : rows) {
        held = CreateFileA(folder.Path("target").c_str(), access, share, nullptr, OPEN_EXISTING, 0, nullptr);
        EXPECT_EQ(held != INVALID_HANDLE_VALUE, opens) << access << ' ' << share;
        Release();
    }
    Current().CloseFile(file);
}

} // namespace
