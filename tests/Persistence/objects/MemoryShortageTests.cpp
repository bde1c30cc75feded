#include "support/EveryKind.h"
#include "support/FakeClipboard.h"
#include "support/Memory.h"
#include "support/TemporaryFolder.h"

#include "ZoPrimitives/WholeText.h"
#include "ZoPrimitives/ZoPrimitives.h"

#include <new>

using namespace ZoPrimitives;
using namespace ZoPrimitives::Testing;

// Every allocation fails in turn, once and for good: an operation ends with the documented exception, or it
// does all that it does with memory.

namespace {

/// Objects that are removed for what they say of themselves, among them a member and what others own.
class Doubtful : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Doubtful)
    DECLARE_ZO_FIELD(ZoString, name)
    DECLARE_ZO_FIELD_CHILD_VALUE(app::Leaf, member)
    DECLARE_ZO_FIELD_CHILD(Doubtful, child)
    DECLARE_ZO_FIELD_CHILD_LIST(Doubtful, children)
    DECLARE_ZO_FIELD_CHILD_MAP(app::Leaf, Doubtful, map)
    DECLARE_ZO_FIELD_REFERENCE_LIST(Doubtful, references)
    REGISTER_ZO_END
    Doubtful() = default;
    explicit Doubtful(const char* text) : name(text) {}
    bool GetIsValid() const override { return name != "invalid"; }

private:
    Alive alive;
};

class Model {
public:
    Model() {
        app::RegisterEveryKind(schema);
        Doubtful::Register(&schema);
        ZoRegisterPoints(&schema);
        root.Fill(outside);
        root.strings.Add("a text too long for any short cut");
        root.aString = "another text that is long enough";
        everyKind = Save(schema, &root);
        const ZoBlob blob = ZoSaveInMemory(&root, &schema);
        digested = {static_cast<const char*>(blob.Data()), static_cast<std::size_t>(blob.Size())};
        Doubtful top("top");
        for (const char* text : {"kept", "invalid", "kept too"}) top.children.Add(new Doubtful(text));
        top.children[2]->child = new Doubtful("below");
        top.children[2]->children.Add(top.children[1].get());
        top.map.Append(new app::Leaf(1), new Doubtful("invalid"));
        top.map.Append(new app::Leaf(2), new Doubtful("in a map"));
        top.references.Add(top.children[2].get());
        top.references.Add(top.children[3].get());
        doubtful = Save(schema, &top);
    }
    TZoMetaData schema;
    app::Leaf outside{99};
    app::EveryKind root;
    std::string everyKind;
    std::string digested; ///< the same, with a digest
    std::string doubtful;
    FakeClipboard clipboard;
    InstalledServices services{clipboard};
    TemporaryFolder folder;
    const std::string path = folder.Path("model.zo");
    const std::string textPath = folder.Path("notes.txt");
};

/// A stream whose values come through its virtual operations.
class IndirectStream : public TMemoryBinInStream {
public:
    using TMemoryBinInStream::TMemoryBinInStream;
    bool GetsDirectly() const override { return false; }
};

/// One run of an operation, in which the allocation of that number is refused; 0: none.
struct Attempt {
    long long number = 0;
    bool forGood = false;
    bool refused = false;
    std::string outcome{}; ///< what came of it, or the failure

    template <class Run>
    bool Succeeds(Run run) {
        const Memory::Shortage shortage(number, forGood);
        try {
            run();
        } catch (const std::bad_alloc&) {
            outcome = "no memory";
        } catch (const XWriteStream&) {
            outcome = "no memory"; // for the clipboard's format or block
        } catch (const XStream& other) {
            outcome = Text(other.Message()) + " @ " + Text(other.Location());
        }
        refused = Memory::Shortage::Met();
        return outcome.empty();
    }
};

std::unique_ptr<TBinInStream> InMemory(const std::string& bytes) {
    return CreateMemoryBinInStream(bytes.data(), bytes.size(), 9999);
}

