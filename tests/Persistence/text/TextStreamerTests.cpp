#include "ZoPrimitives/ZoPrimitives.h"
#include "support/Assertions.h"
#include "support/PrivateClipboard.h"
#include "support/TemporaryFolder.h"

#include <climits>
#include <functional>
#include <gmock/gmock.h>
#include <memory>
#include <optional>

namespace {

using namespace ZoPrimitives;
using testing::ElementsAre;
using namespace ZoPrimitives::Testing;

int living = 0;

/// Codes: 10 a number, 11 a text, 20 a pointer, 21 more data of an object that was there before, 22 a
/// reference. A pointer is 5 and a handle; 0, a class, data and 7; or 0 and "NULL".
class Item : public ZoStreamableBase {
public:
    Item() { ++living; }
    explicit Item(StreamableInit init) : ZoStreamableBase(init) { ++living; }
    ~Item() override { --living; }
    ZoString StreamableClassName() const override { return "class Item"; }

    void Write(OutputStreamer& s) override {
        ZoStreamableBase::Write(s);
        s << 10 << number;
        if (next) s << 20 << next.get() << 7;
    }
    bool ReadData(int code, InputStreamer& s) override;

    int number = 0;
    ZoString text;
    pointer<ZoStreamableBase> next;
    ZoStreamableBase* seen = nullptr;
};

/// An item with a member: code 30, a class and the member's data.
class House : public Item {
public:
    bool ReadData(int code, InputStreamer& s) override {
        if (code == 30) s >> room;
        return code == 30 || Item::ReadData(code, s);
    }
    Item room;
};

/// Makes items under the names that it is given.
class Factory : public StreamableFactory {
public:
    explicit Factory(std::vector<std::string> names) : known(std::move(names)) {}
    ZoStreamableBase* CreateObject(ZoString className) override {
        for (const std::string& name : known) {
            if (className == name.c_str()) return new Item;
        }
        throw XUnknownObject();
    }

private:
    std::vector<std::string> known;
};

/// What is protected, for the tests.
class Reader : public InputStreamer {
public:
    using InputStreamer::CreateObject;
    using InputStreamer::GetHandle;
    using InputStreamer::InputStreamer;
    using InputStreamer::ResetHandles;
    using InputStreamer::SkipObject;

