#include "Platform/Platform.h"
#include "Platform/windows/Paths.h"
#include "Platform/windows/Windows.h"
#include "ZoPrimitives/FileBinOutStream.h"
#include "ZoPrimitives/TZoPath.h"
#include "ZoPrimitives/pointer.h"
#include "support/FaultyServices.h"
#include "support/TemporaryFolder.h"

#include <filesystem>
#include <functional>
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

    std::filesystem::path Wide(const char* name) const { return std::filesystem::path(folder.Path()) / name; }
    bool Copy() {
        return Current().CopyWholeFile(folder.Path("source").c_str(), folder.Path("target").c_str());
    }
    bool Move() {
        return Current().MoveWholeFile(folder.Path("source").c_str(), folder.Path("target").c_str());
    }
    bool Delete() { return Current().DeleteWholeFile(folder.Path("target").c_str()); }
    bool Create(Creation creation) {
        const FileHandle file =
            Current().OpenFile(folder.Path("target").c_str(), Access::ReadWrite, Share::Read, creation);
        return file != nullptr && Current().CloseFile(file);
    }
    bool Fill() { return Create(Creation::FillTemporary); }

    /// As another program would, sharing what it likes.
    void Hold(const std::filesystem::path& path, DWORD share, DWORD access = GENERIC_READ) {
        held = CreateFileW(path.c_str(), access, share, nullptr, OPEN_EXISTING, 0, nullptr);
    }
    /// As a scanner that looks at a file through memory.
    void Map(const std::filesystem::path& path) {
        Hold(path, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE);
        const HANDLE mapping = CreateFileMappingW(held, nullptr, PAGE_READONLY, 0, 0, nullptr);
        view = MapViewOfFile(mapping, FILE_MAP_READ, 0, 0, 0);
        CloseHandle(mapping);
        CloseHandle(std::exchange(held, INVALID_HANDLE_VALUE));
    }
    void Release() {
        if (held != INVALID_HANDLE_VALUE) CloseHandle(std::exchange(held, INVALID_HANDLE_VALUE));
        if (view != nullptr) UnmapViewOfFile(std::exchange(view, nullptr));
    }

    TemporaryFolder folder;
    FaultyServices services;
    std::vector<unsigned> waits;
    std::size_t released = 0; // by the wait of this number
    HANDLE held = INVALID_HANDLE_VALUE;
    void* view = nullptr;
};

TEST_F(WindowsFilesTests, OperationsOutlastAScanner) {
    const struct {
        const char* name;
        const char* scanned;
        bool mapped;
        bool (WindowsFilesTests::*operation)();
        DWORD error;
    } rows[] = {
        {"copy onto an open file", "target", false, &WindowsFilesTests::Copy, ERROR_SHARING_VIOLATION},
        {"copy onto a mapped file", "target", true, &WindowsFilesTests::Copy, ERROR_USER_MAPPED_FILE},
        {"rename an open file", "source", false, &WindowsFilesTests::Move, ERROR_SHARING_VIOLATION},
        {"rename onto an open file", "target", false, &WindowsFilesTests::Move, ERROR_SHARING_VIOLATION},
        {"fill an open temporary", "target", false, &WindowsFilesTests::Fill, ERROR_SHARING_VIOLATION},
        {"fill a mapped temporary", "target", true, &WindowsFilesTests::Fill, ERROR_USER_MAPPED_FILE},
        {"delete an open file", "target", false, &WindowsFilesTests::Delete, ERROR_SHARING_VIOLATION},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        for (const bool leaves : {false, true}) {
            folder.Write("source", "new");
            folder.Write("target", "old");
            waits.clear();
            released = leaves ? 3 : 0;
            row.mapped ? Map(Wide(row.scanned)) : Hold(Wide(row.scanned), FILE_SHARE_READ);
            EXPECT_EQ((this->*row.operation)(), leaves);
            if (leaves) {
                EXPECT_THAT(waits, ElementsAre(10, 20, 40));
            } else {
                EXPECT_EQ(LastError(), row.error);
                EXPECT_THAT(waits, ElementsAre(10, 20, 40, 80, 160, 320, 640));
            }
            Release();
            EXPECT_EQ(!leaves, folder.Has("target") && folder.Read("target") == "old");
        }
    }
}

TEST_F(WindowsFilesTests, ASaveSucceedsThoughItsTemporaryIsRead) {
    for (const bool leaves : {true, false}) {
        services.onCall = [&](const std::string& call) {
            if (call.rfind("MoveWholeFile", 0) != 0) return;
            for (const std::string& name : folder.Names())
                if (name.rfind("~zo", 0) == 0) Hold(Wide(name.c_str()), FILE_SHARE_READ);
        };
        waits.clear();
        released = leaves ? 10 : 0; // while the temporary is being deleted, or not at all
        const ZoPrimitives::pointer<ZoPrimitives::TFileBinOutStream> out(
            ZoPrimitives::TFileBinOutStream::Create(Wide("target"), false));
        out->SetThroughTemporary(true);
        out->Initialize();
        EXPECT_NO_THROW(out->Finalize());
        EXPECT_EQ(folder.Read("target").size(), 28u) << "a header";
        EXPECT_EQ(folder.Names().size(), leaves ? 2u : 3u);
        Release();
    }
}