template <class Make>
void Open(Model& model, Attempt& attempt, Make make) {
    std::unique_ptr<TBinInStream> stream;
    std::optional<TBinInStreamer> streamer;
    TIVector<ZoStreamableBase> objects;
    ZoStreamableBase* root = nullptr;
    if (attempt.Succeeds([&] {
            stream = make();
            streamer.emplace(stream.get(), &model.schema);
            root = streamer->ReadObjects();
        }))
        attempt.outcome = Save(model.schema, root);
    if (stream != nullptr) stream->TakeObjects(&objects);
}

/// In one call, which releases all itself.
template <class Open>
void OpenAtOnce(Model& model, Attempt& attempt, Open open) {
    std::optional<TZoOpened<app::EveryKind>> opened;
    if (attempt.Succeeds([&] { opened = open(); }))
        attempt.outcome = Save(model.schema, opened->GetRoot().get());
}

template <class Stream>
std::unique_ptr<TBinInStream> Initialized(std::unique_ptr<Stream> stream) {
    stream->Initialize();
    return stream;
}

void OpenFiltered(Model& model, Attempt& attempt) {
    TDList<ZoString> names;
    for (const char* name : {"a name of no class", "EveryKind"}) names.Add(name);
    std::unique_ptr<TBinInStream> stream;
    std::optional<TFilteredBinInStreamer> reader;
    TIVector<ZoStreamableBase> objects;
    if (attempt.Succeeds([&] {
            stream = InMemory(model.everyKind);
            reader.emplace(stream.get(), &model.schema, &names);
            reader->Read();
        })) {
        for (ZoStreamableBase* object : reader->GetObjects())
            attempt.outcome += Text(dynamic_cast<app::EveryKind&>(*object).aString) + "|";
    }
    if (stream != nullptr) stream->TakeObjects(&objects);
}

void Write(TBinOutStream& out, Model& model) {
    out.Initialize();
    TBinOutStreamer streamer(&out, &model.schema);
    streamer.WriteObjectWithMetaData(&model.root);
}

void SaveInMemory(Model& model, Attempt& attempt) {
    ZoBlob saved;
    if (attempt.Succeeds([&] { saved = ZoSaveInMemory(&model.root, &model.schema); }))
        attempt.outcome = {static_cast<const char*>(saved.Data()), static_cast<std::size_t>(saved.Size())};
}

void SaveOnClipboard(Model& model, Attempt& attempt) {
    if (attempt.Succeeds([&] {
            TClipboardBinOutStream out;
            Write(out, model);
            out.Finalize();
        }))
        attempt.outcome = model.clipboard.block.value_or("");
}

void SaveOverAFile(Model& model, Attempt& attempt) {
    const std::string path = model.folder.Path("saved.zo"), old = "the version before";
    model.folder.Write("saved.zo", old);
    std::filesystem::remove(model.folder.Path("saved.zo-bak"));
    const bool done = attempt.Succeeds([&] { ZoSave(path.c_str(), &model.root, &model.schema); });
    const std::string now = model.folder.Read("saved.zo");
    EXPECT_TRUE((!done && now == old) || now == model.digested) << now.size() << " bytes";
    for (const std::string& name : model.folder.Names()) EXPECT_NE(name[0], '~') << "left behind: " << name;
    if (!done) return;
    EXPECT_EQ(model.folder.Read("saved.zo-bak"), old);
    attempt.outcome = now;
}

/// A text of a point, of the same one again, and of two lines.
template <class Stream>
void WriteTokens(const pointer<Stream>& stream) {
    const pointer<Point3D> point(new Point3D(1.0 / 3, 2, 3));
    OutputStreamer streamer(stream.get());
    streamer << point.get() << 7 << point.get();
    streamer.MultiLineText(WholeText({"a line that is long\nand another line that is as long"}), 8);
    stream->Finalize();
}

template <class Make>
void ReadTokens(Model& model, Attempt& attempt, Make make) {
    struct Reader : InputStreamer {
        using InputStreamer::CreateObject;
        using InputStreamer::InputStreamer;
    };
    pointer<ZoStreamableBase> point;
    ZoStreamableBase* again = nullptr;
    ZoString text;
    if (attempt.Succeeds([&] {
            const pointer<InputStream> stream(make());
            Reader reader(stream.get(), new StreamableFactory(&model.schema));
            int code = 0;
            reader >> code >> text;
            point = reader.CreateObject(text);
            if (point) point->Read(reader);
            reader >> code >> again >> code >> text;
        }))
        attempt.outcome = Text(dynamic_cast<Point3D&>(*point).CoordsToString()) + Text(text) +
                          (again == point ? " again" : "");
}