    ZoStreamableBase* ReadPointer() {
        int kind = 0;
        *this >> kind;
        ZoStreamableBase* object = nullptr;
        if (kind == 5) {
            *this >> object;
            return object;
        }
        ZoString name;
        *this >> name;
        if (name == "NULL") return nullptr;
        object = CreateObject(name);
        if (object != nullptr) object->Read(*this);
        return object;
    }
};

bool Item::ReadData(int code, InputStreamer& s) {
    if (code == 10) {
        s >> number;
    } else if (code == 11) {
        s >> text;
    } else if (code == 20) {
        next = static_cast<Reader&>(s).ReadPointer();
    } else if (code == 21) {
        ZoStreamableBase* object = nullptr;
        s >> object;
        object->Read(s);
    } else if (code == 22) {
        s >> seen;
    } else {
        return ZoStreamableBase::ReadData(code, s);
    }
    return true;
}

/// What `operation` writes, with "|" between the tokens.
template <class Operation>
std::string Written(Operation operation) {
    const TemporaryFolder folder;
    {
        pointer<OutputStream> stream(new FileOutputStream(folder.Path("text").c_str(), false));
        OutputStreamer streamer(stream.get());
        operation(streamer);
    }
    std::string bytes = folder.Read("text");
    for (std::size_t at = 0; (at = bytes.find("\r\n", at)) != std::string::npos;) bytes.replace(at, 2, "|");
    return bytes;
}

/// A text to read; tokens end with "|".
class Source {
public:
    explicit Source(std::string tokens, StreamableFactory* factory = new Factory({"class Item"})) {
        for (char& c : tokens) c = c == '|' ? '\n' : c;
        static const TemporaryFolder folder;
        static int count = 0;
        const std::string name = std::to_string(++count); // to write over a file takes longer
        folder.Write(name, tokens);
        streamer.emplace(new FileInputStream(folder.Path(name).c_str()), factory);
    }
    Reader* operator->() { return &*streamer; }
    Reader& operator*() { return *streamer; }
    void Close() { streamer.reset(); }
    /// All the tokens not yet read.
    std::string Rest() {
        std::string rest;
        try {
            for (ZoString token;;) {
                *streamer->GetStream() >> token;
                rest += std::string(token.c_str()) + "|";
            }
        } catch (const XEndOfStream&) {
            return rest;
        }
    }

private:
    std::optional<Reader> streamer;
};

/// What an operation throws; exceptions that bear no texts by their names.
template <class Operation>
std::string Thrown(Operation operation) {
    try {
        return FailureOf(operation);
    } catch (const XEndSection&) {
        return "end of section";
    } catch (const XInvalidHandle&) {
        return "invalid handle";
    } catch (const xInvalidConversion&) {
        return "invalid conversion";
    }
}

// Writing

TEST(OutputStreamerTests, WritesPointers) {
    const pointer<Item> a(new Item);
    const pointer<Item> b(new Item);
    Item value;
    ZoStreamableBase* const null = nullptr;
    const std::tuple<const char*, std::function<void(OutputStreamer&)>, const char*> rows[] = {
        {"another", [&](OutputStreamer& s) { s << a.get() << b.get() << a.get() << null; },
         "0|class Item|3|1|10|0|0|class Item|3|2|10|0|5|1|0"},
        {"a value", [&](OutputStreamer& s) { s << value << a.get() << *a; },
         "3|0|10|0|0|class Item|3|1|10|0|3|1|10|0"},
        {"a circle",
         [&](OutputStreamer& s) {
             a->next = b.get();
             b->next = a.get();
             s << a.get();
             EXPECT_EQ(s.GetHandle(a.get()), 1);
             EXPECT_EQ(s.GetHandle(b.get()), 2);
             EXPECT_EQ(s.GetHandle(&value), 0);
             EXPECT_THAT(std::vector<ZoStreamableBase*>(s.Objects().begin(), s.Objects().end()),
                         ElementsAre(a.get(), b.get()));
             a->next = nullptr;
         },
         "0|class Item|3|1|10|0|20|0|class Item|3|2|10|0|20|5|1|7|7"},
        {"numbers",
         [&](OutputStreamer& s) {
             s << 1.5 << 2.0f << 0.25L << 7u << -7 << static_cast<unsigned short>(9) << static_cast<short>(-9)
               << true << "text" << ZoString("text");
         },
         "1.5|2.|0.25|7|-7|9|-9|1|text|text"},
    };
    for (const auto& [name, write, tokens] : rows) EXPECT_EQ(Written(write), tokens) << name;
}

TEST(OutputStreamerTests, CutsTextIntoLines) {
    const std::pair<ZoString, const char*> rows[] = {
        {"", ""}, {"a\n", "8|a|8|"}, {"\n\n", "8||8||8|"}, {"a\n\nb", "8|a|8||8|b"}, {"a\r\nb", "8|a\r|8|b"}};
    for (const auto& row : rows)
        EXPECT_EQ(Written([&](OutputStreamer& s) { s.MultiLineText(row.first, 8); }), row.second);
}

TEST(TextStreamerTests, NestAsDeepAsIsStated) {
    for (const int levels : {MAX_TEXT_NESTING, MAX_TEXT_NESTING + 1}) {
        const bool fits = levels == MAX_TEXT_NESTING;
        pointer<Item> first(new Item);
        Item* last = first.get();
        for (int i = 1; i < levels; ++i) {
            auto* next = new Item;
            last->next = next;
            last = next;
        }
        const std::string written = Written([&](OutputStreamer& s) {
            EXPECT_EQ(Thrown([&] { s << first.get(); }),
                      fits ? "" : "Objetos aninhados demais @ OutputStreamer::operator<<");
            EXPECT_EQ(s.GetHandle(last), fits ? MAX_TEXT_NESTING : 0);
            EXPECT_EQ(s.Objects().NItems(), static_cast<unsigned long long>(MAX_TEXT_NESTING));
        });
        EXPECT_EQ(written.substr(written.size() - 2), fits ? "|7" : "20") << "nothing of the one refused";

        std::string text;
        for (int i = 0; i < levels; ++i) text += "0|class Item|20|";
        text += "0|NULL|";
        for (int i = 0; i < levels; ++i) text += "7|";
        Source source(text);
        EXPECT_EQ(Thrown([&] { source->ReadPointer(); }),
                  fits ? "" : "Objetos aninhados demais @ InputStreamer::Read");
        EXPECT_EQ(source->Objects().NItems(), static_cast<unsigned long long>(levels));
    }
    EXPECT_EQ(living, 0);
}

// Reading

TEST(InputStreamerTests, ReadsAnObjectsData) {
    using Text = const char*;
    const std::tuple<Text, Text, int, Text, Text, Text, unsigned> rows[] = {
        // number, text, failure, what is left, what is told
        {"ended by 7", "10|4|11|x|7|rest|", 4, "x", "", "rest|", strictNothing},
        {"unknown codes", "99|10|98|0|-1|7|10|4|97||7|rest|", 4, "", "", "rest|", strictFields},
        {"a text for a code", "x|rest|", 0, "", "", "rest|", strictNothing},
        {"a reference to nothing", "20|5|77|10|4|7|rest|", 4, "", "", "rest|", strictReferences},
        {"a reference to itself", "3|9|20|5|9|10|4|7|rest|", 4, "", "", "rest|", strictNothing},
        {"a reference that is none", "20|5|x|10|4|7|", 0, "", "invalid conversion", "10|4|7|", strictNothing},
        {"a section's end", "20|5|ENDSEC|10|4|7|", 0, "", "end of section", "10|4|7|", strictNothing},
        {"null", "20|0|NULL|10|4|7|", 4, "", "", "", strictNothing},
        {"an object of no known class", "20|0|class X|10|7|11|x|7|10|4|7|", 4, "", "", "", strictClasses},
        {"an object", "20|0|class Item|3|6|10|1|7|10|4|7|", 4, "", "", "", strictNothing},
        {"no end", "10|4|", 4, "", "End-of-file @ ", "", strictNothing},
    };
    for (const auto& [name, tokens, number, text, thrown, rest, told] : rows) {
        Source source(tokens);
        Item item;
        EXPECT_EQ(Thrown([&] { item.Read(*source); }), thrown) << name;
        EXPECT_TRUE(item.number == number && item.text == text) << name;
        EXPECT_EQ(source.Rest(), rest) << name;
        EXPECT_EQ(source->Report().Faults(), told) << name;
        if (told == strictNothing) continue;
        Source refused(tokens);
        refused->SetStrict(told);
        EXPECT_THROW(item.Read(*refused), XRefusedData) << name;
    }
    Source source("98|a|20|0|class X|7|20|5|77|98|b|0|");
    Item item;
    item.Read(*source);
    const TZoReadReport report = source->Report();
    EXPECT_EQ(report.lostClasses, (TDVector<TZoReadReport::LostClass>{{"X", false, "", 0, 1}}));
    EXPECT_EQ(report.fields, (TDVector<TZoReadReport::Field>{{"Item", "98", TFieldFault::NotInClass, 0, 0}}));
    EXPECT_EQ(report.references,
              (TDVector<TZoReadReport::Reference>{{"Item", "20", TReferenceLoss::Missing, 1}}));
}

TEST(InputStreamerTests, KnowsWhatClosesASection) {
    for (const std::string token : {"ENDSEC", "ENDTAB", "ENDGROUP", "ENDGROUPELEMENTOS",
                                    "ENDGROUPELEMENTOPARARA", "ENDRAINDIV", "ENDSE", ""}) {
        const bool endsPointers = token.size() > 5, endsObjects = endsPointers && token != "ENDRAINDIV";
        Source objects(token + "|10|4|7|"), pointers(token + "|");
        Item item;
        EXPECT_EQ(Thrown([&] { *objects >> item; }), endsObjects ? "end of section" : "") << token;
        EXPECT_EQ(item.number, endsObjects ? 0 : 4) << token;
        ZoStreamableBase* object = &item;
        EXPECT_EQ(Thrown([&] { *pointers >> object; }),
                  endsPointers ? "end of section" : "invalid conversion");
        EXPECT_EQ(object, &item);
    }
}

TEST(InputStreamerTests, TakesTerminatorsOfTheReaders) {
    TIList<ZoString> terminators;
    terminators.Add(new ZoString("END"));
    terminators.Add(nullptr);
    terminators.Add(new ZoString("4"));
    Source source("ENDSEC|end|END|4|5|6|");
    Item five;
    source->SetHandle(&five, 5);
    TIContainerIterator<ZoString> atItsEnd(terminators);
    while (!atItsEnd.IsDone()) atItsEnd.Next();
    for (const char* thrown : {"invalid conversion", "invalid conversion", "end of section", "end of section",
                               "", "invalid handle"}) {
        ZoStreamableBase* object = &five;
        EXPECT_EQ(Thrown([&] { source->Read(object, atItsEnd); }), thrown);
        EXPECT_EQ(object, *thrown == '\0' ? &five : nullptr);
    }
}

TEST(InputStreamerTests, TakesHandlesFromTokens) {
    Source source("");
    for (const auto& [token, handle] : {std::pair("+12", 12), {"-3", -3}, {"2147483647", INT_MAX}})
        EXPECT_TRUE(source->GetHandle(ZoString(token)) == handle && ValidInteger(token)) << token;
    for (const ZoString token : {"0", "", "1x", "2147483648"}) {
        EXPECT_EQ(Thrown([&] { source->GetHandle(token); }), "invalid conversion") << token.c_str();
        EXPECT_EQ(ValidInteger(token), token == "0") << token.c_str();
    }
}

TEST(InputStreamerTests, KeepsHandles) {
    Source source("");
    Item a;
    Item b;
    EXPECT_EQ(source->GetHandle(&a), 0);
    EXPECT_EQ(source->GetHandle(static_cast<ZoStreamableBase*>(nullptr)), 0);
    EXPECT_EQ(Thrown([&] { source->RetrieveObject(3); }), "invalid handle");
    for (const int handle : {3, INT_MIN, 5}) {
        source->SetHandle(&a, handle);
        EXPECT_EQ(source->GetHandle(&a), handle);
    }
    source->SetHandle(&a, 0); // as objects write it that were not written through a pointer
    EXPECT_EQ(source->GetHandle(&a), 5);
    for (const int handle : {3, INT_MIN, 5, 0}) EXPECT_EQ(source->RetrieveObject(handle), &a);
    source->SetHandle(&b, 5);
    EXPECT_EQ(source->RetrieveObject(5), &b);
    EXPECT_EQ(source->GetHandle(&a), 0) << "its last one is another's";
    source->SetHandle(nullptr, 5);
    EXPECT_EQ(Thrown([&] { source->RetrieveObject(5); }), "invalid handle");
    EXPECT_EQ(source->GetHandle(&b), 0);

    EXPECT_EQ(source->AddObject(&b), 6);
    EXPECT_EQ(source->AddObject(&b), 6);
    source->RemoveObject(6);
    EXPECT_EQ(source->GetHandle(&b), 0);
    EXPECT_EQ(source->AddObject(&b), 6);
    source->SetHandle(&b, INT_MAX);
    EXPECT_EQ(Thrown([&] { source->AddObject(&a); }), "invalid handle");
    source->ResetHandles();
    EXPECT_EQ(source->GetHandle(&b), 0);
    source->SetHandle(&b, -1);
    EXPECT_EQ(source->AddObject(&a), 1);
}

TEST(InputStreamerTests, NoTextEndsAMember) {
    ASSERT_EQ(living, 0);
    {
        Source source("30|class Item|3|2|10|4|7|20|5|2|20|0|NULL|20|5|2|7|");
        const pointer<House> house(new House);
        house->Read(*source);
        EXPECT_EQ(house->next.get(), &house->room);
        EXPECT_TRUE(source->IsMember(&house->room));
        EXPECT_FALSE(source->IsMember(house.get()));
        source.Close();
        house->next = nullptr;
        EXPECT_EQ(living, 2);
        EXPECT_EQ(house->room.number, 4);
    }
    EXPECT_EQ(living, 0);

    // An object that is let go of while it is read ends behind its data.
    const pointer<Item> holder(new Item);
    auto* held = new Item;
    holder->next = held;
    Source source("21|1|20|0|NULL|7|20|0|class Item|7|7|class Item|3|2|22|2|7|");
    source->SetHandle(holder.get(), 1);
    held->Read(*source);
    EXPECT_EQ(living, 2) << "the holder, and what the reader made";

    // Nothing is held for good of an object that only references name.
    auto* object = new Item;
    *source >> *object;
    EXPECT_EQ(object->seen, object);
    EXPECT_FALSE(source->IsMember(object));
    { const pointer<Item> last(object); }
    EXPECT_EQ(living, 2);
}

TEST(StreamableFactoryTests, KnowsTheClassesOfASchema) {
    TZoMetaData schema;
    ZoDouble::Register(&schema);
    pointer<StreamableFactory> factory(new StreamableFactory(&schema));
    EXPECT_STREQ(factory->StreamableClassName().c_str(), "class StreamableFactory");
    const std::string colons(2'000'000, ':'); // linear, with sanitizers too
    for (const std::string& name : {std::string("class ZoDouble"), std::string("ZoDouble"),
                                    std::string("class ZoPrimitives::ZoDouble"), colons + "ZoDouble"}) {
        const pointer<ZoStreamableBase> object(factory->CreateObject(name.c_str()));
        EXPECT_NE(dynamic_cast<ZoDouble*>(object.get()), nullptr) << name;
    }
    EXPECT_THROW(factory->CreateObject(colons.c_str()), XUnknownObject);
    for (const char* name : {"", "class ", "ZoInteger", "class zodouble", "ENDSEC"}) {
        EXPECT_THROW(factory->CreateObject(name), XUnknownObject) << name;
    }
    EXPECT_FALSE(factory->ReadSection(nullptr, "TABLE"));
}

TEST(InputStreamerTests, HoldsWhatItMade) {
    ASSERT_EQ(living, 0);
    const std::string whole = "0|class Item|3|1|20|0|class Item|3|2|20|5|1|7|7|";
    {
        Source source(whole.substr(0, whole.size() - 4));
        EXPECT_EQ(Thrown([&] { source->ReadPointer(); }), "End-of-file @ ");
        EXPECT_EQ(living, 2);
        static_cast<Item*>(source->Objects()[2])->next = nullptr; // no circle of holders
    }
    EXPECT_EQ(living, 0);

    std::vector<ZoStreamableBase*> all;
    {
        Source source(whole);
        source->ReadPointer();
        all.assign(source->Objects().begin(), source->Objects().end());
        static_cast<Item*>(all[1])->next = nullptr;
        static_cast<Item*>(all[0])->next = nullptr;
        EXPECT_EQ(living, 2) << "no setter ends an object while it is read";
        source->HandOver();
        EXPECT_EQ(source->Objects().NItems(), 0u);
        EXPECT_EQ(source->GetHandle(all[0]), 0);
    }
    EXPECT_EQ(living, 2);
    for (const ZoStreamableBase* object : all) delete object;
    EXPECT_EQ(living, 0);
}

TEST(InputStreamerTests, TakesEveryValueFromTheStream) {
    Source source("text|0.25|0.1|0.1|4294967295|-7|65535|-9|1|characters|skipped|rest|");
    const auto next = [&](auto value) { return *source >> value, value; };
    EXPECT_EQ(next(ZoString()), "text");
    EXPECT_TRUE(next(0.0L) == 0.25 && next(0.0) == 0.1 && next(0.0f) == 0.1f);
    EXPECT_TRUE(next(0u) == UINT_MAX && next(0) == -7 && next(static_cast<unsigned short>(0)) == 65535);
    EXPECT_TRUE(next(short{0}) == -9 && next(false));
    char characters[16] = "";
    *source >> characters;
    EXPECT_STREQ(characters, "characters");
    source->SkipValue();
    EXPECT_EQ(source.Rest(), "rest|");
}

TEST(RealClipboardStreamerTests, ShortNumbersAreIntsThere) {
    const PrivateClipboard clipboard;
    {
        pointer<OutputStream> stream(new ClipboardOutputStream);
        OutputStreamer(stream.get()) << static_cast<short>(-5) << static_cast<unsigned short>(65535);
        *stream << static_cast<short>(-7);
    }
    Reader reader(new ClipboardInputStream, nullptr);
    short small = 0;
    EXPECT_EQ(Thrown([&] { reader >> small; }), "Invalid data size @ ClipboardInputStream::ReadBinaryData");
    int first = 0, second = 0;
    reader >> first >> second >> small;
    EXPECT_THAT((std::vector<int>{first, second, small}), ElementsAre(-5, 65535, -7));
}

// Texts of strangers

TEST(HostileTextTests, ALastLineWithoutEndComesToAnEnd) {
    // Codes, objects, their classes and references for ever.
    for (const char* text : {"10", "3|1|99", "20|0|class Item", "20|0|class X", "20|5", "20"}) {
        Source source(text);
        Item item;
        EXPECT_EQ(Thrown([&] { item.Read(*source); }).find("class"), std::string::npos) << text;
        // Whatever the data were, nobody reads for ever.
        ZoString token;
        int count = 0;
        while (Thrown([&] { *source >> token; }).empty()) ++count;
        EXPECT_LE(count, MAX_TEXT_NESTING + 1) << text;
        EXPECT_EQ(Thrown([&] { source->SkipValue(); }), "End-of-file @ ") << text;
        source->SkipObject();
        item.next = nullptr;
    }
    EXPECT_EQ(living, 0);
    // Nobody reads a long one again and again.
    Source line(std::string(1'000'000, 'x'));
    ZoString token;
    int count = 0;
    while (Thrown([&] { *line >> token; }).empty()) ++count;
    EXPECT_LE(count, 2);
    // As often as objects may be nested the last token is there for them.
    Source source("7");
    for (int i = 0; i <= MAX_TEXT_NESTING; ++i) Item().Read(*source);
    EXPECT_EQ(Thrown([&] { Item().Read(*source); }), "End-of-file @ ");
}

TEST(HostileTextTests, AMillionNestedDataOfOneObjectAreRefused) {
    for (const bool fits : {true, false}) {
        std::string text;
        for (int i = 1; i < (fits ? MAX_TEXT_NESTING : 1'000'000); ++i) text += "21|1|";
        for (int i = 0; fits && i < MAX_TEXT_NESTING; ++i) text += "7|";
        Source source(text);
        Item item;
        source->SetHandle(&item, 1);
        EXPECT_EQ(Thrown([&] { item.Read(*source); }),
                  fits ? "" : "Objetos aninhados demais @ InputStreamer::Read");
        EXPECT_EQ(source.Rest().empty(), fits);
    }
}

} // namespace
