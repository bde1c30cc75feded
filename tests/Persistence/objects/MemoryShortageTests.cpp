#include "support/EveryKind.h"
#include "support/FakeClipboard.h"
#include "support/Memory.h"
#include "support/TemporaryFolder.h"

#include "ZoPrimitives/ClipboardBinInStream.h"
#include "ZoPrimitives/ClipboardBinOutStream.h"
#include "ZoPrimitives/ClipboardInputStream.h"
#include "ZoPrimitives/ClipboardOutputStream.h"
#include "ZoPrimitives/FileBinInStream.h"
#include "ZoPrimitives/FileBinOutStream.h"
#include "ZoPrimitives/FileInputStream.h"
#include "ZoPrimitives/FileOutputStream.h"
#include "ZoPrimitives/FilteredBinInStreamer.h"
#include "ZoPrimitives/InputStreamer.h"
#include "ZoPrimitives/OutputStreamer.h"
#include "ZoPrimitives/WholeText.h"
#include "ZoPrimitives/ZoStreamablePrimitives.h"
#include "ZoPrimitives/xContainer.h"

#include <filesystem>
#include <memory>
#include <new>
#include <optional>

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

/// One operation on what it holds.
class Trial {
public:
    virtual ~Trial() = default;
    /// With memory refused.
    virtual void Run() = 0;
    /// What `Run` did.
    virtual std::string Outcome() = 0;
    /// What must hold after a failure too.
    virtual void Check() {}
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

class Opening : public Trial {
public:
    using Make = std::function<std::unique_ptr<TBinInStream>(Model&)>;
    Opening(Model& model, Make make) : model(model), make(std::move(make)) {}
    ~Opening() override { Check(); }
    void Run() override {
        stream = make(model);
        streamer.emplace(stream.get(), &model.schema);
        root = streamer->ReadObjects();
    }
    std::string Outcome() override {
        TMemoryBinOutStream out;
        out.Initialize();
        TBinOutStreamer writer(&out, &model.schema);
        writer.WriteObjectMetaData(root);
        writer.WriteObject(root);
        return BytesOf(out);
    }
    void Check() override {
        if (stream != nullptr) stream->TakeObjects(&objects);
    }

protected:
    Model& model;
    Make make;
    std::unique_ptr<TBinInStream> stream;
    std::optional<TBinInStreamer> streamer;
    ZoStreamableBase* root = nullptr;
    TIVector<ZoStreamableBase> objects;
};

class OpeningFiltered : public Opening {
public:
    OpeningFiltered(Model& model, Make make) : Opening(model, std::move(make)) {
        for (const char* name : {"a name of no class", "EveryKind"}) names.Add(name);
    }
    void Run() override {
        stream = make(model);
        reader.emplace(stream.get(), &model.schema, &names);
        reader->Read();
    }
    std::string Outcome() override {
        std::string all;
        for (ZoStreamableBase* object : reader->GetObjects())
            all += Text(dynamic_cast<app::EveryKind&>(*object).aString) + "|";
        return all;
    }

private:
    TDList<ZoString> names;
    std::optional<TFilteredBinInStreamer> reader;
};

class Saving : public Trial {
public:
    explicit Saving(Model& model) : model(model) {}

protected:
    void Write(TBinOutStream& out) {
        TBinOutStreamer streamer(&out, &model.schema);
        streamer.WriteObjectMetaData(&model.root);
        streamer.WriteObject(&model.root);
    }
    Model& model;
};

class SavingInMemory : public Saving {
public:
    using Saving::Saving;
    void Run() override {
        out.Initialize();
        Write(out);
    }
    std::string Outcome() override { return BytesOf(out); }

private:
    TMemoryBinOutStream out;
};

class SavingOnClipboard : public Saving {
public:
    using Saving::Saving;
    void Run() override {
        TClipboardBinOutStream out;
        out.Initialize();
        Write(out);
        out.Finalize();
    }
    std::string Outcome() override { return model.clipboard.block.value_or(""); }
};

class SavingOverAFile : public Saving {
public:
    explicit SavingOverAFile(Model& model) : Saving(model) {
        model.folder.Write("saved.zo", "the version before");
        std::filesystem::remove(model.folder.Path("saved.zo-bak"));
    }
    void Run() override {
        const pointer<TFileBinOutStream> out(TFileBinOutStream::Create(path.c_str(), true));
        out->Initialize();
        Write(*out);
        out->Finalize();
    }
    std::string Outcome() override {
        EXPECT_EQ(model.folder.Read("saved.zo-bak"), "the version before");
        return model.folder.Read("saved.zo");
    }
    void Check() override {
        const std::string now = model.folder.Read("saved.zo");
        EXPECT_TRUE(now == "the version before" || now == model.everyKind) << now.size() << " bytes";
    }

private:
    const std::string path = model.folder.Path("saved.zo");
};

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

class ReadingText : public Trial {
public:
    explicit ReadingText(std::function<InputStream*()> make) : open(std::move(make)) {}
    void Run() override {
        const pointer<InputStream> stream(open());
        NoteReader reader(stream.get(), new Notes);
        first = reader.Read();
        second = reader.Read();
    }
    std::string Outcome() override {
        std::string all;
        for (const pointer<Note>& note : {first, second})
            all += note ? Text(note->name) + Text(ZoString(note->number)) : "none";
        return all + (first && first->next == second ? " joined" : "");
    }

private:
    std::function<InputStream*()> open;
    pointer<Note> first, second;
};

class WritingText : public Trial {
public:
    WritingText(std::function<void()> write, std::function<std::string()> bytes)
        : write(std::move(write)), bytes(std::move(bytes)) {}
    ~WritingText() override { bytes(); }
    void Run() override { write(); }
    std::string Outcome() override { return bytes(); }

private:
    std::function<void()> write;
    std::function<std::string()> bytes;
};

std::unique_ptr<TBinInStream> InMemory(const std::string& bytes) {
    return CreateMemoryBinInStream(bytes.data(), bytes.size(), 9999);
}

struct Operation {
    const char* name;
    std::function<std::unique_ptr<Trial>(Model&)> make;
};

std::vector<Operation> Operations() {
    const auto opening = [](Opening::Make make) {
        return [make](Model& model) { return std::make_unique<Opening>(model, make); };
    };
    const auto ofMemory = [](Model& model) { return InMemory(model.everyKind); };
    return {
        {"open in memory", opening(ofMemory)},
        {"open through virtual operations", opening([](Model& model) -> std::unique_ptr<TBinInStream> {
             auto stream =
                 std::make_unique<IndirectStream>(model.everyKind.data(), model.everyKind.size(), 9999);
             stream->Initialize();
             return stream;
         })},
        {"open a file", opening([](Model& model) -> std::unique_ptr<TBinInStream> {
             auto stream = std::make_unique<TFileBinInStream>(model.path.c_str(), true);
             stream->Initialize();
             return stream;
         })},
        {"open what lies on the clipboard", opening([](Model& model) -> std::unique_ptr<TBinInStream> {
             if (!model.clipboard.block) model.clipboard.block = model.everyKind;
             auto stream = std::make_unique<TClipboardBinInStream>(9999);
             stream->Initialize();
             return stream;
         })},
        {"open with objects that are removed",
         opening([](Model& model) { return InMemory(model.doubtful); })},
        {"open filtered",
         [ofMemory](Model& model) { return std::make_unique<OpeningFiltered>(model, ofMemory); }},
        {"save in memory", [](Model& model) { return std::make_unique<SavingInMemory>(model); }},
        {"save on the clipboard", [](Model& model) { return std::make_unique<SavingOnClipboard>(model); }},
        {"save over a file, with a backup",
         [](Model& model) { return std::make_unique<SavingOverAFile>(model); }},
        {"write a text file",
         [](Model& model) {
             return std::make_unique<WritingText>(
                 [&] {
                     WriteNotes(
                         pointer<FileOutputStream>(new FileOutputStream(model.textPath.c_str(), false)));
                 },
                 [&] { return model.folder.Read("notes.txt"); });
         }},
        {"read a text file",
         [](Model& model) {
             return std::make_unique<ReadingText>(
                 [&] { return new FileInputStream(model.textPath.c_str()); });
         }},
        {"write a text on the clipboard",
         [](Model& model) {
             return std::make_unique<WritingText>(
                 [] { WriteNotes(pointer<ClipboardOutputStream>(new ClipboardOutputStream)); },
                 [&] { return std::exchange(model.clipboard.block, {}).value_or(""); });
         }},
        {"read a text from the clipboard",
         [](Model& model) {
             if (!model.clipboard.block)
                 WriteNotes(pointer<ClipboardOutputStream>(new ClipboardOutputStream));
             return std::make_unique<ReadingText>([] { return new ClipboardInputStream; });
         }},
    };
}

/// What the operation does with the allocation of that number refused; the exception that it ended with.
std::string Attempt(const Operation& operation, Model& model, long long number, bool forGood, bool& refused) {
    model.clipboard.log.clear();
    const std::unique_ptr<Trial> trial = operation.make(model);
    std::string failure;
    {
        const Memory::Shortage shortage(number, forGood);
        try {
            trial->Run();
        } catch (const std::bad_alloc&) {
            failure = "no memory";
        } catch (const XWriteStream&) {
            failure = "no memory"; // for the clipboard's format or block
        } catch (const XStream& other) {
            failure = Text(other.Message()) + " @ " + Text(other.Location());
        }
        refused = Memory::Shortage::Met();
    }
    trial->Check();
    return failure.empty() ? trial->Outcome() : failure;
}

} // namespace

