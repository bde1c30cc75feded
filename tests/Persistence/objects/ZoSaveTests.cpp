#include "ZoPrimitives/ZoOpen.h"
#include "ZoPrimitives/ZoSave.h"

#include "support/EveryKind.h"
#include "support/FakeClipboard.h"
#include "support/FakeClock.h"
#include "support/TemporaryFolder.h"

#include "ZoPrimitives/FileBinInStream.h"
#include "ZoPrimitives/FilteredBinInStreamer.h"

#include <gmock/gmock.h>

using namespace ZoPrimitives;
using namespace ZoPrimitives::Testing;
using testing::ElementsAre;

namespace {

class Room : public ZoStreamableBase {
    REGISTER_ZO_BEGIN(Room)
    DECLARE_ZO_FIELD(ZoString, name)
    DECLARE_ZO_FIELD_CHILD(Room, inner)
    DECLARE_ZO_FIELD_REFERENCE(Room, door)
    DECLARE_ZO_FIELD_CHILD_LIST(ZoStreamableBase, things)
    REGISTER_ZO_END
    Room() = default;
    explicit Room(const char* text) : name(text) {}
    Alive alive;
};

class Unregistered : public ZoStreamableBase {
    REGISTER_ZO_BEGIN(Unregistered)
    DECLARE_ZO_FIELD(int, number)
    REGISTER_ZO_END
};

class Fieldless : public ZoStreamableBase {
    REGISTER_ZO_BEGIN(Fieldless)
    REGISTER_ZO_END
};

std::string Bytes(const ZoBlob& blob) {
    return {static_cast<const char*>(blob.Data()), static_cast<std::size_t>(blob.Size())};
}

/// What ended an operation: an exception's "message @ location", or an assertion's message or expression.
template <class Operation>
std::string EndOf(Operation operation) {
    std::string failure;
    const FailedAssertion failed = AssertionOf([&] { failure = FailureOf(operation); });
    return !failure.empty() ? failure : failed.message.empty() ? failed.expression : failed.message;
}

/// A model and a place to save it. The file there holds "old", its backup "older".
struct Saving {
    Saving() {
        app::RegisterEveryKind(schema);
        Room::Register(&schema);
        root->inner = new Room("inner");
        root->door = root->inner.get();
        folder.Write("plan.zo", "old");
        folder.Write("plan.zo-bak", "older");
    }
    std::string Save() {
        return EndOf([&] { ZoSave(path.c_str(), roots.NItems() != 0 ? &roots : &list, &schema, how); });
    }

