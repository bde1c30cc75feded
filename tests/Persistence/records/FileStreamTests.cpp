#include "Persistence/records/RecordFormat.h"
#include "ZoPrimitives/FileBinInStream.h"
#include "ZoPrimitives/FileBinOutStream.h"
#include "ZoPrimitives/ZoBlob.h"
#include "ZoPrimitives/pointer.h"
#include "support/Assertions.h"
#include "support/FaultyServices.h"
#include "support/Streaming.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <memory>

namespace {

using namespace ZoPrimitives;
using testing::ElementsAre;
using namespace ZoPrimitives::Testing;
using Stream = pointer<TFileBinOutStream>;

constexpr unsigned HEADER = RecordFormat::HEADER_SIZE;
constexpr unsigned long long NOWHERE = ~0ull;
const std::string AT_HEADER = " @ TFileBinInStream::TFileBinInStream";
const std::string AT_RECORD = " @ TBinInStream::LoadRecord #";
const std::string full = "full @ TFileBinOutStream::";

Stream Create(const std::string& path, bool backup = false) {
    return Stream(TFileBinOutStream::Create(path.c_str(), 3, 2026, backup));
}

Stream Begin(const std::string& path, bool backup = false) {
    const Stream out = Create(path, backup);
    out->Initialize();
    return out;
}

/// A record that leaves at once, and one that waits for `Finalize`.
void WriteRecords(TBinOutStream& out, const std::string& text) {
    PutText(out, 1, std::string(RecordFormat::GATHER_SIZE, 'x'));
    PutText(out, 2, text);
}

void Save(const std::string& path, const std::string& text, bool backup) {
    const Stream out = Begin(path, backup);
    WriteRecords(*out, text);
    out->Finalize();
}

/// The records from here on, as "uid:text uid:text".
std::string Rest(TBinInStream& in) {
    std::string all;
    int uid = 0;
    int classId = 0;
    while (in.LoadRecord(&uid, &classId)) {
        ZoString text;
        if (in.GetRecordSize() != 0) in >> text;
        if (text.length() >= RecordFormat::GATHER_SIZE) continue;
        all += (all.empty() ? "" : " ") + std::to_string(uid) + ":" + text.c_str();
    }
    return all;
}

std::string Open(const std::string& path, TFileReading reading = TFileReading::Locking) {
    TFileBinInStream in(path.c_str(), reading);
    in.Initialize();
    return Rest(in);
}

std::string Cannot(const std::string& path) {
    return "Não foi possível ler o arquivo "_ansi + path + " @ TFileBinInStream::OpenFile";
}

struct FileStreamTests : testing::Test {
    TemporaryFolder folder;
    std::string plan = folder.Path("plan.zo");
};

// Saving

TEST_F(FileStreamTests, StepsOfASave) {
    // Of the target P, its backup B, the temporary file T and the new version N.
    const char* const REPLACED = "TemporaryFileName P, OpenFile T, SynchroniseFile T, CloseFile T, "
                                 "MoveWholeFile T N, CopyWholeFile N P, DeleteWholeFile N";
    // With a backup, on a network drive, and how many saves there were before; the steps.
    const std::tuple<const char*, bool, bool, int, const char*> rows[] = {
        {"in place", false, false, 1, "OpenFile P, CloseFile P"},
        {"network, new", false, true, 0, REPLACED},
        {"backup, new", true, false, 0, REPLACED},
        {"backup, existing", true, false, 1,
         "TemporaryFileName P, OpenFile T, SynchroniseFile T, CloseFile T, CopyWholeFile P B, "
         "MoveWholeFile T N, CopyWholeFile N P, DeleteWholeFile N"},
        {"backup over a backup", true, true, 2,
         "TemporaryFileName P, OpenFile T, SynchroniseFile T, CloseFile T, DeleteWholeFile B, "
         "CopyWholeFile P B, MoveWholeFile T N, CopyWholeFile N P, DeleteWholeFile N"},
    };
    for (const auto& [name, backup, network, savesBefore, expected] : rows) {
        SCOPED_TRACE(name);
        const TemporaryFolder own;
        const std::string target = own.Path("P");
        for (int i = 0; i < savesBefore; ++i) Save(target, "old" + std::to_string(i), true);
        FaultyServices services;
        services.network = network;
        const Stream out = Create(target, backup);
        out->Initialize();
        EXPECT_EQ(out->GetWrittenPath() == target.c_str(), !backup && !network);
        PutText(*out, 1, "new");
        out->Finalize();
        EXPECT_EQ(out->GetWrittenPath(), target.c_str());
        ZoString steps;
        for (const std::string& call : services.Calls()) {
            bool other = false;
            for (const char* uncounted : {"WriteFile", "SeekFile", "NetworkFile", "FileExists"})
                other = other || call.rfind(uncounted, 0) == 0;
            if (!other) steps += ZoString(steps.IsNull() ? "" : ", ") + call.c_str();
        }
        for (const auto& [file, letter] : {std::pair{"<temporary>", "T"}, {"P-bak", "B"}, {"P-new", "N"}})
            steps = steps.ReplaceString(file, letter, true);
        EXPECT_STREQ(steps.c_str(), expected);
        const std::size_t calls = services.Calls().size();
        out->Finalize(); // once is enough
        EXPECT_EQ(services.Calls().size(), calls);

        EXPECT_EQ(Open(target), "1:new");
        const bool kept = backup && savesBefore != 0;
        EXPECT_EQ(own.Names().size(), kept ? 2u : 1u);
        if (!kept) continue;
        EXPECT_EQ(Open(target + "-bak"), "2:old" + std::to_string(savesBefore - 1));
    }
}

/// A process that is killed in one of the steps that change files: before it, or in the middle of a copy,
/// over the old bytes or having cut them off.
struct Mortal : Platform::Services {
    struct Killed {};
    enum Death { Before, OverOld, CutOff, DEATHS };