TEST(MemoryShortageTests, EndsInTheDocumentedExceptionOrTheSameModel) {
    if (!Memory::Watched())
        GTEST_SKIP() << "a sanitizer keeps operator new to itself: nothing can be refused";
    Model model;
    model.folder.Write("model.zo", model.everyKind);
    for (const Operation& operation : Operations()) {
        SCOPED_TRACE(operation.name);
        bool refused = false;
        const std::string whole = Attempt(operation, model, 0, false, refused);
        ASSERT_GT(whole.size(), 20U);
        for (const bool forGood : {false, true}) {
            int failures = 0;
            long long number = 1;
            for (;; ++number) {
                const int alive = Alive::Count();
                const long long before = Memory::InUse();
                {
                    const std::string done = Attempt(operation, model, number, forGood, refused);
                    if (!refused) break;
                    if (done == "no memory") {
                        ++failures;
                    } else {
                        ASSERT_EQ(done, whole) << "allocation " << number << (forGood ? " for good" : "");
                    }
                }
                ASSERT_EQ(Alive::Count(), alive) << "allocation " << number << (forGood ? " for good" : "");
                // A system's library may let go of what it kept from before.
                ASSERT_LE(Memory::InUse(), before) << "allocation " << number << (forGood ? " for good" : "");
            }
            EXPECT_GT(failures, 5);
        }
    }
}