    TZoMetaData schema;
    Room outside{"outside"};
    pointer<Room> root{new Room("outer")};
    TDList<ZoStreamableBase*> roots; // others than the model's
    TDList<ZoStreamableBase*> list = [this] {
        TDList<ZoStreamableBase*> one;
        one.Add(root.get());
        return one;
    }();
    TZoSaving how{1, 2026};
    FaultyServices services;
    TemporaryFolder folder;
    std::string path = folder.Path("plan.zo");
    std::unique_ptr<TFileBinInStream> holder;
};

TEST(ZoSaveTests, OpensWhatWasSaved) {
    FakeClipboard clipboard;
    const InstalledServices installed(clipboard);
    const TemporaryFolder folder;
    const std::string path = folder.Path("plan.zo");
    TZoMetaData schema;
    app::RegisterEveryKind(schema);
    app::Leaf outside(99);
    app::EveryKind model;
    model.Fill(outside);
    const std::string records = Save(schema, &model).substr(28);
    for (const bool scrambles : {false, true}) {
        TZoSaving how{3, 2026};
        how.scrambles = scrambles;
        const ZoBlob memory = ZoSaveInMemory(&model, &schema, how);
        ZoSave(path.c_str(), &model, &schema, how);
        ZoSaveOnClipboard(&model, &schema, how);
        EXPECT_EQ(clipboard.block->substr(28 + 12), records) << "behind the digest";
        EXPECT_EQ(folder.Read("plan.zo").substr(28 + 12) == records, !scrambles);
        for (const auto& opened : {ZoOpen<app::EveryKind>(path.c_str(), &schema, {3}),
                                   ZoOpenFromMemory<app::EveryKind>(memory, &schema, {3}),
                                   ZoOpenFromClipboard<app::EveryKind>(&schema, {3})}) {
            EXPECT_EQ(Save(schema, opened.GetRoot().get()).substr(28), records);
            EXPECT_EQ(opened->external->number, 99) << "lives with the result";
            EXPECT_EQ((*opened).children[2]->number, 12);
            EXPECT_EQ(opened.GetVersion() + opened.GetRelease(), 3U + 2026);
            EXPECT_EQ(opened.GetObjects().NItems(), 7U) << "without the member";
            EXPECT_EQ(Text(opened.Report().Text()), "");
        }
    }
    const int alive = Alive::Count();
    ZoOpen<ZoObjectStreamable>(path.c_str(), &schema, {3, TFileReading::Viewing});
    EXPECT_EQ(Alive::Count(), alive);
}

TEST(ZoSaveTests, SeveralRootsAreAskedFor) {
    TZoMetaData schema;
    Room::Register(&schema);
    app::Leaf::Register(&schema);
    Room first("first"), second("second");
    first.inner = new Room("inner");
    app::Leaf leaf(1);
    TDList<ZoStreamableBase*> roots;
    for (Room* root : {&first, &second}) roots.Add(root);
    const ZoBlob two = ZoSaveInMemory(&roots, &schema);
    TZoOpening how;
    how.severalRoots = true;
    const auto opened = ZoOpenFromMemory<Room>(two, &schema, how);
    ASSERT_EQ(opened.GetRoots().NItems(), 2U);
    EXPECT_EQ(opened->inner->name, "inner");
    EXPECT_EQ(opened.GetRoots()[2]->name, "second");
    EXPECT_EQ(FailureOf([&] { ZoOpenFromMemory<Room>(two, &schema); }),
              "O arquivo contém mais de um objeto principal @ ZoOpen"_ansi);
    roots.Add(&leaf);
    const int alive = Alive::Count();
    EXPECT_EQ(
        FailureOf([&] { ZoOpenFromMemory<Room>(ZoSaveInMemory(&roots, &schema), &schema, how); }),
        "O objeto principal do arquivo é de outra classe: app::Leaf ((anonymous namespace)::Room) @ ZoOpen"_ansi);
    EXPECT_EQ(Alive::Count(), alive);
}

TEST(ZoSaveTests, TheTargetStaysWhatItWasUntilTheNewVersionIsComplete) {
    const std::string denied = "Input/output error @ ", full = "full @ TFileBinOutStream::";
    const auto fails = [](const char* operation, int nth, unsigned long error) {
        return [=](Saving& s) { s.services.Fail(operation, nth, error, FaultyServices::Half); };
    };
    // What is said; the target afterwards (old, new), its backup (old, older, none), and what other files
    // there are: a complete new version or none.
    const struct {
        const char* name;
        std::function<void(Saving&)> arrange;
        std::string said;
        const char* target;
        const char* backup;
        bool otherFile;
    } rows[] = {
        {"saved", [](Saving&) {}, "", "new", "old", false},
        {"saved without a backup", [](Saving& s) { s.how.backup = false; }, "", "new", "older", false},
        {"saved in a folder without it", [](Saving& s) { s.folder.Clear(); }, "", "new", "none", false},
        {"no root", [](Saving& s) { s.roots.Add(nullptr); },
         "root != nullptr && \"[zoerror] there is nothing to save\"", "old", "older", false},
        {"no roots", [](Saving& s) { s.list.RemoveAll(); },
         "roots->NItems() != 0 && \"[zoerror] there is nothing to save\"", "old", "older", false},
        {"version that no reader accepts", [](Saving& s) { s.how.version = 10'000; },
         "version < 10000 && \"[zoerror] no reader accepts this version\"", "old", "older", false},
        {"release that no reader accepts", [](Saving& s) { s.how.release = 1'000'000; },
         "release < 1000000 && \"[zoerror] no reader accepts this release\"", "old", "older", false},
        {"schema not complete",
         [](Saving& s) {
             s.schema.ExcludeClass("Leaf");
             s.how.backup = false;
         },
         "[zoerror] class Leaf of reference field map not registered", "old", "older", false},
        {"unregistered class below the root", [](Saving& s) { s.root->inner->things.Add(new Unregistered); },
         "[zoerror] class 'class (anonymous namespace)::Unregistered' not register or not streamable. See "
         "'class::Register' or "
         "'class : public ZoStreamableBase'",
         "old", "older", false},
        {"reference to what is not saved", [](Saving& s) { s.root->inner->door = &s.outside; },
         "[zoerror] child reference 'door'", "old", "older", false},
        {"root without fields",
         [](Saving& s) {
             static Fieldless fieldless;
             Fieldless::Register(&s.schema);
             s.roots.Add(&fieldless);
         },
         "[zoerror] the root's class Fieldless has no fields: the root would not be saved", "old", "older",
         false},
        {"target read-only", [](Saving& s) { s.folder.MakeReadOnly("plan.zo"); }, denied + "ZoSave", "old",
         "older", false},
        {"no folder", [](Saving& s) { s.path = s.folder.Path("none/plan.zo"); },
         "No such process @ TFileBinOutStream::Initialize", "old", "older", false},
        {"disk full for the header", fails("WriteFile", 1, 112), full + "WriteToFile", "old", "older", false},
        {"disk full for the objects", fails("WriteFile", 2, 112), full + "WriteToFile", "old", "older",
         false},
        {"device fails at the end", fails("SynchroniseFile", 1, 5), denied + "TFileBinOutStream::Finalize",
         "old", "older", false},
        {"disk full for the backup", fails("CopyWholeFile", 1, 112),
         "Espa\xE7o em disco insuficiente. @ TFileBinOutStream::Finalize", "old", "o", true},
        {"target in use",
         [](Saving& s) {
             s.holder = std::make_unique<TFileBinInStream>(s.path.c_str());
             s.holder->OpenFile();
         },
         "Broken pipe @ TFileBinOutStream::Finalize", "old", "old", true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Saving s;
        row.arrange(s);
        const std::string said = s.Save();
        EXPECT_EQ(said.substr(0, row.said.empty() ? said.size() : row.said.size()), row.said);
        s.holder.reset();
        const std::size_t known = row.backup == std::string("none") ? 1 : 2;
        EXPECT_EQ(s.folder.Names().size() > known, row.otherFile);
        const std::string target = s.folder.Read("plan.zo");
        EXPECT_EQ(target == "old" ? "old" : "new", row.target);
        if (target != "old") {
            EXPECT_EQ(Text(ZoOpen<Room>(s.path.c_str(), &s.schema)->door->name), "inner");
        }
        if (known == 2) {
            EXPECT_EQ(s.folder.Read("plan.zo-bak"), row.backup);
        }
    }
}

TEST(ZoSaveTests, TellsWhereTheNewVersionIsThatCouldNotReplaceTheOldOne) {
    for (const char* operation : {"CopyWholeFile", "MoveWholeFile"}) {
        Saving s;
        s.services.Fail(operation, 1, 5);
        try {
            ZoSave(s.path.c_str(), s.root.get(), &s.schema, s.how);
            FAIL() << "nothing was thrown";
        } catch (const XNotReplaced& reason) {
            EXPECT_EQ(Text(ZoOpen<Room>(reason.WrittenPath().c_str(), &s.schema)->name), "outer");
        }
    }
}

TEST(ZoSaveTests, ChecksTheSchemaOnceForEachChange) {
    TZoMetaData schema;
    const ZoBlob nothing;
    const auto said = [&] { return FailureOf([&] { ZoOpenFromMemory<Room>(nothing, &schema); }); };
    const std::string sound = "No error @ TMemoryBinInStream::TMemoryBinInStream";
    EXPECT_EQ(said(), sound);
    Room::Register(&schema);
    const int before = Alive::Count();
    for (int times = 0; times < 2; ++times) EXPECT_EQ(said(), sound);
    EXPECT_EQ(Alive::Count(), before);
    const std::function<void()> changes[] = {
        [&] { app::EveryKind::Register(&schema); }, // without Leaf
        [&] { app::Leaf::Register(&schema); },
        [&] { schema.ExcludeClass("Leaf"); },
        [&] { schema.Clear(); },
        [&] {
            const pointer<TZoClass> made(new TZoClass(&schema, nullptr, "X", nullptr, true, nullptr));
            made->AddFieldPointer("y", nullptr, nullptr, nullptr);
            for (int times = 0; times < 2; ++times) schema.Clear(); // no change takes back others
            schema.AddClass(made.get());
        },
        [&] { Room::Register(&schema); },
        [&] { schema.FindClass("X")->GetField(1)->SetFieldClass(schema.FindClass("Room")); },
        [&] { schema.FindClass("Room")->NoteMissingParent(); },
    };
    std::string states;
    for (const auto& change : changes) {
        change();
        for (int times = 0; times < 2; ++times) states += said() == sound ? '+' : '-';
        states += ' ';
    }
    EXPECT_EQ(states, "-- ++ -- ++ -- -- ++ -- ");
}

/// Of a file; its objects are a room of rooms.
TEST(ZoSaveTests, OpensAllThatWasSavedOrNothing) {
    TZoMetaData schema;
    Room::Register(&schema);
    app::Leaf::Register(&schema);
    const pointer<Room> root(new Room("outer"));
    root->inner = new Room("inner");
    root->inner->inner = new Room("innermost");
    const std::string digested = Bytes(ZoSaveInMemory(root.get(), &schema, {2}));
    TZoSaving plain{2};
    plain.digest = false;
    const std::string good = Bytes(ZoSaveInMemory(root.get(), &schema, plain));
    const std::vector<Row> rows = RowsOf(good);
    const auto changed = [](std::string bytes, std::size_t at) { return bytes[at] ^= 1, bytes; };
    const app::Leaf leaf(5);
    const struct {
        const char* name;
        std::string bytes;
        std::string said;
    } cases[] = {
        {"good", good, ""},
        {"good, with a digest", digested, ""},
        {"uid changed", changed(digested, digested.size() - rows[3].payload.size() - 8), "refused @ ZoOpen"},
        {"nothing", "", "No error @ TMemoryBinInStream::TMemoryBinInStream"},
        {"no header of this format", std::string(99, 'x'),
         "Header de arquivo inválido @ TBinInStream::LoadHeader"_ansi},
        {"newer version", changed(good, 0), " @ "},
        {"no schema", good.substr(0, 28), "Metadado corrompido @ TBinInStreamer::ReadObjects #1"},
        {"no objects", FileOf({rows[0]}), "O arquivo não contém objetos @ ZoOpen"_ansi},
        {"another class", Save(schema, const_cast<app::Leaf*>(&leaf)),
         "O objeto principal do arquivo é de outra classe: app::Leaf ((anonymous namespace)::Room) @ ZoOpen"_ansi},
        {"class that is not known",
         FileOf({{.name = "Hall", .values = {{0, -1, "n"}}}}, {{1, 1, Payload().Int(1)}}),
         "O objeto principal do arquivo não pôde ser lido @ ZoOpen"_ansi},
        {"damaged schema", changed(good, 28 + 24 + 9),
         "Tamanho de registro corrompido @ TZoMetaData::LoadFromStream"},
        {"damaged object", changed(good, good.size() - 1), "refused @ ZoOpen"},
        {"stray byte at the end", good + 'x', "refused @ ZoOpen"},
        {"cut between records", good.substr(0, good.size() - 24 - rows[3].payload.size()),
         "refused @ ZoOpen"},
        {"cut in a record", good.substr(0, good.size() - 1), "No error @ TBinInStream::LoadRecord #3"},
        {"objects that own each other", FileOf({rows[0], rows[1], {2, 1, rows[1].payload}}) + 'x',
         "refused @ ZoOpen"},
    };
    for (const auto& [name, bytes, said] : cases) {
        SCOPED_TRACE(name);
        const int alive = Alive::Count();
        const auto open = [&, &bytes = bytes] {
            try {
                ZoOpenFromMemory<Room>(bytes.data(), bytes.size(), &schema, {2});
            } catch (const XRefusedData& refused) {
                EXPECT_NE(refused.Report().Faults() & strictDamage, 0U);
                throw XReadStream("refused", refused.Location());
            }
        };
        EXPECT_EQ(FailureOf(open), said);
        EXPECT_EQ(Alive::Count(), alive);
    }
    TZoOpening salvaging;
    salvaging.strict = strictNothing;
    const std::string damaged = changed(digested, digested.size() - 1);
    const auto left = ZoOpenFromMemory<Room>(damaged.data(), damaged.size(), &schema, salvaging);
    EXPECT_EQ(left.Report().passedOver,
              (TDVector<TZoPassedOver>{
                  {digested.size() - 24 - rows[3].payload.size(), 24 + rows[3].payload.size(), 1}}));
    EXPECT_TRUE(left->inner && !left->inner->inner);
    EXPECT_TRUE(left.Report().wrongDigest);
    EXPECT_THAT(Text(left.Report().Text()), testing::StartsWith("O conte\xFA"
                                                                "do n\xE3o \xE9 o que foi salvo"));
}

/// A clock that goes on whenever it is read.
class RunningClock : public FakeClock {
public:
    std::uint32_t step = 3; // ms
    std::uint32_t Ticks() override { return ticks += step; }
};

/// A long chain of rooms, saved, opened and cancelled.
struct ProgressTests : testing::Test {
    ProgressTests() {
        Room::Register(&schema);
        Room* last = root.get();
        for (int i = 1; i < ROOMS; ++i) last = (last->inner = new Room("another")).get();
        folder.Write("plan.zo", "old");
        saved = ZoSaveInMemory(root.get(), &schema);
    }
    pointer<TZoProgress> Watching() {
        return ZoProgress([this](unsigned long long done, unsigned long long all) {
            EXPECT_GE(clock.ticks - before, 5U) << "ms between calls";
            before = clock.ticks;
            EXPECT_TRUE(all == 0 || done <= all);
            EXPECT_TRUE(done >= latest || latestOf == 0) << "from one phase to the next";
            latest = done;
            latestOf = all;
            if (++calls == throwsAt) throw 5;
            return calls != cancelledAt;
        });
    }

    static constexpr int ROOMS = 5000;
    RunningClock clock;
    TZoMetaData schema;
    pointer<Room> root{new Room("outer")};
    ZoBlob saved;
    TemporaryFolder folder;
    std::string path = folder.Path("plan.zo");
    std::uint32_t before = 0;
    unsigned long long latest = 0, latestOf = 0;
    int calls = 0, cancelledAt = 0, throwsAt = 0;
};

TEST_F(ProgressTests, IsToldInEveryOperationAndEndsIt) {
    const std::string writing = "Operação cancelada @ TBinOutStreamer::WriteObjects"_ansi;
    const std::string reading = "Operação cancelada @ TBinInStreamer::ReadObjects"_ansi;
    TZoSaving saving;
    TZoOpening opening;
    saving.progress = opening.progress = Watching();
    TDList<ZoString> names;
    names.Add("Room");
    const struct {
        const char* name;
        std::function<void()> run;
        std::string cancelled;
    } rows[] = {
        {"save a file", [&] { ZoSave(path.c_str(), root.get(), &schema, saving); }, writing},
        {"save in memory", [&] { ZoSaveInMemory(root.get(), &schema, saving); }, writing},
        {"save in steps",
         [&] {
             TMemoryBinOutStream out;
             out.Initialize();
             out.SetHandle(root.get(), 1'000'000); // the other uids follow
             TBinOutStreamer streamer(&out, &schema);
             streamer.SetProgress(saving.progress);
             streamer.WriteObjectMetaData(root.get());
             streamer.WriteObject(root.get());
         },
         writing},
        {"open", [&] { ZoOpenFromMemory<Room>(saved, &schema, opening); }, reading},
        {"open some classes",
         [&] {
             const auto in = CreateMemoryBinInStream(saved.Data(), saved.Size(), 0);
             TFilteredBinInStreamer streamer(in.get(), &schema, &names);
             streamer.SetProgress(opening.progress);
             TIVector<ZoStreamableBase> objects;
             streamer.Read();
             in->TakeObjects(&objects);
         },
         reading},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const int alive = Alive::Count();
        const auto run = [&](int cancels, int throws) {
            calls = 0;
            latestOf = 0;
            before = clock.ticks - 99;
            cancelledAt = cancels;
            throwsAt = throws;
            return FailureOf(row.run);
        };
        EXPECT_EQ(run(0, 0), "");
        const int all = calls;
        EXPECT_GE(all, ROOMS / 64 / 2);
        EXPECT_TRUE(latestOf != 0 && latest * 2 > latestOf) << latest << " of " << latestOf;
        folder.Write("plan.zo", "old");
        for (const int at : {1, all / 2, all}) {
            EXPECT_EQ(run(at, 0), row.cancelled) << at;
            EXPECT_EQ(calls, at);
            EXPECT_THROW(run(0, at), int) << at;
            EXPECT_EQ(Alive::Count(), alive);
        }
        EXPECT_EQ(folder.Read("plan.zo"), "old");
        for (const std::string& name : folder.Names()) EXPECT_EQ(name.substr(0, 7), "plan.zo");
        clock.step = 0;
        EXPECT_EQ(run(1, 0), "") << "too soon to be told";
        clock.step = 3;
    }
}

} // namespace
