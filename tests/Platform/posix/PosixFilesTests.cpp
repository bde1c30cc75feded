#include "Platform/Platform.h"
#include "Platform/posix/Child.h"
#include "Platform/posix/Files.h"
#include "support/FaultyServices.h"
#include "support/TemporaryFolder.h"

#include <atomic>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <sched.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/vfs.h>
#include <thread>

namespace {

// A call of the system that fails on order, on files of this name.
struct Fault {
    const char* call = "";
    int error = 0;
    int times = 0;
    const char* name = "";
} fault;

bool Fails(const char* call, const char* path = "") {
    const std::string_view failing = fault.name, asked = path;
    if (std::string_view(call) != fault.call || fault.times == 0) return false;
    if (asked.size() < failing.size() || asked.substr(asked.size() - failing.size()) != failing) return false;
    --fault.times;
    errno = fault.error;
    return true;
}

} // namespace

// In the place of the C library's.
extern "C" {
int ftruncate(int descriptor, off_t size) noexcept {
    return Fails("ftruncate") ? -1 : static_cast<int>(syscall(SYS_ftruncate, descriptor, size));
}
int stat(const char* path, struct stat* status) noexcept {
    return Fails("stat", path) ? -1 : fstatat(AT_FDCWD, path, status, 0);
}
int fallocate(int descriptor, int mode, off_t offset, off_t size) {
    return Fails("fallocate") ? -1 : static_cast<int>(syscall(SYS_fallocate, descriptor, mode, offset, size));
}
int unlink(const char* path) noexcept {
    return Fails("unlink", path) ? -1 : static_cast<int>(syscall(SYS_unlink, path));
}
int statfs(const char* path, struct statfs* status) noexcept {
    return Fails("statfs", path) ? -1 : static_cast<int>(syscall(SYS_statfs, path, status));
}
int faccessat(int folder, const char* path, int mode, int) noexcept {
    return Fails("faccessat", path) ? -1 : static_cast<int>(syscall(SYS_faccessat, folder, path, mode));
}
}

