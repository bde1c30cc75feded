#include "support/EveryKind.h"
#include "support/FakeClipboard.h"
#include "support/Memory.h"
#include "support/TemporaryFolder.h"

#include "ZoPrimitives/ClipboardBinOutStream.h"
#include "ZoPrimitives/ClipboardInputStream.h"
#include "ZoPrimitives/ClipboardOutputStream.h"
#include "ZoPrimitives/FileInputStream.h"
#include "ZoPrimitives/FileOutputStream.h"
#include "ZoPrimitives/FilteredBinInStreamer.h"
#include "ZoPrimitives/InputStreamer.h"
#include "ZoPrimitives/OutputStreamer.h"
#include "ZoPrimitives/WholeText.h"
#include "ZoPrimitives/ZoOpen.h"
#include "ZoPrimitives/ZoSave.h"
#include "ZoPrimitives/ZoStreamablePrimitives.h"
#include "ZoPrimitives/xContainer.h"

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

/// An object of a text: 10 a name line by line, 11 a number, 20 another note, which 7 ends.
class Note : public ZoStreamableBase {
public:
    ZoString StreamableClassName() const override { return "class Note of a name that needs memory"; }
    void Write(OutputStreamer& s) override {
        ZoStreamableBase::Write(s);
        s.MultiLineText(name, 10);
        s << 11 << number;
        if (next) s << 20 << next.get() << 7;
    }
    bool ReadData(int code, InputStreamer& s) override;

    ZoString name;
    double number = 0;
    pointer<Note> next;

private:
    Alive alive;
};

class NoteReader : public InputStreamer {
public:
    using InputStreamer::InputStreamer;
    Note* Read() {
        int code = 0;
        *this >> code;
        ZoStreamableBase* object = nullptr;
        if (code == 5) {
            *this >> object;
        } else {
            ZoString className;
            *this >> className;
            object = CreateObject(className);
            if (object != nullptr) object->Read(*this);
        }
        return dynamic_cast<Note*>(object);
    }
};

bool Note::ReadData(int code, InputStreamer& s) {
    ZoString line;
    switch (code) {
    case 10:
        s >> line;
        name = WholeText({name.c_str(), "|", line.c_str()});
        return true;
    case 11:
        s >> number;
        return true;
    case 20:
        next = static_cast<NoteReader&>(s).Read();
        return true;
    default:
        return ZoStreamableBase::ReadData(code, s);
    }
}

class Notes : public StreamableFactory {
    ZoStreamableBase* CreateObject(ZoString className) override {
        if (className != "class Note of a name that needs memory") throw XUnknownObject();
        return new Note;
    }
};

template <class Stream>
void WriteNotes(const pointer<Stream>& stream) {
    const pointer<Note> first(new Note), second(new Note);
    for (Note* note : {first.get(), second.get()}) {
        note->name = WholeText({"a line of a note that is long\nand another line that is as long"});
        note->number = 1.0 / 3;
    }
    first->next = second;
    OutputStreamer streamer(stream.get());
    streamer << first.get() << 7 << second.get();
    stream->Finalize();
}

template <class Make>
void ReadText(Attempt& attempt, Make make) {
    pointer<Note> first, second;
    if (!attempt.Succeeds([&] {
            const pointer<InputStream> stream(make());
            NoteReader reader(stream.get(), new Notes);
            first = reader.Read();
            second = reader.Read();
        }))
        return;
    for (const pointer<Note>& note : {first, second})
        attempt.outcome += note ? Text(note->name) + Text(ZoString(note->number)) : "none";
    if (first && first->next == second) attempt.outcome += " joined";
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
         const bool done = attempt.Succeeds([&] { WriteNotes(pointer<FileOutputStream>(make())); });
         if (done) attempt.outcome = model.folder.Read("notes.txt");
     }},
    {"read a text file",
     [](Model& model, Attempt& attempt) {
         ReadText(attempt, [&] { return new FileInputStream(model.textPath.c_str()); });
     }},
    {"write a text on the clipboard",
     [](Model& model, Attempt& attempt) {
         model.clipboard.block.reset();
         const bool done =
             attempt.Succeeds([] { WriteNotes(pointer<ClipboardOutputStream>(new ClipboardOutputStream)); });
         if (done) attempt.outcome = model.clipboard.block.value_or("");
     }},
    {"read a text from the clipboard",
     [](Model& model, Attempt& attempt) {
         WriteNotes(pointer<ClipboardOutputStream>(new ClipboardOutputStream));
         model.clipboard.log.clear();
         ReadText(attempt, [] { return new ClipboardInputStream; });
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
