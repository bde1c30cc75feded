#include "Platform/Clipboard.h"
#include "Platform/posix/Child.h"
#include "support/FaultyServices.h"
#include "support/PrivateClipboard.h"

#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <sys/stat.h>

namespace {

using namespace ZoPrimitives::Platform;
using testing::ElementsAre;
using ZoPrimitives::Testing::PrivateClipboard;
using ZoPrimitives::Testing::TemporaryFolder;

constexpr const char* Folder = "zoprimitives-clipboard";

int Elsewhere(const std::function<int()>& body) { return Child(body).Wait(); }

struct PosixClipboardTests : testing::Test {
    ~PosixClipboardTests() override { Current().CloseClipboard(); }

    PrivateClipboard clipboard;
    unsigned format = Current().ClipboardFormat("Zo Test");
    std::string store = clipboard.Folder().Path(Folder);
    std::string file = store + "/zo%20test";
};

TEST_F(PosixClipboardTests, IsAFolderOfTheUsersOwn) {
    EXPECT_TRUE(Copy(format, "data"));
    EXPECT_EQ(clipboard.Folder().Permissions(store), 0700u);
    EXPECT_EQ(clipboard.Folder().Permissions(file), 0600u);
    EXPECT_EQ(Paste(format), "data");
}

TEST_F(PosixClipboardTests, IsRefusedWhereOthersCouldReachIt) {
    const TemporaryFolder elsewhere;
    const std::pair<const char*, std::function<void()>> rows[] = {
        {"open permissions", [&] { mkdir(store.c_str(), 0700), chmod(store.c_str(), 0750); }},
        {"a link to a private folder", [&] { symlink(elsewhere.Path().c_str(), store.c_str()); }},
        {"a link to nothing", [&] { symlink("nothing", store.c_str()); }},
        {"a file", [&] { clipboard.Folder().Write(Folder, ""); }},
    };
    chmod(elsewhere.Path().c_str(), 0700);
    for (const auto& [name, plant] : rows) {
        plant();
        EXPECT_FALSE(Current().OpenClipboard()) << name;
        EXPECT_EQ(LastError(), ErrorInvalidOwner) << name;
        std::filesystem::remove(store);
    }
}

TEST_F(PosixClipboardTests, IsRefusedToAnotherUser) {
    if (geteuid() != 0) GTEST_SKIP() << "takes a superuser to be another user";
    EXPECT_TRUE(Copy(format, "root's"));
    chmod(clipboard.Folder().Path().c_str(), 0777);
    const int outcome = Elsewhere([&] {
        if (seteuid(12345) != 0) return 98;
        setenv("TMPDIR", clipboard.Folder().Path().c_str(), 1);
        // Not this user's run-time folder: in the temporary one, under the user's number.
        if (!Copy(format, "theirs") || Paste(format) != "theirs") return 1;
        if (!std::filesystem::exists(store + "-12345")) return 2;
        // Where somebody else has made a folder under that name before.
        std::filesystem::rename(store + "-12345", store + "-old");
        if (seteuid(0) != 0) return 98;
        mkdir((store + "-12345").c_str(), 0700);
        if (chown((store + "-12345").c_str(), 54321, 54321) != 0 || seteuid(12345) != 0) return 98;
        return Current().OpenClipboard() ? 3 : static_cast<int>(LastError() == ErrorInvalidOwner ? 0 : 4);
    });
    EXPECT_EQ(outcome, 0);
    EXPECT_EQ(Paste(format), "root's");
}

TEST_F(PosixClipboardTests, IsInTheTemporaryFolderWithoutARunTimeFolder) {
    for (const char* runTime : {"", "relative", "/nowhere/at/all"}) {
        const TemporaryFolder temporary;
        EXPECT_EQ(Elsewhere([&] {
                      setenv("TMPDIR", temporary.Path().c_str(), 1);
                      setenv("XDG_RUNTIME_DIR", runTime, 1);
                      return Copy(format, "data") && Paste(format) == "data" ? 0 : 1;
                  }),
                  0)
            << runTime;
        EXPECT_THAT(temporary.Names(), ElementsAre(std::string(Folder) + "-" + std::to_string(geteuid())));
    }
}

TEST_F(PosixClipboardTests, TakesNothingButAFileForData) {
    const TemporaryFolder elsewhere;
    elsewhere.Write("secret", "secret");
    EXPECT_TRUE(Copy(format, "data"));
    const std::pair<const char*, std::function<void()>> rows[] = {
        {"a pipe", [&] { mkfifo(file.c_str(), 0600); }},
        {"a link", [&] { symlink(elsewhere.Path("secret").c_str(), file.c_str()); }},
        {"a folder", [&] { mkdir(file.c_str(), 0700); }},
    };
    for (const auto& [name, plant] : rows) {
        std::filesystem::remove(file);
        plant();
        EXPECT_EQ(Paste(format), std::nullopt) << name;
    }
    std::filesystem::remove(file);
    // What lies where the new file is made is not written to either.
    symlink(elsewhere.Path("secret").c_str(), (store + "/+new").c_str());
    EXPECT_TRUE(Copy(format, "data"));
    EXPECT_EQ(Paste(format), "data");
    EXPECT_EQ(elsewhere.Read("secret"), "secret");
}

TEST_F(PosixClipboardTests, GoesWithNoOneWhoHasItOpen) {
    ASSERT_TRUE(Current().OpenClipboard());
    ZoPrimitives::Testing::FaultyServices services; // they wait for nobody
    const auto open = [&] { return services.OpenClipboard() ? 0 : static_cast<int>(LastError()); };
    EXPECT_EQ(Elsewhere(open), 32);
    EXPECT_EQ(Elsewhere([] { return Current().CloseClipboard(), 0; }), 0);
    EXPECT_EQ(Elsewhere(open), 32) << "a child that closes, or ends, does not close it for its parent";
    Current().CloseClipboard();

    EXPECT_EQ(Elsewhere([] {
                  if (Current().OpenClipboard()) raise(SIGKILL);
                  return 1;
              }),
              -1);
    EXPECT_TRUE(services.OpenClipboard()) << "after a crash";
}

} // namespace