    Mortal(int step, Death how) : death(how), left(step) {}
    bool SynchroniseFile(Platform::FileHandle) override { return Live(); }
    bool MoveWholeFile(const char* from, const char* to) override {
        std::filesystem::rename((Live(), from), to);
        return true;
    }
    bool DeleteWholeFile(const char* path) override { return (Live(), std::filesystem::remove(path)); }
    bool CopyWholeFile(const char* from, const char* to) override {
        const bool dies = left == 1 && death != Before;
        if (!dies) Live();
        std::ifstream source(from, std::ios::binary);
        std::string bytes(std::istreambuf_iterator<char>(source), {});
        if (dies) bytes.resize(bytes.size() / 2);
        const bool cut = !dies || death == CutOff || !std::filesystem::exists(to);
        std::ofstream(to, std::ios::binary | (cut ? std::ios::trunc : std::ios::in)) << bytes;
        inCopy = dies;
        if (dies) throw Killed();
        return true;
    }

    const Death death;
    bool inCopy = false;

private:
    bool Live() {
        if (left > 0 && --left == 0) throw Killed();
        return true;
    }
    int left; // steps, the last one among them; 0: no end
    InstalledServices installed{*this};
};

/// A save of a version, from '0' on. Those of one size differ in both records; half of one file and half of
/// another make records that all verify.
void SaveVersion(const std::string& path, int version, bool sameSize, bool backup = true) {
    const Stream out = Begin(path, backup);
    const std::size_t size = sameSize ? 100 : 40 + 37 * static_cast<std::size_t>(version * 3 % 5);
    for (const int uid : {1, 2}) PutText(*out, uid, char('0' + version) + std::string(size, 'x'));
    out->Finalize();
}

std::string Version(int version, bool sameSize) {
    const TemporaryFolder folder;
    SaveVersion(folder.Path("f"), version, sameSize, false);
    return folder.Read("f");
}

TEST_F(FileStreamTests, KilledTwiceTheNextSaveKeepsAWholeVersion) {
    constexpr int STEPS = 7; // of a save that has something to repair
    for (const bool sameSize : {true, false}) {
        std::vector<std::string> versions;
        for (int version = 0; version < 5; ++version) versions.push_back(Version(version, sameSize));
        const auto whole = [&](const std::string& name) {
            return folder.Has(name) && std::count(versions.begin(), versions.end(), folder.Read(name)) != 0;
        };
        for (int lives = 0; lives < STEPS * STEPS * Mortal::DEATHS * Mortal::DEATHS; ++lives) {
            const int steps[] = {lives % STEPS + 1, lives / STEPS % STEPS + 1};
            const int deaths[] = {lives / STEPS / STEPS % Mortal::DEATHS,
                                  lives / STEPS / STEPS / Mortal::DEATHS};
            SCOPED_TRACE(testing::Message() << sameSize << ": step " << steps[0] << " as " << deaths[0]
                                            << ", step " << steps[1] << " as " << deaths[1]);
            folder.Clear();
            folder.Write("plan.zo", versions[1]);
            folder.Write("plan.zo-bak", versions[0]);
            for (const int save : {0, 1}) {
                Mortal mortal(steps[save], static_cast<Mortal::Death>(deaths[save]));
                try {
                    SaveVersion(plan, 2 + save, sameSize);
                } catch (const Mortal::Killed&) {
                }
                if (mortal.death != Mortal::Before && !mortal.inCopy) break; // seen already
                const std::vector<std::string> names = folder.Names();
                ASSERT_TRUE(std::any_of(names.begin(), names.end(), whole));
            }
            const Mortal immortal(0, Mortal::Before);
            SaveVersion(plan, 4, sameSize);
            ASSERT_EQ(folder.Read("plan.zo"), versions[4]);
            ASSERT_TRUE(whole("plan.zo-bak"));
            ASSERT_FALSE(folder.Has("plan.zo-new"));
        }
    }
}

TEST_F(FileStreamTests, WhatAStoppedSaveLeftIsToldFromOtherFiles) {
    const std::string old = Version(1, true), fresh = Version(2, true), other = Version(3, true);
    const std::string half = fresh.substr(0, fresh.size() / 2);
    const std::string behind = fresh.substr(0, 100) + std::string(fresh.size() - 100, '\0');
    const struct {
        const char* name;
        std::string target, backup, announced, kept; // empty: no such file
    } rows[] = {
        {"nothing", fresh, old, "", fresh},
        {"before the copy", old, old, fresh, old},
        {"after the copy", fresh, old, fresh, fresh},
        {"half, then the old", half + old.substr(half.size()), old, fresh, fresh},
        {"half, then the end", half, old, fresh, fresh},
        {"half, then zeros", behind, old, fresh, fresh},
        {"half, of an older one than the backup", half + Version(4, false), old, fresh, fresh},
        {"half, without a backup", half + Version(4, false), "", fresh, fresh},
        {"another program's since", "Some text, and no records.", old, fresh, "Some text, and no records."},
        {"another version since", other, old, fresh, other},
        {"damaged, but not by a stopped save", half, old, "", half},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        folder.Clear();
        folder.Write("plan.zo", row.target);
        if (!row.backup.empty()) folder.Write("plan.zo-bak", row.backup);
        if (!row.announced.empty()) folder.Write("plan.zo-new", row.announced);
        SaveVersion(plan, 5, true);
        EXPECT_EQ(folder.Read("plan.zo-bak"), row.kept);
        EXPECT_EQ(folder.Read("plan.zo"), Version(5, true));
        EXPECT_THAT(folder.Names(), ElementsAre("plan.zo", "plan.zo-bak"));
    }
    folder.Write("plan.zo-new", fresh);
    SaveVersion(plan, 6, true, false);
    EXPECT_THAT(folder.Names(), ElementsAre("plan.zo", "plan.zo-bak")) << "written in place";
    // What cannot be compared is not touched.
    folder.Write("plan.zo", half);
    folder.Write("plan.zo-bak", old);
    folder.Write("plan.zo-new", fresh);
    for (const char* operation : {"OpenFile", "ReadFile"}) {
        FaultyServices services;
        services.Fail(operation, operation == std::string("OpenFile") ? 3 : 1, 5);
        EXPECT_NE(FailureOf([&] { SaveVersion(plan, 7, true); }), "") << operation;
        EXPECT_EQ(folder.Read("plan.zo-bak"), old) << operation;
    }
}

struct FailedSave {
    TemporaryFolder folder;
    std::string target = folder.Path("plan.zo");
    FaultyServices services;
    std::unique_ptr<TFileBinInStream> holder;
};

/// What is there of the target, the backup and a temporary file: Old, New, Half or less.
std::string Left(const TemporaryFolder& folder, const std::string& old, const std::string& fresh) {
    const auto part = [&](const std::string& bytes) {
        return bytes == old ? 'O' : bytes == fresh ? 'N' : 'H';
    };
    std::string left = "...";
    for (const std::string& name : folder.Names())
        left[name == "plan.zo" ? 0 : name == "plan.zo-bak" ? 1 : 2] = part(folder.Read(name));
    return left;
}

/// A call that fails, having done half of its work.
std::function<void(FailedSave&)> Faulty(const char* operation, int nth, unsigned long error) {
    return [=](FailedSave& save) { save.services.Fail(operation, nth, error, FaultyServices::Half); };
}

TEST_F(FileStreamTests, FailuresOfASave) {
    const auto readOnly = [](FailedSave& save) { save.folder.MakeReadOnly("plan.zo"); };
    const auto backupReadOnly = [](FailedSave& save) {
        save.folder.Write("plan.zo-bak", save.folder.Read("plan.zo"));
        save.folder.MakeReadOnly("plan.zo-bak");
    };
    const auto backupUndeletable = [](FailedSave& save) {
        save.folder.Write("plan.zo-bak", "older");
        save.services.Fail("DeleteWholeFile", 1, 32);
    };
    const auto held = [](FailedSave& save) {
        save.holder = std::make_unique<TFileBinInStream>(save.target.c_str());
        save.holder->OpenFile();
    };
    const auto nowhere = [](FailedSave& save) { save.target = save.folder.Path("none/plan.zo"); };
    const std::string denied = "Input/output error @ TFileBinOutStream::";
    const std::string shared = "Broken pipe @ TFileBinOutStream::";
    const std::string noPath = "No such process @ TFileBinOutStream::";
    // The call that fails, Initialize, Record or Finalize; and what is left.
    using Row = std::tuple<const char*, bool, std::function<void(FailedSave&)>, std::string, const char*,
                           const char*>;
    const Row rows[] = {
        {"read-only target", false, readOnly, denied + "Initialize", "I", "O.."},
        {"held target", false, held, shared + "Initialize", "I", "O.."},
        {"held target, backup", true, held, shared + "Finalize", "F", "OON"},
        {"no folder", false, nowhere, noPath + "Initialize", "I", "O.."},
        {"no folder, backup", true, nowhere, noPath + "Initialize", "I", "O.."},
        {"no temporary", true, Faulty("TemporaryFileName", 1, 5), denied + "Initialize", "I", "O.."},
        {"temporary not opened", true, Faulty("OpenFile", 1, 32), shared + "Initialize", "I", "O.."},
        {"full for the header", true, Faulty("WriteFile", 1, 112), full + "WriteToFile", "I", "O.H"},
        {"full for a record", true, Faulty("WriteFile", 2, 112), full + "WriteToFile", "R", "O.H"},
        {"full in place", false, Faulty("WriteFile", 2, 39), full + "WriteToFile", "R", "H.."},
        {"full for the last", true, Faulty("WriteFile", 3, 112), full + "WriteToFile", "F", "O.H"},
        {"device fails", true, Faulty("WriteFile", 2, 5), denied + "WriteToFile", "R", "O.H"},
        {"no way back", true, Faulty("SeekFile", 2, 5), denied + "RewriteHeader", "F", "O.H"},
        {"not synchronised", true, Faulty("SynchroniseFile", 1, 5), denied + "Finalize", "F", "O.N"},
        {"lost at closing", true, Faulty("CloseFile", 1, 39), full + "Finalize", "F", "O.N"},
        {"no name for a backup", true, Faulty("FileExists", 2, 5), denied + "Initialize", "I", "O.."},
        {"target or none, who knows", true, Faulty("FileExists", 3, 5), denied + "Finalize", "F", "O.N"},
        {"torn or not, who knows", true, Faulty("FileExists", 4, 5), denied + "Finalize", "F", "O.N"},
        {"backup or none, who knows", true, Faulty("FileExists", 5, 5), denied + "Finalize", "F", "O.N"},
        {"temporary read by others", true, Faulty("MoveWholeFile", 1, 32), "", "", "NO."},
        {"not renamed", true, Faulty("MoveWholeFile", 1, 5), denied + "Finalize", "F", "OON"},
        {"backup not deletable", true, backupReadOnly, denied + "Finalize", "F", "OON"},
        {"backup only writable", true, backupUndeletable, "", "", "NO."},
        {"half a backup", true, Faulty("CopyWholeFile", 1, 112), full + "Finalize", "F", "OHN"},
        {"half a target", true, Faulty("CopyWholeFile", 2, 5), denied + "Finalize", "F", "HON"},
        {"temporary not deletable", true, Faulty("DeleteWholeFile", 1, 5), "", "", "NON"},
    };
    Save(plan, "new", false);
    const std::string fresh = folder.Read("plan.zo");
    Save(plan, "old", false);
    const std::string old = folder.Read("plan.zo");
    for (const auto& [name, backup, arrange, thrown, where, left] : rows) {
        SCOPED_TRACE(name);
        FailedSave save;
        save.folder.Write("plan.zo", old);
        arrange(save);
        const Stream out = Create(save.target, backup);
        std::string reached = "I";
        EXPECT_EQ(FailureOf([&] {
                      out->Initialize();
                      reached = "R";
                      WriteRecords(*out, "new");
                      reached = "F";
                      out->Finalize();
                      reached = "";
                  }),
                  thrown);
        EXPECT_EQ(reached, where);
        save.holder.reset();
        EXPECT_EQ(save.services.OpenHandles(), 0u);
        // From then on nothing is taken, and nothing is put in the target's place.
        EXPECT_EQ(FailureOf([&] { WriteRecords(*out, "more"); }),
                  "No such device or address @ TFileBinOutStream::WriteToFile");
        EXPECT_EQ(FailureOf([&] { out->Finalize(); }), "");
        EXPECT_EQ(Left(save.folder, old, fresh), left);
        const bool stays = left[2] != '.' && !thrown.empty();
        EXPECT_TRUE(!stays || std::filesystem::exists(out->GetWrittenPath().c_str()));
    }
}

TEST_F(FileStreamTests, TakeEveryNameThatTheSystemTakes) {
    const auto save = [](const std::filesystem::path& path, const char* text) {
        const Stream out(TFileBinOutStream::Create(path, true));
        out->Initialize();
        PutText(*out, 1, text);
        out->Finalize();
        EXPECT_EQ(TZoPath(path).Utf8(), out->GetWrittenFilePath().Utf8());
    };
    const auto open = [](const std::filesystem::path& path) {
        TFileBinInStream in(path);
        in.Initialize();
        return Rest(in);
    };
    const std::filesystem::path own = folder.Path(), longest(std::string(251, 'n'));
    for (const std::filesystem::path& name :
         {std::filesystem::path(u8"pórtico/Σχέδιο.zo"), std::filesystem::path(u8"設計.𝕏"), longest}) {
        const std::filesystem::path path = own / name;
        std::filesystem::create_directories(path.parent_path());
        for (const char* text : {"old", "new"}) save(path, text);
        EXPECT_EQ(open(path), "1:new") << name;
        std::filesystem::path backup = path;
        EXPECT_EQ(open(backup += "-bak"), "1:old") << name;
    }
    std::filesystem::path longer = own / longest;
    EXPECT_THAT(FailureOf([&] { save(longer += "n", "new"); }),
                testing::EndsWith("@ TFileBinOutStream::Initialize"))
        << "there would be no name for the backup";
    EXPECT_EQ(folder.Names().size(), 5u);
}

TEST_F(FileStreamTests, SomeCallsWriteFirst) {
    struct Own : TFileBinOutStream {
        explicit Own(const std::string& path) : TFileBinOutStream(path.c_str(), false) {}
        using TFileBinOutStream::WriteToFile;
    };
    const std::pair<const char*, std::function<void(Own&)>> rows[] = {
        {"", [](auto& out) { EXPECT_EQ(out.GetPosition(), 62u); }},
        {"", [](auto& out) { EXPECT_NE(out.GetFile(), nullptr); }},
        {"", [](auto& out) { out.FlushBuffer(); }},
        {"", [](auto& out) { out.Reset(); }},
        {"", [](auto& out) { out.RewriteHeader(); }},
        {"", [](auto& out) { out.FreeResourses(); }},
        {"", [](auto& out) { out.Finalize(); }},
        {"own", [](auto& out) { out.WriteToFile(reinterpret_cast<const unsigned char*>("own"), 3); }},
    };
    for (const auto& [behind, operation] : rows) {
        SCOPED_TRACE(&operation - &rows[0].second);
        Own out(plan);
        out.Initialize();
        PutText(out, 1, "gather");
        EXPECT_EQ(std::filesystem::file_size(plan), 28u);
        operation(out);
        EXPECT_EQ(folder.Read("plan.zo").substr(28), TextRecord(1, "gather") + behind);
        out.FreeResourses();
    }
}

TEST_F(FileStreamTests, WithoutFinalizeTheTargetStays) {
    Save(plan, "old", false);
    const std::string old = Open(plan);
    for (const bool fails : {false, true}) {
        FaultyServices services;
        if (fails) services.Fail("WriteFile", 2, Platform::ErrorDiskFull);
        Stream out = Begin(plan, true);
        const std::string temporary = out->GetWrittenPath().c_str();
        PutText(*out, 1, "unfinished");
        out->FreeResourses();
        out->Finalize();
        out = nullptr;
        EXPECT_EQ(Open(plan), old);
        EXPECT_EQ(Open(temporary), fails ? "" : "1:unfinished");
        EXPECT_TRUE(services.messages.empty()) << "given up on purpose";
        if (fails) continue;
        Begin(plan, true) = nullptr;
        EXPECT_TRUE(services.messages.empty()) << "nothing was written";
        PutText(*(out = Begin(plan, true)), 1, "forgotten");
        out = nullptr;
        ASSERT_EQ(services.messages.size(), 1U);
        EXPECT_THAT(services.messages[0], testing::HasSubstr("Finalize was not called"));
    }
}

// Also files above 4 GiB: the place in this one is 5 GiB.
TEST_F(FileStreamTests, ACallersFileStaysTheCallers) {
    constexpr unsigned long long PLACE = 5ull << 30;
    FaultyServices services;
    unsigned long long place = 0;
    const Platform::FileHandle file = Platform::Current().OpenFile(
        plan.c_str(), Platform::Access::ReadWrite, Platform::Share::Read, Platform::Creation::CreateAlways);
    Platform::Current().SeekFile(file, PLACE, Platform::Origin::Begin, place);
    {
        const Stream out = Create("unused", true);
        TBinOutStreamer streamer(out.get(), nullptr);
        streamer.SetFile(file);
        EXPECT_EQ(streamer.GetFile(), file);
        out->Initialize();
        PutText(*out, 1, "far");
        EXPECT_EQ(out->GetPosition(), PLACE + HEADER + 31);
        PutText(*out, 2, "away");
        out->Finalize();
    }
    {
        services.Fail("FileSize", 0, Platform::ErrorInvalidFunction); // nobody wants 5 GiB in memory
        TFileBinInStream in(file, false);
        in.OpenFile();
        EXPECT_EQ(in.Seek(PLACE + 12, 0), PLACE + 12);
        unsigned count = 0;
        unsigned done = 0;
        EXPECT_TRUE(in.Read(&count, 4, done));
        EXPECT_EQ(count, 2u);
        EXPECT_EQ(in.Seek(12u, 1), PLACE + HEADER);
        EXPECT_EQ(Rest(in), "1:far 2:away");
        EXPECT_EQ(in.Seek(-32, 2), PLACE + HEADER + 31);
        EXPECT_EQ(Rest(in), "2:away");
    }
    EXPECT_THAT(folder.Names(), ElementsAre("plan.zo"));
    EXPECT_EQ(services.Count("CloseFile"), 0);
    EXPECT_EQ(FailureOf([&] { TFileBinInStream(file, true).OpenFile(); }), "");
    EXPECT_EQ(services.OpenHandles(), 0u) << "unless a reader is given it";
}

// Opening

/// How a reader comes by its bytes.
struct Source {
    const char* name;
    std::function<void(FaultyServices&)> arrange;
};
const Source Sources[] = {
    {"memory", [](FaultyServices&) {}},
    {"no size", [](FaultyServices& d) { d.Fail("FileSize", 0, Platform::ErrorInvalidFunction); }},
    {"loading fails",
     [](FaultyServices& d) { d.Fail("ReadFile", 1, Platform::ErrorDevice, FaultyServices::Half); }},
    {"less than its size", [](FaultyServices& d) { d.claimedSize = 100'000; }},
    {"absurd size", [](FaultyServices& d) { d.claimedSize = ~0ull; }},
#ifndef __SANITIZE_ADDRESS__ // which ends the process instead
    {"no memory", [](FaultyServices& d) { d.claimedSize = 1ull << 62; }},
#endif
};

TEST_F(FileStreamTests, EverySourceReadsTheSame) {
    const Stream out = Begin(plan);
    out->SetUsesSecurity(true);
    for (int uid = 1; uid < 6; ++uid) PutText(*out, uid, std::string(static_cast<unsigned>(uid), 'r'));
    out->Finalize();
    // A record without payload, which nobody here writes.
    const std::string bytes = folder.Read("plan.zo") + RecordBytes(6, 0, "");
    folder.Write("plan.zo", bytes);
    const std::string all = "1:r 2:rr 3:rrr 4:rrrr 5:rrrrr 6:";
    for (const Source& source : Sources) {
        SCOPED_TRACE(source.name);
        FaultyServices device;
        source.arrange(device);
        TFileBinInStream in(plan.c_str(), 3u);
        in.Initialize();
        EXPECT_EQ(in.GetRelease(), 2026u);
        EXPECT_EQ(Rest(in), all);
        in.InitializeKeepingLocked();
        EXPECT_EQ(Rest(in), all);

        unsigned long long size = 1;
        const unsigned char* whole = in.ReadFileBuffer(size);
        const bool loaded =
            source.name == std::string("memory") || source.name == std::string("loading fails");
        EXPECT_EQ(std::string(reinterpret_cast<const char*>(whole), whole == nullptr ? 0 : size),
                  loaded ? bytes : "");

        const struct {
            long long offset;
            int origin;
            unsigned long long reached; // NOWHERE: refused
            int byte;                   // -1: none
        } seeks[] = {
            {16, 0, 16, 0xEA},   {0, 1, 17, 0x07},     {-2, 1, 16, 0xEA},      {-8, 2, 199, 0x06},
            {207, 0, 207, -1},   {-1, 0, NOWHERE, -1}, {-300, 1, NOWHERE, -1}, {-208, 2, NOWHERE, -1},
            {0, 3, NOWHERE, -1}, {0, -1, NOWHERE, -1},
        };
        ASSERT_EQ(bytes.size(), 207u);
        for (const auto& seek : seeks) {
            SCOPED_TRACE(std::to_string(seek.offset) + " from " + std::to_string(seek.origin));
            unsigned long long reached = NOWHERE;
            const std::string thrown = FailureOf([&] { reached = in.Seek(seek.offset, seek.origin); });
            EXPECT_EQ(reached, seek.reached);
            EXPECT_EQ(thrown, seek.reached == NOWHERE ? "Invalid seek @ TFileBinInStream::Seek" : "");
            unsigned char byte = 0;
            unsigned done = 0;
            if (thrown.empty()) {
                EXPECT_EQ(in.Read(&byte, 1, done), seek.byte >= 0);
                EXPECT_EQ(done == 1 ? byte : -1, seek.byte);
            }
        }
        char bytesRead[4];
        unsigned done = 0;
        in.Seek(-3, 2);
        EXPECT_EQ(in.Read(bytesRead, 4, done), !loaded) << "from the device any will do";
        EXPECT_EQ(done, 3u);
        EXPECT_FALSE(in.Read(bytesRead, 4, done));
        in.Seek(1'000'000u, 0);
        EXPECT_EQ(Rest(in), "");
    }
}

TEST_F(FileStreamTests, AnOverriddenReadIsAsked) {
    struct Dry : TFileBinInStream {
        using TFileBinInStream::TFileBinInStream;
        bool Read(void*, unsigned, unsigned& done) override { return done = 0, ++times == 0; }
        int times = 0;
    };
    Save(plan, "text", false);
    Dry dry(plan.c_str(), 3u);
    EXPECT_NE(FailureOf([&] { dry.Initialize(); }), "");
    EXPECT_EQ(dry.times, 1);
}

TEST_F(FileStreamTests, FailuresOfOpeningAndReading) {
    const std::string good = HeaderBytes(3, 2026) + TextRecord(1, "text");
    const auto unsized = [](int failing, FaultyServices::Effect effect) {
        return [=](FaultyServices& d) {
            d.Fail("FileSize", 0, 1);
            d.Fail("ReadFile", failing, 1117, effect);
        };
    };
    const struct {
        const char* name;
        std::string content;
        std::function<void(FaultyServices&)> arrange;
        std::string thrown;
        bool opens = false;
    } rows[] = {
        {"good", good, {}, "", true},
        {"no such file", good, [&](FaultyServices&) { std::filesystem::remove(plan); }, Cannot(plan)},
        {"refused", good, [](FaultyServices& d) { d.Fail("OpenFile", 1, 5); }, Cannot(plan)},
        {"empty", "", {}, "No error" + AT_HEADER},
        {"newer", HeaderBytes(4, 0), {}, " @ "},
        {"device fails", good, unsized(0, FaultyServices::Nothing), "Input/output error" + AT_HEADER},
        {"device fails in the extra block", HeaderBytes(3, 2026, 0, 8) + std::string(8, 'x'),
         unsized(2, FaultyServices::Half), "Input/output error" + AT_HEADER},
        // Read are the header, a marker, a size.
        {"device fails in a record", good, unsized(4, FaultyServices::Nothing),
         "Input/output error" + AT_RECORD + "2", true},
        {"and gives half", good, unsized(4, FaultyServices::Half), "Input/output error" + AT_RECORD + "2",
         true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        folder.Write("plan.zo", row.content);
        FaultyServices device;
        if (row.arrange) row.arrange(device);
        TFileBinInStream in(plan.c_str(), 3u);
        bool opened = false;
        EXPECT_EQ(FailureOf([&] {
                      in.Initialize();
                      opened = true;
                      EXPECT_EQ(Rest(in), "1:text");
                  }),
                  row.thrown);
        EXPECT_EQ(opened, row.opens);
        EXPECT_EQ(in.GetFile() != nullptr, row.opens);
        EXPECT_EQ(device.OpenHandles(), row.opens ? 1u : 0u);
        // A closed stream has no records, and says so.
        if (row.opens) continue;
        EXPECT_EQ(FailureOf([&] { Rest(in); }), "Input/output error" + AT_RECORD + "1");
    }
}

TEST_F(FileStreamTests, WhoMayOpenWhat) {
    const std::tuple<std::string, bool, bool, bool> rows[] = {
        {"read", false, true, false},
        {"view", true, true, true},
        {"write", false, true, false},
        {"read-only", true, true, false},
    };
    for (const auto& [held, reads, views, writes] : rows) {
        SCOPED_TRACE(held);
        const TemporaryFolder own;
        const std::string path = own.Path("plan.zo");
        Save(path, "text", false);
        if (held == "read-only") own.MakeReadOnly("plan.zo");
        TFileBinInStream in(path.c_str(), held == "view" ? TFileReading::Viewing : TFileReading::Locking);
        const Stream out = Create(path);
        held == "write" ? out->Initialize() : in.Initialize();

        const char* const text = held == "write" ? "" : "2:text"; // one that has just begun
        std::string seen;
        EXPECT_EQ(FailureOf([&] { seen = Open(path, TFileReading::Viewing); }), views ? "" : Cannot(path));
        EXPECT_EQ(seen, text);
        EXPECT_EQ(FailureOf([&] { seen = Open(path); }), reads ? "" : Cannot(path));
        const Stream second = Create(path);
        const char* const why = held == "read-only" ? "Input/output error" : "Broken pipe";
        EXPECT_EQ(FailureOf([&] { second->Initialize(); }),
                  writes ? "" : std::string(why) + " @ TFileBinOutStream::Initialize");
        EXPECT_EQ(held == "write" ? text : Rest(in), text) << "it keeps what it has loaded";
    }
    const Stream out = Begin(plan);
    EXPECT_EQ(AssertionOf([&] { out->Initialize(); }).expression,
              "state == State::New && \"[zoerror] a stream writes one file\"");
}

TEST_F(FileStreamTests, AViewerMeetsASaveThatReplacesTheFile) {
    Save(plan, "new", false);
    const std::string fresh = folder.Read("plan.zo");
    Save(plan, "old", false);
    {
        TFileBinInStream in(plan.c_str(), TFileReading::Viewing);
        in.Initialize();
        Save(plan, "new", true);
        EXPECT_EQ(Rest(in), "2:old");
        in.InitializeKeepingLocked();
        EXPECT_EQ(Rest(in), "2:new");
    }
    // Where the save is when the file is opened: its copy half done; about to begin; stopped for good.
    const auto tear = [&] { folder.Write("plan.zo", fresh.substr(0, 60)); };
    const auto finish = [&] {
        folder.Write("plan.zo", fresh);
        std::filesystem::remove(folder.Path("plan.zo-new"));
    };
    for (const int where : {0, 1, 2}) {
        SCOPED_TRACE(where);
        FaultyServices services;
        unsigned waited = 0;
        if (where != 1) folder.Write("plan.zo-new", fresh);
        tear();
        services.onCall = [&](const std::string& call) {
            if (where == 1 && call == "ReadFile plan.zo" && waited == 0) folder.Write("plan.zo-new", fresh);
        };
        services.onWait = [&](unsigned milliseconds) {
            waited += milliseconds;
            if (where != 2 && waited >= 30) finish();
        };
        std::string seen;
        const std::string thrown = FailureOf([&] { seen = Open(plan, TFileReading::Viewing); });
        EXPECT_EQ(thrown, where == 2 ? "No error" + AT_RECORD + "3" : "");
        EXPECT_EQ(seen, where == 2 ? "" : "2:new");
        EXPECT_EQ(waited, where == 2 ? 1000u : 30u);
    }
}

// An application may keep its model's file locked from opening on, over its own saves.
TEST_F(FileStreamTests, AFileKeptLockedIsReadAnew) {
    Save(plan, "old", false);
    TFileBinInStream in(plan.c_str());
    in.Initialize();
    EXPECT_EQ(Rest(in), "2:old");
    unsigned long long place = 0;
    const auto begin = [&] {
        Platform::Current().SeekFile(in.GetFile(), 0, Platform::Origin::Begin, place);
        const Stream out = Create("unused");
        out->SetFile(in.GetFile());
        out->Initialize();
        return out;
    };
    for (const std::string text : {"new, longer", "new", "back before the end"}) {
        const Stream out = begin();
        if (text == "new, longer") PutText(*out, 1, std::string(RecordFormat::GATHER_SIZE, 'x'));
        PutText(*out, 2, text);
        if (text == "back before the end") out->Reset();
        out->Finalize();
        in.InitializeKeepingLocked();
        EXPECT_EQ(Rest(in), "2:" + text);
    }
    {
        FaultyServices services;
        services.Fail("TruncateFile", 1, Platform::ErrorDiskFull);
        const Stream out = begin();
        EXPECT_EQ(FailureOf([&] { out->Finalize(); }), full + "Finalize");
    }
    EXPECT_NE(FailureOf([&] { Create(plan)->Initialize(); }), "");

    // The record at hand went with the old bytes; the file stays.
    in.InitializeKeepingLocked();
    int uid = 0;
    int classId = 0;
    ASSERT_TRUE(in.LoadRecord(&uid, &classId));
    {
        struct : Platform::Services { // nobody may empty a file that is kept locked
            bool ReadFile(Platform::FileHandle, void*, std::size_t, std::size_t& done) override {
                done = 0;
                return true;
            }
        } emptied;
        const InstalledServices installed(emptied);
        EXPECT_EQ(FailureOf([&] { in.InitializeKeepingLocked(); }),
                  "No error @ TFileBinInStream::TFileBinInStream");
    }
    EXPECT_EQ(in.GetRecordSize(), 0u);
    int value = 1;
    in >> value;
    EXPECT_EQ(value, 0);
    EXPECT_NE(in.GetFile(), nullptr);
}

} // namespace
