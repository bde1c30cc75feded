#include "Platform/Platform.h"
#include "support/FaultyServices.h"
#include "support/TemporaryFolder.h"

#include <atomic>
#include <filesystem>
#include <gmock/gmock.h>
#include <thread>

namespace {

using namespace ZoPrimitives::Platform;
using testing::ElementsAre;
using ZoPrimitives::Testing::FaultyServices;
using ZoPrimitives::Testing::TemporaryFolder;

FileHandle Open(const std::string& path, Access access = Access::ReadWrite, Share share = Share::Read,
                Creation creation = Creation::OpenExisting) {
    return Current().OpenFile(path.c_str(), access, share, creation);
}

bool Copy(const std::string& from, const std::string& to) {
    return Current().CopyWholeFile(from.c_str(), to.c_str());
}

FileHandle Create(const std::string& path) {
    return Open(path, Access::ReadWrite, Share::Read, Creation::CreateAlways);
}

struct FilesTests : testing::Test {
    TemporaryFolder folder;
};

struct Mode {
    const char* name;
    Access access;
    Share share;
};
constexpr Mode Openings[] = {
    {"read, alone", Access::Read, Share::None},
    {"read, among readers", Access::Read, Share::Read},
    {"read, among all", Access::Read, Share::ReadWrite},
    {"write, alone", Access::ReadWrite, Share::None},
    {"write, among readers", Access::ReadWrite, Share::Read},
    {"write, among all", Access::ReadWrite, Share::ReadWrite},
};
// Each row: the first opening; whether a second one succeeds, in the order of `Openings`.
constexpr const char* Together[] = {"------", "-++---", "-++-++", "------", "--+---", "--+--+"};

TEST_F(FilesTests, SharingIsAMatrixWithinOneProcess) {
    folder.Write("f", "data");
    for (int i = 0; i < 6; ++i) {
        for (int k = 0; k < 6; ++k) {
            SCOPED_TRACE(std::string(Openings[i].name) + " / " + Openings[k].name);
            const FileHandle first = Open(folder.Path("f"), Openings[i].access, Openings[i].share);
            ASSERT_NE(first, nullptr);
            const FileHandle second = Open(folder.Path("f"), Openings[k].access, Openings[k].share);
            EXPECT_EQ(second != nullptr, Together[i][k] == '+');
            EXPECT_TRUE(second != nullptr ? Current().CloseFile(second)
                                          : LastError() == ErrorSharingViolation);
            Current().CloseFile(first);
        }
    }
}

TEST_F(FilesTests, OpeningsTellWhyTheyFail) {
    folder.Write("file", "");
    folder.Write("readonly", "old");
    folder.MakeReadOnly("readonly");
    constexpr Access READ = Access::Read, WRITE = Access::ReadWrite;
    constexpr Creation OPEN = Creation::OpenExisting, CREATE = Creation::CreateAlways;
    const std::tuple<const char*, std::string, Access, Creation, unsigned long> rows[] = {
        {"no such file", folder.Path("none"), WRITE, OPEN, ErrorFileNotFound},
        {"no such folder", folder.Path("none/file"), WRITE, OPEN, ErrorPathNotFound},
        {"create in no such folder", folder.Path("none/file"), WRITE, CREATE, ErrorPathNotFound},
        {"no name", "", READ, OPEN, ErrorPathNotFound},
        {"a folder", folder.Path(), READ, OPEN, ErrorAccessDenied},
        {"create over a folder", folder.Path(), WRITE, CREATE, ErrorAccessDenied},
        {"write a read-only file", folder.Path("readonly"), WRITE, OPEN, ErrorAccessDenied},
        {"create over a read-only file", folder.Path("readonly"), WRITE, CREATE, ErrorAccessDenied},
    };
    for (const auto& [name, path, access, creation, error] : rows) {
        SCOPED_TRACE(name);
        SetLastError(ErrorNone);
        EXPECT_EQ(Open(path, access, Share::ReadWrite, creation), nullptr);
        EXPECT_EQ(LastError(), error);
    }
    EXPECT_EQ(folder.Read("readonly"), "old");
    EXPECT_THAT(folder.Names(), ElementsAre("file", "readonly"));

    const FileHandle reader = Open(folder.Path("readonly"), Access::Read, Share::ReadWrite);
    EXPECT_NE(reader, nullptr);
    EXPECT_FALSE(Current().WriteFile(reader, "x", 1));
    Current().CloseFile(reader);
}

TEST_F(FilesTests, NoHandleIsAnInvalidHandle) {
    char byte = 0;
    std::size_t done = 0;
    unsigned long long number = 0;
    const std::pair<const char*, std::function<bool()>> rows[] = {
        {"close", [] { return Current().CloseFile(nullptr); }},
        {"read", [&] { return Current().ReadFile(nullptr, &byte, 1, done); }},
        {"write", [&] { return Current().WriteFile(nullptr, &byte, 1); }},
        {"seek", [&] { return Current().SeekFile(nullptr, 0, Origin::Begin, number); }},
        {"size", [&] { return Current().FileSize(nullptr, number); }},
        {"truncate", [] { return Current().TruncateFile(nullptr, 0); }},
        {"synchronise", [] { return Current().SynchroniseFile(nullptr); }},
    };
    for (const auto& [name, operation] : rows) {
        SetLastError(ErrorNone);
        EXPECT_TRUE(!operation() && LastError() == ErrorInvalidHandle) << name;
    }
}

TEST_F(FilesTests, WritesSeeksAndReadsBeyondFourGigabytes) {
    constexpr unsigned long long Far = 5'000'000'000;
    const FileHandle file = Create(folder.Path("big"));
    unsigned long long number = 0;
    ASSERT_TRUE(Current().SeekFile(file, static_cast<long long>(Far), Origin::Begin, number));
    EXPECT_EQ(number, Far);
    ASSERT_TRUE(Current().WriteFile(file, "end", 3));
    ASSERT_TRUE(Current().FileSize(file, number));
    EXPECT_EQ(number, Far + 3);
    ASSERT_TRUE(Current().SeekFile(file, -5, Origin::End, number));
    EXPECT_EQ(number, Far - 2);

    char text[8] = "zzzzzzz";
    std::size_t done = 0;
    EXPECT_TRUE(Current().ReadFile(file, text, 8, done));
    EXPECT_EQ(std::string(text, done), std::string("\0\0end", 5));
    EXPECT_TRUE(Current().ReadFile(file, text, 8, done));
    EXPECT_EQ(done, 0U);

    EXPECT_TRUE(Current().SeekFile(file, -1, Origin::Current, number));
    EXPECT_EQ(number, Far + 2);
    EXPECT_FALSE(Current().SeekFile(file, -1, Origin::Begin, number));
    EXPECT_EQ(LastError(), ErrorNegativeSeek);
    EXPECT_TRUE(Current().SynchroniseFile(file));
    EXPECT_TRUE(Current().CloseFile(file));
}

TEST_F(FilesTests, TellsWhetherAFileExistsAndForbidsWriting) {
    folder.Write("file", "");
    folder.Write("readonly", "");
    folder.MakeReadOnly("readonly");
    const std::tuple<const char*, bool, bool> rows[] = {
        {"file", true, false}, {"readonly", true, true}, {"none", false, false}, {"", false, false}};
    for (const auto& [name, exists, forbidden] : rows) {
        bool readOnly = !forbidden;
        EXPECT_EQ(Current().FileExists(folder.Path(name).c_str(), &readOnly), exists) << name;
        EXPECT_EQ(readOnly, forbidden) << name;
        EXPECT_EQ(Current().FileExists(folder.Path(name).c_str(), nullptr), exists) << name;
    }
    EXPECT_FALSE(Current().FileExists(nullptr, nullptr));
}

TEST_F(FilesTests, CopiesOverAnExistingFileKeepingItsLinks) {
    const std::string large(3'000'001, 'x');
    for (const std::string& content : {std::string("new"), std::string(), large}) {
        folder.Write("source", content);
        folder.Write("target", "the old content");
        std::filesystem::remove(folder.Path("link"));
        std::filesystem::create_hard_link(folder.Path("target"), folder.Path("link"));
        ASSERT_TRUE(Copy(folder.Path("source"), folder.Path("target")));
        EXPECT_EQ(folder.Read("target"), content);
        EXPECT_EQ(folder.Read("link"), content);
        EXPECT_EQ(folder.Read("source"), content);
        EXPECT_EQ(std::filesystem::last_write_time(folder.Path("target")),
                  std::filesystem::last_write_time(folder.Path("source")));
    }
    EXPECT_TRUE(Copy(folder.Path("source"), folder.Path("fresh")));
    EXPECT_EQ(folder.Read("fresh"), large);
}

TEST_F(FilesTests, CopiesMovesAndDeletesWhatIsFreeAndWritable) {
    for (const char* name : {"shared", "reading", "writing", "alone", "readonly"}) folder.Write(name, name);
    folder.MakeReadOnly("readonly");
    const FileHandle holders[] = {Open(folder.Path("shared"), Access::Read, Share::ReadWrite),
                                  Open(folder.Path("reading"), Access::Read, Share::Read),
                                  Open(folder.Path("writing"), Access::ReadWrite, Share::Read),
                                  Open(folder.Path("alone"), Access::Read, Share::None)};
    const auto contents = [&] {
        std::map<std::string, std::string> all;
        for (const std::string& name : folder.Names())
            if (name != "alone") all[name] = folder.Read(name);
        return all;
    };
    enum Operation { COPY, MOVE, DELETE_IT };
    const std::tuple<Operation, unsigned long, const char*> rows[] = {
        // from>to; no name: the folder
        {COPY, ErrorNone, "source>fresh source>shared writing>target"},
        {COPY, ErrorFileNotFound, "none>target none>fresh"},
        {COPY, ErrorPathNotFound, "source>none/fresh"},
        {COPY, ErrorAccessDenied, "source> >target source>readonly"},
        {COPY, ErrorSharingViolation, "target>target source>reading source>writing alone>target"},
        {MOVE, ErrorNone, "source>fresh source>target"},
        {MOVE, ErrorSharingViolation, "source>shared shared>fresh"},
        {MOVE, ErrorAccessDenied, "source>readonly source>"},
        {MOVE, ErrorFileNotFound, "none>target"},
        {MOVE, ErrorPathNotFound, "source>none/fresh"},
        {DELETE_IT, ErrorNone, "source>"},
        {DELETE_IT, ErrorFileNotFound, "fresh>"},
        {DELETE_IT, ErrorPathNotFound, "none/file>"},
        {DELETE_IT, ErrorSharingViolation, "shared>"},
        {DELETE_IT, ErrorAccessDenied, "readonly> >"},
    };
    FaultyServices services; // they wait for nobody
    for (const auto& [operation, error, names] : rows) {
        std::istringstream pairs(names);
        for (std::string pair; pairs >> pair;) {
            SCOPED_TRACE(std::to_string(operation) + " of " + pair);
            const std::string from = pair.substr(0, pair.find('>')), to = pair.substr(from.size() + 1);
            folder.Write("source", "new");
            folder.Write("target", "old");
            std::filesystem::remove(folder.Path("fresh"));
            auto expected = contents();
            if (error == ErrorNone && operation != DELETE_IT) expected[to] = expected.at(from);
            if (error == ErrorNone && operation != COPY) expected.erase(from);
            const std::string source = folder.Path(from), target = folder.Path(to);
            SetLastError(ErrorNone);
            const bool done = operation == COPY   ? Copy(source, target)
                              : operation == MOVE ? Current().MoveWholeFile(source.c_str(), target.c_str())
                                                  : Current().DeleteWholeFile(source.c_str());
            EXPECT_TRUE(done || LastError() == error) << LastError();
            EXPECT_EQ(done, error == ErrorNone);
            EXPECT_EQ(contents(), expected);
        }
    }
    for (const FileHandle holder : holders) Current().CloseFile(holder);
    EXPECT_TRUE(Current().DeleteWholeFile(folder.Path("shared").c_str()));
}

TEST_F(FilesTests, TemporaryNamesAreFreshFilesBesideTheTarget) {
    folder.Write("plan.zo", "old");
    folder.MakeReadOnly("plan.zo");
    for (const char* target : {"plan.zo", "plan.zo", "new.zo"}) {
        const std::string name = Current().TemporaryFileName(folder.Path(target).c_str());
        EXPECT_TRUE(Current().CloseFile(Create(name))) << target;
    }
    const auto temporary = testing::AllOf(testing::StartsWith("~zo"), testing::EndsWith(".tmp"));
    EXPECT_THAT(folder.Names(), testing::UnorderedElementsAre("plan.zo", temporary, temporary, temporary));
    EXPECT_EQ(Current().TemporaryFileName(folder.Path("none/plan.zo").c_str()), "");
    EXPECT_EQ(LastError(), ErrorPathNotFound);
    EXPECT_EQ(Current().TemporaryFileName(""), "");
}

TEST_F(FilesTests, TheLastErrorIsTheThreadsOwn) {
    SetLastError(ErrorDiskFull);
    std::thread([] {
        EXPECT_EQ(LastError(), ErrorNone);
        SetLastError(ErrorAccessDenied);
        EXPECT_EQ(LastError(), ErrorAccessDenied);
    }).join();
    EXPECT_NE(LastError(), ErrorAccessDenied);
}

TEST_F(FilesTests, OfRivalsThatOpenAtOnceExactlyOneWins) {
    constexpr int Rivals = 6, Rounds = 40;
    folder.Write("f", "");
    for (const Mode& mode : {Openings[4], Openings[3], Openings[0]}) {
        if (mode.access == Access::Read) folder.MakeReadOnly("f");
        std::atomic<int> winners = 0, strangers = 0, arrived = 0;
        // Not std::barrier: that of mingw 12 now and then leaves all of its threads asleep.
        const auto meet = [&arrived](int meeting) {
            for (++arrived; arrived < meeting * Rivals;) std::this_thread::yield();
        };
        std::vector<std::thread> threads;
        for (int i = 0; i < Rivals; ++i) {
            threads.emplace_back([&] {
                for (int round = 0; round < Rounds; ++round) {
                    meet(2 * round + 1);
                    const FileHandle file = Open(folder.Path("f"), mode.access, mode.share);
                    if (file != nullptr)
                        ++winners;
                    else if (LastError() != ErrorSharingViolation)
                        ++strangers;
                    meet(2 * round + 2);
                    if (file != nullptr) Current().CloseFile(file);
                }
            });
        }
        for (std::thread& thread : threads) thread.join();
        EXPECT_EQ(winners, Rounds) << mode.name;
        EXPECT_EQ(strangers, 0) << mode.name;
    }
}

} // namespace