namespace {

using namespace ZoPrimitives::Platform;
using testing::ElementsAre;
using ZoPrimitives::Testing::FaultyServices;
using ZoPrimitives::Testing::TemporaryFolder;

FileHandle Open(const std::string& path, Access access, Share share,
                Creation creation = Creation::OpenExisting) {
    return Current().OpenFile(path.c_str(), access, share, creation);
}

int Idle() {
    for (;;) pause();
}

struct PosixFilesTests : testing::Test {
    PosixFilesTests() { folder.Write("f", "data"); }
    bool Copy(const char* from, const char* to) const {
        return Current().CopyWholeFile(folder.Path(from).c_str(), folder.Path(to).c_str());
    }
    TemporaryFolder folder;
};

TEST_F(PosixFilesTests, AClaimGoesWithItsProcess) {
    const auto open = [&](Share share) { return Open(folder.Path("f"), Access::ReadWrite, share); };
    const Child child([&] {
        while (open(Share::None) == nullptr) continue;
        return Idle();
    });
    while (const FileHandle file = open(Share::Read)) Current().CloseFile(file); // until it is the child's
    child.Kill();
    EXPECT_TRUE(Current().CloseFile(open(Share::Read)));
}

TEST_F(PosixFilesTests, AChildNeitherKeepsNorReleasesWhatItsParentOpened) {
    const FileHandle file = Open(folder.Path("f"), Access::ReadWrite, Share::None);
    const auto open = [&] {
        return Open(folder.Path("f"), Access::ReadWrite, Share::None) ? 0 : static_cast<int>(LastError());
    };
    EXPECT_EQ(Child([&] { return Current().CloseFile(file) ? 0 : 1; }).Wait(), 0);
    EXPECT_EQ(Child(open).Wait(), 32);
    const Child holder(Idle);
    Current().CloseFile(file);
    EXPECT_EQ(Child(open).Wait(), 0);
    holder.Kill();
}

// An opening that has shown that it denies reading, and neither settles nor gives up.
struct Rival {
    explicit Rival(const std::string& path) : descriptor(open(path.c_str(), O_RDONLY)) {
        struct flock lock {};
        lock.l_type = F_RDLCK;
        // The places of the marks are the same in every version of the library: processes of two versions
        // meet.
        lock.l_start = (off_t{1} << 62) + 8 + 3;
        lock.l_len = 1;
        EXPECT_EQ(fcntl(descriptor, F_OFD_SETLK, &lock), 0);
    }
    ~Rival() { close(descriptor); }
    int descriptor;
};

TEST_F(PosixFilesTests, AFileReplacedWhileWaitingForARivalIsLookedForAgain) {
    std::optional<Rival> rival(folder.Path("f"));
    FaultyServices services;
    services.onWait = [&](unsigned) {
        std::filesystem::remove(folder.Path("f"));
        folder.Write("f", "another");
        rival.reset();
    };
    const FileHandle file = Open(folder.Path("f"), Access::ReadWrite, Share::Read);
    EXPECT_EQ(services.Count("Wait"), 1);
    EXPECT_TRUE(Current().WriteFile(file, "A", 1));
    Current().CloseFile(file);
    EXPECT_EQ(folder.Read("f"), "Another");
}

TEST_F(PosixFilesTests, ARivalIsAwaitedForASecond) {
    const Rival rival(folder.Path("f"));
    FaultyServices services;
    unsigned waited = 0;
    services.onWait = [&](unsigned milliseconds) { waited += milliseconds; };
    EXPECT_EQ(Open(folder.Path("f"), Access::ReadWrite, Share::Read), nullptr);
    EXPECT_EQ(LastError(), ErrorSharingViolation);
    EXPECT_NEAR(waited, 1003, 3);
}

TEST_F(PosixFilesTests, WhatFailsIsNotTakenForAnAnswer) {
    const std::string path = folder.Path("f"), fresh = folder.Path("fresh"), source = folder.Path("source");
    const auto create = [&] {
        return Current().CloseFile(Open(path, Access::ReadWrite, Share::Read, Creation::CreateAlways));
    };
    const auto copy = [&] { return Current().CopyWholeFile(source.c_str(), path.c_str()); };
    const auto copyNew = [&] { return Current().CopyWholeFile(source.c_str(), fresh.c_str()); };
    const auto remove = [&] { return Current().DeleteWholeFile(path.c_str()); };
    const auto exists = [&] { return Current().FileExists(path.c_str(), nullptr); };
    const auto writable = [&] {
        bool readOnly = false;
        return Current().FileExists(path.c_str(), &readOnly) && !readOnly;
    };
    const auto readOnlyDisk = [&] {
        bool readOnly = false;
        return Current().FileExists(path.c_str(), &readOnly) && readOnly;
    };
    const auto temporary = [&] { return !Current().TemporaryFileName(path.c_str()).empty(); };
    const auto local = [&] { return !Current().NetworkFile(path.c_str()); };
    const std::tuple<const char*, Fault, std::function<bool()>, unsigned long, const char*> rows[] = {
        {"emptied on the third try", {"ftruncate", EINTR, 2, ""}, create, 0, ""},
        {"cut off on the third try", {"ftruncate", EINTR, 2, ""}, copy, 0, "new"},
        {"no room for a copy", {"fallocate", ENOSPC, 1, ""}, copy, ErrorDiskFull, "older"},
        {"no room for a new file", {"fallocate", ENOSPC, 1, ""}, copyNew, ErrorDiskFull, "older"},
        {"room on the third try", {"fallocate", EINTR, 2, ""}, copy, 0, "new"},
        {"not deleted from a read-only disk", {"unlink", EROFS, 1, "f"}, remove, ErrorWriteProtect, "older"},
        {"may not be written on one", {"faccessat", EROFS, 1, "f"}, readOnlyDisk, 0, "older"},
        {"not emptied", {"ftruncate", EIO, 1, ""}, create, ErrorInvalidHandle, "older"},
        {"existence", {"stat", EIO, 1, "f"}, exists, ErrorDevice, "older"},
        {"existence, not allowed", {"stat", EACCES, 1, "f"}, exists, ErrorAccessDenied, "older"},
        {"kind of file", {"stat", EIO, 1, "f"}, create, ErrorInvalidHandle, "older"},
        {"kind of target", {"stat", EIO, 1, "f"}, copy, ErrorDevice, "older"},
        {"permissions", {"stat", EIO, 1, "f"}, temporary, ErrorDevice, "older"},
        {"may be written", {"faccessat", EIO, 1, "f"}, writable, ErrorDevice, "older"},
        {"drive, on the third try", {"statfs", EINTR, 2, "f"}, local, 0, "older"},
        {"drive of a silent server", {"statfs", ESTALE, 1, "f"}, [&] { return !local(); }, 0, "older"},
    };
    for (const auto& [name, ordered, operation, error, content] : rows) {
        SCOPED_TRACE(name);
        folder.Write("f", "older");
        folder.Write("source", "new");
        fault = ordered;
        EXPECT_EQ(operation(), error == 0);
        EXPECT_TRUE(error == 0 || LastError() == error) << LastError();
        EXPECT_EQ(fault.times, 0);
        fault = {};
        EXPECT_EQ(folder.Read("f"), content);
        EXPECT_THAT(folder.Names(), ElementsAre("f", "source"));
    }
}

TEST_F(PosixFilesTests, AFullDeviceIsAFullDisk) {
    const FileHandle full = Open("/dev/full", Access::ReadWrite, Share::Read, Creation::CreateAlways);
    const FileHandle again = Open("/dev/full", Access::ReadWrite, Share::None, Creation::CreateAlways);
    ASSERT_TRUE(full != nullptr && again != nullptr) << "devices are not locked";
    Current().CloseFile(again);
    unsigned long long size = 0;
    EXPECT_TRUE(!Current().WriteFile(full, "x", 1) && LastError() == ErrorDiskFull);
    EXPECT_TRUE(Current().SynchroniseFile(full) && !Current().FileSize(full, size) &&
                Current().CloseFile(full));
    EXPECT_FALSE(Current().CopyWholeFile(folder.Path("f").c_str(), "/dev/full"));
    EXPECT_EQ(LastError(), ErrorDiskFull);
}

TEST_F(PosixFilesTests, OddPathsTellWhyTheyFail) {
    std::filesystem::create_symlink("loop", folder.Path("loop"));
    ASSERT_EQ(mkfifo(folder.Path("pipe").c_str(), 0666), 0);
    const std::tuple<const char*, std::string, unsigned long> rows[] = {
        {"a file as a folder", folder.Path("f/x"), ErrorPathNotFound},
        {"a link to itself", folder.Path("loop"), ErrorUnresolvedLink},
        {"a name too long", folder.Path(std::string(300, 'n')), ErrorFilenameTooLong},
        {"a pipe without another end", folder.Path("pipe"), ErrorAccessDenied},
    };
    for (const auto& [name, path, error] : rows) {
        EXPECT_EQ(Open(path, Access::Read, Share::ReadWrite), nullptr) << name;
        EXPECT_EQ(LastError(), error) << name;
    }
}

TEST_F(PosixFilesTests, TheNumberOfStandardInputIsNoHandle) {
    const Child child([&] {
        close(STDIN_FILENO);
        if (Open(folder.Path("f"), Access::Read, Share::Read) == nullptr) return 1;
        const rlimit limit{3, 3}; // another number is needed, and there is none
        if (setrlimit(RLIMIT_NOFILE, &limit) != 0) return 2;
        return Open(folder.Path("new"), Access::ReadWrite, Share::Read, Creation::CreateAlways) ? 3 : 0;
    });
    EXPECT_EQ(child.Wait(), 0);
    EXPECT_THAT(folder.Names(), ElementsAre("f")) << "what was created for nothing is gone";
}

std::atomic<int> interruptions;

TEST_F(PosixFilesTests, InterruptedCallsGoOn) {
    struct sigaction action = {}, previous = {};
    action.sa_handler = [](int) { ++interruptions; };
    sigaction(SIGALRM, &action, &previous);
    const itimerval often{{0, 300}, {0, 300}}, never{};
    setitimer(ITIMER_REAL, &often, nullptr);
    const auto handle = [](int descriptor) {
        return reinterpret_cast<FileHandle>(static_cast<std::intptr_t>(descriptor)); // as on POSIX they are
    };
    // More than a pipe holds: both the writer's and the reader's calls are cut short, the next do nothing.
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const std::string sent(300'000, 'x');
    std::string received(sent.size(), '\0');
    std::thread reader([&] {
        for (const int enough = interruptions + 4; interruptions < enough;) sched_yield();
        std::size_t done = 0;
        EXPECT_TRUE(Current().ReadFile(handle(ends[0]), received.data(), received.size(), done));
        EXPECT_EQ(done, sent.size());
    });
    EXPECT_TRUE(Current().WriteFile(handle(ends[1]), sent.data(), sent.size() / 2));
    for (const int enough = interruptions + 4; interruptions < enough;) sched_yield();
    EXPECT_TRUE(Current().WriteFile(handle(ends[1]), sent.data(), sent.size() / 2));
    reader.join();
    EXPECT_TRUE(received == sent);
    for (const int end : ends) close(end);
    setitimer(ITIMER_REAL, &never, nullptr);
    sigaction(SIGALRM, &previous, nullptr);
}

TEST_F(PosixFilesTests, LinksAreFollowedButDeletedThemselves) {
    std::filesystem::create_symlink("f", folder.Path("link"));
    const FileHandle file = Open(folder.Path("link"), Access::ReadWrite, Share::Read, Creation::CreateAlways);
    EXPECT_EQ(Open(folder.Path("f"), Access::ReadWrite, Share::Read), nullptr);
    EXPECT_TRUE(Current().WriteFile(file, "through", 7));
    Current().CloseFile(file);
    EXPECT_EQ(folder.Read("f"), "through");

    folder.Write("source", "copied");
    EXPECT_TRUE(Copy("source", "link"));
    EXPECT_TRUE(std::filesystem::is_symlink(folder.Path("link")));
    EXPECT_EQ(folder.Read("f"), "copied");

    EXPECT_TRUE(Current().DeleteWholeFile(folder.Path("link").c_str()));
    EXPECT_THAT(folder.Names(), ElementsAre("f", "source"));
}

TEST_F(PosixFilesTests, PermissionsAreNeverWidened) {
    const mode_t previous = umask(022);
    chmod(folder.Path("f").c_str(), 0600);
    EXPECT_EQ(folder.Permissions(Current().TemporaryFileName(folder.Path("f").c_str())), 0600U);
    EXPECT_EQ(folder.Permissions(Current().TemporaryFileName(folder.Path("new").c_str())), 0644U);

    EXPECT_TRUE(Copy("f", "copy"));
    chmod(folder.Path("f").c_str(), 0664); // the copy of a group's file stays the group's
    EXPECT_TRUE(Copy("f", "shared"));
    EXPECT_EQ(folder.Permissions("shared"), 0664U);
    for (int times = 0; times < 2; ++times) { // an existing target keeps its own
        EXPECT_EQ(folder.Permissions("copy"), 0600U);
        EXPECT_TRUE(Copy("f", "copy"));
    }
    umask(previous);
}

TEST_F(PosixFilesTests, KnowsTheFileSystemsOfOtherMachines) {
    for (const std::uint32_t nfsCifsSmb2And9p : {0x6969u, 0xFF534D42u, 0xFE534D42u, 0x01021997u})
        EXPECT_TRUE(NetworkFileSystem(nfsCifsSmb2And9p));
    for (const std::uint32_t ext4TmpfsAndFuse : {0xEF53u, 0x01021994u, 0x65735546u})
        EXPECT_FALSE(NetworkFileSystem(ext4TmpfsAndFuse));
    EXPECT_FALSE(Current().NetworkFile("/proc/none"));
    EXPECT_FALSE(Current().NetworkFile("/none/none"));
}

} // namespace