TEST_F(WindowsFilesTests, NobodyWaitsForWhatStays) {
    CreateDirectoryW(Wide("folder").c_str(), nullptr);
    folder.Write("readonly", "old");
    folder.MakeReadOnly("readonly");
    const std::string source = folder.Path("source"), target = folder.Path("target"),
                      readOnly = folder.Path("readonly");
    const struct {
        const char* name;
        std::function<bool()> operation;
        unsigned long error;
    } rows[] = {
        {"copy onto a read-only file",
         [&] { return Current().CopyWholeFile(source.c_str(), readOnly.c_str()); }, ErrorAccessDenied},
        {"copy onto a folder",
         [&] { return Current().CopyWholeFile(source.c_str(), folder.Path("folder").c_str()); },
         ErrorAccessDenied},
        {"copy onto itself",
         [&] { return Current().CopyWholeFile(target.c_str(), (folder.Path() + "/./target").c_str()); },
         ErrorSharingViolation},
        {"delete a read-only file", [&] { return Current().DeleteWholeFile(readOnly.c_str()); },
         ErrorAccessDenied},
        {"rename to a read-only file",
         [&] { return Current().MoveWholeFile(source.c_str(), readOnly.c_str()); }, ErrorAccessDenied},
        {"open what another has open",
         [&] {
             Hold(Wide("target"), FILE_SHARE_READ);
             return Create(Creation::CreateAlways);
         },
         ErrorSharingViolation},
    };
    for (const auto& [name, operation, error] : rows) {
        EXPECT_FALSE(operation()) << name;
        EXPECT_EQ(LastError(), error) << name;
    }
    EXPECT_THAT(waits, IsEmpty());
}

TEST_F(WindowsFilesTests, AHiddenFileStaysHidden) {
    for (const DWORD attributes : {DWORD{FILE_ATTRIBUTE_HIDDEN}, DWORD{FILE_ATTRIBUTE_SYSTEM}}) {
        SetFileAttributesW(Wide("target").c_str(), attributes);
        EXPECT_TRUE(Copy());
        EXPECT_EQ(folder.Read("target"), "new");
        EXPECT_TRUE(Create(Creation::CreateAlways));
        EXPECT_EQ(folder.Read("target"), "");
        const DWORD kept = GetFileAttributesW(Wide("target").c_str());
        EXPECT_EQ(kept & (FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM), attributes);
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
    ASSERT_TRUE(GetDiskFreeSpaceExW(Wide("").c_str(), &available, nullptr, nullptr));
    const HANDLE file =
        CreateFileW(Wide("source").c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
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

TEST(WindowsPathsTests, AreWideAndLong) {
    const std::string deep = "folder\\" + std::string(250, 'n'), deeper = deep + '\\' + deep;
    const std::wstring wide(deeper.begin(), deeper.end());
    const std::tuple<const char*, std::string, std::wstring> rows[] = {
        {"short", R"(C:\plan.zo)", LR"(C:\plan.zo)"},
        {"relative", "plan.zo", L"plan.zo"},
        {"of other characters", "\u03A3/\u8A2D", L"\u03A3/\u8A2D"},
        {"long", "C:/x/../" + deeper, LR"(\\?\C:\)" + wide},
        {"long and relative", deeper, LR"(\\?\)" + FullPath(wide.c_str())},
        {"long, on a server", R"(\\server\share\)" + deeper, LR"(\\?\UNC\server\share\)" + wide},
        {"long and verbatim", R"(\\?\C:\)" + deeper, LR"(\\?\C:\)" + wide},
        {"a name too long", "C:/" + std::string(256, 'n'), L""},
        {"not UTF-8", "a\xE7", L""},
    };
    for (const auto& [name, given, taken] : rows) {
        const SystemPath path(given.c_str());
        EXPECT_EQ(path ? path.c_str() : L"", taken) << name;
        EXPECT_TRUE(path || LastError() == ErrorInvalidName) << name;
    }
}

TEST(WindowsPathsTests, ComeFromTheCodePage) {
    if (GetACP() != 1252) GTEST_SKIP() << "another code page";
    const ZoPrimitives::TZoPath text("a\xE7\xE3o"), path(std::filesystem::path(L"a\u00E7\u00E3o \u03A3"));
    EXPECT_STREQ(text.Utf8().c_str(), "a\u00E7\u00E3o");
    EXPECT_STREQ(path.Text().c_str(), "a\xE7\xE3o ?") << "not a similar character, which names another file";
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
        Hold(Wide("target"), share, access);
        EXPECT_EQ(held != INVALID_HANDLE_VALUE, opens) << access << ' ' << share;
        Release();
    }
    Current().CloseFile(file);
}

} // namespace