const struct {
    const char* name;
    void (*run)(Model&, Attempt&);
} operations[] = {
    {"open in memory",
     [](Model& model, Attempt& attempt) { Open(model, attempt, [&] { return InMemory(model.everyKind); }); }},
    {"open through virtual operations",
     [](Model& model, Attempt& attempt) {
         Open(model, attempt, [&, &bytes = model.everyKind] {
             return Initialized(std::make_unique<IndirectStream>(bytes.data(), bytes.size(), 9999));
         });
     }},
    {"open a file",
     [](Model& model, Attempt& attempt) {
         OpenAtOnce(model, attempt,
                    [&] { return ZoOpen<app::EveryKind>(model.path.c_str(), &model.schema); });
     }},
    {"open what lies on the clipboard",
     [](Model& model, Attempt& attempt) {
         model.clipboard.block = model.digested;
         OpenAtOnce(model, attempt, [&] { return ZoOpenFromClipboard<app::EveryKind>(&model.schema); });
     }},
    {"open with objects that are removed",
     [](Model& model, Attempt& attempt) { Open(model, attempt, [&] { return InMemory(model.doubtful); }); }},
    {"open filtered", OpenFiltered},
    {"save in memory", SaveInMemory},
    {"save on the clipboard", SaveOnClipboard},
    {"save over a file, with a backup", SaveOverAFile},
    {"write a text file",
     [](Model& model, Attempt& attempt) {
         const auto make = [&] { return new FileOutputStream(model.textPath.c_str(), false); };
         const bool done = attempt.Succeeds([&] { WriteTokens(pointer<FileOutputStream>(make())); });
         if (done) attempt.outcome = model.folder.Read("notes.txt");
     }},
    {"read a text file",
     [](Model& model, Attempt& attempt) {
         ReadTokens(model, attempt, [&] { return new FileInputStream(model.textPath.c_str()); });
     }},
    {"write a text on the clipboard",
     [](Model& model, Attempt& attempt) {
         model.clipboard.block.reset();
         const bool done =
             attempt.Succeeds([] { WriteTokens(pointer<ClipboardOutputStream>(new ClipboardOutputStream)); });
         if (done) attempt.outcome = model.clipboard.block.value_or("");
     }},
    {"read a text from the clipboard",
     [](Model& model, Attempt& attempt) {
         WriteTokens(pointer<ClipboardOutputStream>(new ClipboardOutputStream));
         model.clipboard.log.clear();
         ReadTokens(model, attempt, [] { return new ClipboardInputStream; });
     }},
};

TEST(MemoryShortageTests, EndsInTheDocumentedExceptionOrTheSameModel) {
    if (!Memory::Watched())
        GTEST_SKIP() << "a sanitizer keeps operator new to itself: nothing can be refused";
    Model model;
    model.folder.Write("model.zo", model.digested);
    for (const auto& [name, run] : operations) {
        SCOPED_TRACE(name);
        Attempt whole;
        run(model, whole);
        ASSERT_GT(whole.outcome.size(), 20U);
        for (const bool forGood : {false, true}) {
            int failures = 0;
            for (long long number = 1;; ++number) {
                SCOPED_TRACE(testing::Message() << "allocation " << number << (forGood ? " for good" : ""));
                const int alive = Alive::Count();
                model.clipboard.block.reset();
                model.clipboard.log.clear();
                const long long before = Memory::InUse();
                {
                    Attempt attempt{number, forGood};
                    run(model, attempt);
                    if (!attempt.refused) break;
                    if (attempt.outcome == "no memory")
                        ++failures;
                    else
                        ASSERT_EQ(attempt.outcome, whole.outcome);
                    model.clipboard.block.reset();
                }
                ASSERT_EQ(Alive::Count(), alive);
                // A system's library may let go of what it kept from before.
                ASSERT_LE(Memory::InUse(), before);
            }
            EXPECT_GT(failures, 5);
        }
    }
}

} // namespace
