#include "support/EveryKind.h"

#include "ZoPrimitives/ZoStreamablePrimitives.h"

#include <limits>
#include <map>
#include <random>
#include <thread>

using namespace ZoPrimitives;

namespace {

/// A graph's object: every way to own and to refer, on several levels.
class Thing : public virtual ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Thing)
    DECLARE_ZO_FIELD(int, number)
    DECLARE_ZO_FIELD_CHILD(Thing, child)
    DECLARE_ZO_FIELD_CHILD_LIST(Thing, children)
    DECLARE_ZO_FIELD_REFERENCE(Thing, reference)
    DECLARE_ZO_FIELD_EXTERNAL_REFERENCE(Thing, external)
    REGISTER_ZO_END
};

class Mapped : public virtual Thing {
    REGISTER_ZO_BEGIN(Mapped, Thing)
    DECLARE_ZO_FIELD_CHILD_MAP(Thing, Thing, map)
    REGISTER_ZO_END
};

class Listed : public virtual Thing {
    REGISTER_ZO_BEGIN(Listed, Thing)
    DECLARE_ZO_FIELD_REFERENCE_LIST(Thing, references)
    DECLARE_ZO_FIELD_EXTERNAL_REFERENCE_LIST(Thing, externals)
    DECLARE_ZO_FIELD_CHILD_LIST(Thing, more)
    REGISTER_ZO_END
};

class Both : public Mapped, public Listed {
    REGISTER_ZO_BEGIN(Both, Listed, Mapped)
    DECLARE_ZO_FIELD(double, weight)
    REGISTER_ZO_END
};

/// Does something once, when its record is about to be written.
class Keeper : public virtual Thing {
    REGISTER_ZO_BEGIN(Keeper, Thing)
    REGISTER_ZO_END
    void WillWrite() override {
        if (const auto once = std::exchange(act, nullptr)) once();
    }
    std::function<void()> act;
};

struct BinOutStreamerTests : testing::Test {
    BinOutStreamerTests() {
        Thing::Register(&schema);
        Mapped::Register(&schema);
        Listed::Register(&schema);
        Both::Register(&schema);
        Keeper::Register(&schema);
    }
    TZoMetaData schema;
};

using Things = std::vector<Thing*>;

/// A part of a record: bytes, and the pointers behind them.
struct Part {
    enum Kind { Value, Owned, Reference, External } kind;
    Payload bytes{};
    Things targets{};
};

/// All parts in their order, level by level.
std::vector<Part> PartsOf(Thing* thing) {
    std::vector<Part> parts;
    const auto one = [&](Part::Kind kind, Thing* target) { parts.push_back({kind, {}, {target}}); };
    const auto all = [&](Part::Kind kind, const auto& list) {
        Things targets;
        for (const auto& target : list) targets.push_back(target ? &*target : nullptr);
        parts.push_back({kind, Payload().Int(static_cast<long long>(targets.size())), targets});
    };
    const auto base = [&] {
        parts.push_back({Part::Value, Payload().Int(thing->number)});
        one(Part::Owned, thing->child.get());
        all(Part::Owned, thing->children);
        one(Part::Reference, thing->reference.get());
        one(Part::External, thing->external.get());
    };
    base();
    auto* both = dynamic_cast<Both*>(thing);
    if (both == nullptr) return parts;
    all(Part::Owned, both->more);
    all(Part::Reference, both->references);
    all(Part::External, both->externals);
    base();
    Things keys, values;
    for (unsigned i = 1; i <= both->map.NItems(); ++i) {
        keys.push_back(both->map.KeyAt(i).get());
        values.push_back(both->map.ValueAt(i).get());
    }
    all(Part::Owned, keys);
    all(Part::Owned, values);
    parts.push_back({Part::Value, Payload().Double(both->weight)});
    return parts;
}

/// What a file holds, worked out by plain recursion.
class PlainWriter {
public:
    explicit PlainWriter(Thing* root) {
        Reach(root);
        for (std::size_t i = 0; i < externals.size(); ++i) Reach(externals[i]);
        for (Thing* object : reached) {
            Payload record;
            for (const Part& part : PartsOf(object)) {
                record.Add(part.bytes);
                for (Thing* target : part.targets) record.Int(target == nullptr ? 0 : uids.at(target));
            }
            rows.push_back({uids.at(object), dynamic_cast<Both*>(object) != nullptr ? 4 : 1, record});
        }
    }
    Things reached; // by rising uids
    std::vector<Row> rows;

private:
    void Reach(Thing* object) {
        const int uid = static_cast<int>(uids.size()) + 1;
        if (object == nullptr || !uids.emplace(object, uid).second) return;
        reached.push_back(object);
        for (const Part& part : PartsOf(object)) {
            for (Thing* target : part.targets) {
                if (part.kind == Part::Owned) Reach(target);
                if (part.kind == Part::External) externals.push_back(target);
            }
        }
    }

    std::map<Thing*, int> uids;
    Things externals;
};

/// Objects of two classes that own, share and refer to each other at random, in circles too.
class RandomGraph {
public:
    explicit RandomGraph(unsigned seed) : random(seed) {
        for (std::size_t i = 1 + random() % 60; i > 0; --i) {
            things.emplace_back(random() % 2 == 0 ? new Thing : static_cast<Listed*>(new Both));
            things.back()->number = static_cast<int>(i);
        }
        for (const auto& thing : things) Fill(thing.get());
        // Plain references lead to what the file holds anyway.
        const Things reached = PlainWriter(Root()).reached;
        for (Thing* thing : reached) {
            Thing* target = reached[random() % reached.size()];
            if (random() % 2 == 0) thing->reference = target;
            if (auto* listed = dynamic_cast<Listed*>(thing))
                for (Thing* each : {target, static_cast<Thing*>(nullptr)}) listed->references.Add(each);
        }
    }
    ~RandomGraph() {
        for (const auto& thing : things) {
            thing->GetClass()->DeleteReferences(
                thing.get(), [](auto...) { return true; }, nullptr);
        }
    }
    RandomGraph(const RandomGraph&) = delete;
    RandomGraph& operator=(const RandomGraph&) = delete;
    Thing* Root() { return things[0].get(); }

private:
    Thing* Any() {
        const std::size_t pick = random() % (things.size() * 2);
        return pick < things.size() ? things[pick].get() : nullptr;
    }
    void Fill(Thing* thing) {
        thing->child = Any();
        for (auto i = random() % 3; i > 0; --i) thing->children.Add(Any());
        if (random() % 4 == 0) thing->external = Any();
        auto* both = dynamic_cast<Both*>(thing);
        if (both == nullptr) return;
        for (auto i = random() % 3; i > 0; --i) both->map.Append(Any(), Any());
        for (auto i = random() % 3; i > 0; --i) both->more.Add(Any());
        if (random() % 3 == 0) both->externals.Add(Any());
        both->weight = both->number * 0.5;
    }

    std::mt19937 random;
    std::vector<pointer<Thing>> things;
};

/// The application's own streamer, for all that the library knows.
class Watching : public TBinOutStreamer {
public:
    using TBinOutStreamer::TBinOutStreamer;
};

std::vector<Row> ObjectRows(const std::string& file) {
    std::vector<Row> rows = RowsOf(file);
    rows.erase(rows.begin());
    return rows;
}

TEST_F(BinOutStreamerTests, OrdersUidsAndRecordsAsPlainRecursionDoes) {
    for (unsigned seed = 0; seed < 500; ++seed) {
        RandomGraph graph(seed);
        const PlainWriter expected(graph.Root());
        const std::string file = Save(schema, graph.Root());
        ASSERT_EQ(ObjectRows(file), expected.rows) << "seed " << seed;
        ASSERT_EQ(Word(file, 12), expected.rows.size() + 1) << "the header's count";
        // Where code of the application runs meanwhile, owners are asked again.
        ASSERT_EQ(Save<Watching>(schema, graph.Root()), file) << "seed " << seed;
        Opened opened(file, schema);
        ASSERT_TRUE(SaveAtOnce(schema, opened.root) == file) << "seed " << seed;
    }
}

TEST_F(BinOutStreamerTests, AnApplicationsStreamsSeeEveryValue) {
    static int ints = 0;
    struct Out : TMemoryBinOutStream {
        using TMemoryBinOutStream::operator<<;
        TBinOutStream& operator<<(int value) override {
            return ++ints, TMemoryBinOutStream::operator<<(value);
        }
    } out;
    struct In : TMemoryBinInStream {
        using TMemoryBinInStream::TMemoryBinInStream;
        using TMemoryBinInStream::operator>>;
        TBinInStream& operator>>(int& value) override {
            return ++ints, TMemoryBinInStream::operator>>(value);
        }
    };
    Both root; // 18 ints, and each thing 5
    root.more.Add(new Thing);
    root.map.Append(new Thing, new Thing);
    const std::string file = Save(schema, &root);
    out.Initialize();
    TBinOutStreamer writer(&out, &schema);
    writer.WriteObjectMetaData(&root);
    ints = 0;
    writer.WriteObject(&root);
    EXPECT_EQ(BytesOf(out), file);
    EXPECT_EQ(std::exchange(ints, 0), 33);
    In in(file.data(), file.size(), 0);
    in.Initialize();
    const pointer<ZoStreamableBase> read = TBinInStreamer(&in, &schema).ReadObjects();
    EXPECT_EQ(Save(schema, read.get()), file);
    EXPECT_GE(ints, 33) << "the schema's too";
}

TEST_F(BinOutStreamerTests, ThreadsMayShareASchema) {
    const auto holders = ZoReferenceCount::Count(schema.GetClass(1));
    const auto work = [this](unsigned seed) {
        RandomGraph graph(seed);
        const std::string file = Save(schema, graph.Root());
        for (int round = 0; round < 300; ++round) {
            Opened opened(file, schema);
            ASSERT_TRUE(Save(schema, opened.root) == file);
        }
    };
    std::thread other(work, 1U);
    work(2);
    other.join();
    EXPECT_EQ(ZoReferenceCount::Count(schema.GetClass(1)), holders);
}

/// The numbers of the objects in the order of their records.
std::string Numbers(const std::string& file) {
    std::string numbers;
    for (const Row& row : ObjectRows(file)) {
        int number = 0;
        std::memcpy(&number, row.payload.data(), sizeof number);
        numbers += (numbers.empty() ? "" : " ") + std::to_string(number);
    }
    return numbers;
}

TEST_F(BinOutStreamerTests, CallsWillWriteOnceForEveryLevelBeforeItsFields) {
    struct Counting : Both {
        void WillWrite() override { number = ++calls; }
        int calls = 0;
    };
    TZoMetaData::WritingGenericFile(true);
    Counting thing; // two parents with one of their own
    EXPECT_EQ(Numbers(Save(schema, &thing)), "1") << "the root-most level's field";
    EXPECT_EQ(thing.calls, 5);
    TZoMetaData::WritingGenericFile(false);
}

// Hooks that change the graph

/// A root (1) with a child (2) that has one (3), and children of its own (4, 5, 6); 7 and 8 are outside.
struct Family {
    Family() {
        for (unsigned i = 1; i <= 8; ++i) {
            held[i] = at[i] = new Keeper;
            at[i]->number = static_cast<int>(i);
        }
        at[1]->child = at[2];
        at[2]->child = at[3];
        for (const unsigned i : {4U, 5U, 6U}) at[1]->children.Add(at[i]);
    }
    Keeper* One(unsigned number) { return number == 9 ? new Keeper : at[number]; } // 9: somebody new
    Keeper* at[9] = {};
    pointer<Keeper> held[9];
};

/// What a hook does to one of a family, with another one or with a place in its list.
struct Change {
    unsigned whose;
    void (*make)(Family&, Keeper& whose, unsigned with);
    unsigned with = 0;
};
void Child(Family& f, Keeper& whose, unsigned with) { whose.child = f.One(with); }
void External(Family& f, Keeper& whose, unsigned with) { whose.external = f.One(with); }
void Add(Family& f, Keeper& whose, unsigned with) { whose.children.Add(f.One(with)); }
void RemoveAt(Family&, Keeper& whose, unsigned place) { whose.children.RemoveAt(place); }
void RemoveAll(Family&, Keeper& whose, unsigned) { whose.children.RemoveAll(); }
void SwapWithLast(Family&, Keeper& whose, unsigned place) {
    std::swap(whose.children[place], whose.children.Last());
}
void LetGo(Family& f, Keeper& whose, unsigned) { f.held[whose.number] = nullptr; }

TEST_F(BinOutStreamerTests, LeavesOutWhatHooksLetGoOf) {
    const struct {
        const char* name;
        std::vector<Change> before;
        unsigned acts; // when its record is about to be written
        std::vector<Change> changes;
        std::string written;
        std::string kept = {}; // where somebody else keeps the objects, if that makes a difference
    } cases[] = {
        {"nothing", {}, 1, {}, "1 2 3 4 5 6"},
        {"its child", {}, 1, {{1, Child}}, "1 4 5 6"},
        {"its list", {}, 1, {{1, RemoveAll}}, "1 2 3"},
        {"another's child too: at that one's turn", {{5, Child, 2}}, 1, {{1, Child}}, "1 4 5 2 3 6"},
        {"a sibling that comes later", {}, 4, {{1, RemoveAt, 2}}, "1 2 3 4 6"},
        {"itself, and nobody behind it is passed over", {}, 4, {{1, RemoveAt, 1}}, "1 2 3 4 5 6"},
        {"its owner, and what hangs from that",
         {{2, Child, 4}, {2, Add, 3}, {1, RemoveAll}},
         4,
         {{1, Child}},
         "1 2 4",
         "1 2 4 3"},
        {"a sibling, to one whose turn is over", {}, 5, {{2, Add, 6}, {1, RemoveAt, 3}}, "1 2 3 4 5 6"},
        {"places in a list: each is written once", {}, 5, {{1, SwapWithLast, 1}}, "1 2 3 4 5 6"},
        {"an external instance",
         {{1, External, 7}, {2, External, 8}},
         1,
         {{1, External}, {7, LetGo}},
         "1 2 3 4 5 6 8"},
        {"an external instance, by another one",
         {{2, External, 7}, {1, External, 8}},
         7,
         {{1, External}, {8, LetGo}},
         "1 2 3 4 5 6 7"},
        {"an external instance, by itself, and what hangs from that",
         {{2, External, 7}, {7, Child, 9}},
         7,
         {{2, External}, {7, LetGo}},
         "1 2 3 4 5 6 7"},
        {"nothing, and what comes in too late is left out",
         {},
         4,
         {{1, Add, 9}, {1, SwapWithLast, 2}},
         "1 2 3 4 6 5"},
    };
    for (const bool kept : {true, false}) {
        for (const auto& tested : cases) {
            SCOPED_TRACE(tested.name);
            Family family;
            const auto make = [&](const std::vector<Change>& changes) {
                for (const auto& [whose, change, with] : changes) change(family, *family.at[whose], with);
            };
            make(tested.before);
            family.at[tested.acts]->act = [&] { make(tested.changes); };
            for (const unsigned i : {2U, 3U, 4U, 5U, 6U})
                if (!kept) family.held[i] = nullptr;
            const std::string file = Save(schema, family.at[1]);
            EXPECT_EQ(Numbers(file), kept && !tested.kept.empty() ? tested.kept : tested.written);
            Opened opened(file, schema);
            EXPECT_EQ(opened.Root<Thing>().number, 1);
        }
    }
}

// Uids that were given before, and saving by hand

TEST_F(BinOutStreamerTests, SavesObjectsThatHaveAUidBefore) {
    const auto thing = [](TBinOutStreamer& s) { return s.GetMetaData()->FindClass("Thing"); };
    // What is done before with the root, its child, that one's child, and an external instance; the uids in
    // the order of the records.
    const std::tuple<const char*, std::function<void(TBinOutStreamer&, const Things&)>, std::vector<int>>
        cases[] = {
            {"none", [](auto&, auto&) {}, {1, 2, 3, 4}},
            {"all, by a class",
             [&](auto& s, auto& all) {
                 TDList<ZoStreamableBase*> externals;
                 thing(s)->AllocateHandles(s.GetStream(), all[0], &externals);
             },
             {1, 2, 3, 4}},
            {"the root", [](auto& s, auto& all) { s.GetStream()->SetHandle(all[0], 7); }, {7, 8, 9, 10}},
            {"a child, by the stream",
             [](auto& s, auto& all) { s.GetStream()->AllocateHandle(all[1]); },
             {2, 1, 3, 4}},
            {"a child and its own, the greater first",
             [](auto& s, auto& all) {
                 s.GetStream()->SetHandle(all[1], 9);
                 s.GetStream()->SetHandle(all[2], 5);
             },
             {10, 9, 5, 11}},
            {"none after all", [](auto& s, auto& all) { s.GetStream()->SetHandle(all[0], 0); }, {1, 2, 3, 4}},
            {"the last one there is",
             [](auto& s, auto& all) {
                 int uid = std::numeric_limits<int>::max();
                 for (Thing* each : all) s.GetStream()->SetHandle(each, uid--);
             },
             {2147483647, 2147483646, 2147483645, 2147483644}},
            {"all, and one is written by hand",
             [&](auto& s, auto& all) {
                 for (int uid = 1; Thing * each : all) s.GetStream()->SetHandle(each, uid++);
                 thing(s)->SaveToStream(s.GetStream(), &s, all[2]);
             },
             {3, 1, 2, 4}},
            {"all, and two are, the greater first",
             [&](auto& s, auto& all) {
                 for (int uid = 4; Thing * each : all) s.GetStream()->SetHandle(each, uid--);
                 thing(s)->SaveToStream(s.GetStream(), &s, all[1]);
             },
             {3, 2, 4, 1}},
        };
    for (const auto& [name, prepare, expected] : cases) {
        for (const bool asked : {false, true}) {
            SCOPED_TRACE(name);
            Thing root, outside;
            root.child = new Thing;
            root.child->child = new Thing;
            root.child->child->reference = &root; // and back again
            root.child->external = &outside;
            TMemoryBinOutStream stream;
            stream.Initialize();
            const std::unique_ptr<TBinOutStreamer> streamer(asked ? new Watching(&stream, &schema)
                                                                  : new TBinOutStreamer(&stream, &schema));
            streamer->WriteMetaData();
            prepare(*streamer, {&root, root.child.get(), root.child->child.get(), &outside});
            streamer->WriteObject(&root);
            std::vector<int> uids;
            for (const Row& row : ObjectRows(BytesOf(stream))) uids.push_back(row.uid);
            EXPECT_EQ(uids, expected);
        }
    }
    Thing root;
    root.child = new Thing;
    TMemoryBinOutStream stream;
    stream.SetHandle(&root, 3);
    stream.SetHandle(root.child.get(), 3);
    stream.Initialize();
    EXPECT_EQ(AssertionOf([&] { TBinOutStreamer(&stream, &schema).WriteObjectWithMetaData(&root); }).message,
              "[zoerror] two objects have the uid 3");
}

TEST_F(BinOutStreamerTests, SavesByHandOnceUntilHandlesAreReset) {
    RandomGraph graph(3);
    TZoClass* rootClass = graph.Root()->GetOriginalClass(&schema);
    const std::vector<Row> expected = PlainWriter(graph.Root()).rows;
    TMemoryBinOutStream stream;
    Watching streamer(&stream, &schema);
    for (int run = 0; run < 2; ++run) {
        stream.Initialize();
        TDList<ZoStreamableBase*> externals;
        rootClass->AllocateHandles(&stream, graph.Root(), &externals);
        streamer.AlocateExternalInstancesHandles(nullptr, &externals);
        for (int again = 0; again < 2; ++again) {
            rootClass->SaveToStream(&stream, &streamer, graph.Root());
            for (ZoStreamableBase* external : externals)
                external->GetOriginalClass(&schema)->SaveToStream(&stream, &streamer, external);
        }
        EXPECT_TRUE(streamer.InstanceIsAlreadySaved(graph.Root()));
        EXPECT_EQ(RowsOf(BytesOf(stream)), expected) << "run " << run;
        stream.ResetHandles();
        EXPECT_FALSE(streamer.InstanceIsAlreadySaved(graph.Root()));
    }
    // One without a uid gets a record all the same.
    Thing alone;
    stream.Initialize();
    schema.FindClass("Thing")->SaveToStream(&stream, &streamer, &alone);
    EXPECT_EQ(RowsOf(BytesOf(stream)), (std::vector<Row>{{0, 1, Payload().Ints({0, 0, 0, 0, 0})}}));
}

TEST_F(BinOutStreamerTests, AClassTakesAnObjectAsItsOwn) {
    Mapped object;
    object.number = 5;
    object.child = new Thing;
    object.child->child = new Keeper;
    object.map.Append(nullptr, new Mapped); // not a field of Thing
    TZoClass* thing = schema.FindClass("Thing");
    TDVector<ZoString> names;
    thing->GetClassMetaData(&schema, &object, &names);
    EXPECT_EQ(names.NItems(), 2U);
    TMemoryBinOutStream stream;
    stream.Initialize();
    TBinOutStreamer streamer(&stream, &schema);
    TDList<ZoStreamableBase*> externals;
    thing->AllocateHandles(&stream, &object, &externals);
    EXPECT_EQ(stream.GetHandle(object.map.ValueAt(1).get()), 0);
    thing->SaveToStream(&stream, &streamer, &object);
    EXPECT_EQ(RowsOf(BytesOf(stream)), (std::vector<Row>{{1, 1, Payload().Ints({5, 2, 0, 0, 0})},
                                                         {2, 1, Payload().Ints({0, 3, 0, 0, 0})},
                                                         {3, 5, Payload().Ints({0, 0, 0, 0, 0})}}));
}

// Failures

class Forgotten : public Thing {};

class Unknown : public Thing {
    REGISTER_ZO_BEGIN(Unknown, Thing)
    REGISTER_ZO_END
};

/// What failed while writing, beginning with the message.
std::string AssertionIn(const std::function<void()>& write) {
    const FailedAssertion failed = AssertionOf(write);
    return failed.message + " | " + failed.expression + " | " + failed.source;
}

TEST_F(BinOutStreamerTests, ClassesThatAreNotRegisteredAreNamed) {
    const std::string unregistered =
        "[zoerror] class 'class (anonymous namespace)::Unknown' not register or not streamable. See "
        "'class::Register' or 'class : public ZoStreamableBase' | "
        "instance_pointer->GetOriginalClass(parentMetaData) | cpp/Persistence/ZoMetaData";
    const std::string forgotten =
        "[zoerror] invalid class (class (anonymous namespace)::Forgotten - Thing). See REGISTER_ZO_BEGIN. | "
        "(instance_pointer->GetOriginalClass(streamer->GetMetaData())->GetName() == instanceClassName) | "
        "cpp/Persistence/ZoMetaData";
    const std::pair<const char*, void (*)(Both & root, Thing * target)> cases[] = {
        {"child", [](Both& root, Thing* target) { root.child = target; }},
        {"item of a list", [](Both& root, Thing* target) { root.more.Add(target); }},
        {"key of a map", [](Both& root, Thing* target) { root.map.Append(target, nullptr); }},
        {"value of a map", [](Both& root, Thing* target) { root.map.Append(nullptr, target); }},
        {"external", [](Both& root, Thing* target) { root.external = target; }},
        {"external of a list", [](Both& root, Thing* target) { root.externals.Add(target); }},
    };
    for (const auto& [name, attach] : cases) {
        SCOPED_TRACE(name);
        const pointer<Thing> unknown(new Unknown);
        const pointer<Thing> subclass(new Forgotten);
        Both first;
        attach(first, unknown.get());
        EXPECT_EQ(AssertionIn([&] { Save(schema, &first); }), unregistered);
        Both second;
        attach(second, subclass.get());
        EXPECT_EQ(AssertionIn([&] { Save(schema, &second); }), forgotten);
        TZoMetaData::WritingGenericFile(true);
        EXPECT_EQ(ObjectRows(Save(schema, &second))[1].classId, 1) << "as its registered class";
        TZoMetaData::WritingGenericFile(false);
    }
    Forgotten root;
    EXPECT_EQ(AssertionIn([&] { Save(schema, &root); }), forgotten) << "roots are no exception";
    Unknown other;
    EXPECT_EQ(AssertionIn([&] { Save(schema, &other); }), unregistered);
    TMemoryBinOutStream stream;
    stream.Initialize();
    TBinOutStreamer streamer(&stream, &schema);
    stream.SetHandle(&other, 1);
    EXPECT_EQ(AssertionIn([&] { streamer.SaveInstance(&stream, &other); }),
              "[zoerror] class not registered. See class::Register | "
              "instance_pointer->GetOriginalClass(streamer->GetMetaData()) | cpp/Persistence/ZoMetaData");
}

TEST_F(BinOutStreamerTests, DanglingReferencesAreNamed) {
    Listed root;
    Thing outside;
    const auto named = [&](const char* format) {
        const auto at = [](ZoStreamableBase& object) { return static_cast<const void*>(&object); };
        return Text(ZoString::FormatString(format, at(outside), at(root)));
    };
    const std::string see = ". See DECLARE_ZO_FIELD_EXTERNAL_REFERENCE or DECLARE_ZO_FIELD_CHILD. @ ";
    root.reference = &outside;
    EXPECT_EQ(FailureOf([&] { Save(schema, &root); }),
              named("[zoerror] child reference 'reference' (%p) in class 'class (anonymous "
                    "namespace)::Listed' (%p) not found") +
                  see + "TZoClassFieldPointer::SavePointer");
    root.reference = nullptr;
    root.references.Add(nullptr);
    root.references.Add(&outside);
    EXPECT_EQ(FailureOf([&] { Save(schema, &root); }),
              named("[zoerror] child reference <class (anonymous namespace)::Thing> (%p) not found in "
                    "references") +
                  see + "SavePointerFunc::operator()");
    root.externals.Add(&outside); // written, so no longer dangling
    EXPECT_EQ(FailureOf([&] { Save(schema, &root); }), "");
}

TEST_F(BinOutStreamerTests, FreesTheStreamAndForgetsTheUidsWhenItFails) {
    struct Watched : TMemoryBinOutStream {
        void FreeResourses() override {
            ++freed;
            TMemoryBinOutStream::FreeResourses();
        }
        int freed = 0;
    };
    struct Failing : TBinOutStreamer {
        using TBinOutStreamer::TBinOutStreamer;
        void OnAfterSaveInstance(ZoStreamableBase* object) override {
            EXPECT_TRUE(InstanceIsAlreadySaved(object));
            if (dynamic_cast<Thing&>(*object).number == failAt) throw std::runtime_error("hook");
        }
        int failAt = 2;
    };
    Thing root;
    root.child = new Thing;
    root.child->number = 2;
    Watched stream;
    Failing streamer(&stream, &schema);
    const auto write = [&] {
        stream.Initialize();
        streamer.WriteObjectWithMetaData(&root);
    };
    EXPECT_THROW(write(), std::runtime_error);
    EXPECT_EQ(stream.freed, 1);
    EXPECT_EQ(stream.GetHandle(&root) + stream.GetHandle(root.child.get()), 0);
    EXPECT_FALSE(streamer.InstanceIsAlreadySaved(&root));
    streamer.failAt = -1;
    write(); // the same stream serves again, from uid 1
    EXPECT_EQ(stream.freed, 1);
    EXPECT_EQ(stream.GetHandle(&root), 0);
    EXPECT_EQ(ObjectRows(BytesOf(stream)).front().uid, 1);
    // What was changed in the schema since is written too.
    schema.FindClass("Thing")->AddFieldInt("late", nullptr,
                                           [](ZoStreamableBase*, TZoClassField*) { return 9; });
    write();
    EXPECT_EQ(ObjectRows(BytesOf(stream))[1].payload, std::string(Payload().Ints({2, 9, 0, 0, 0, 0})));
}

TEST_F(BinOutStreamerTests, CountsOfListsAreBounded) {
    // Lists that claim one item more than a file can hold, and give none.
    static constexpr TZoItemCount claim = [](ZoStreamableBase*, TZoClassField*) { return 16'777'216ULL; };
    static constexpr TZoItemCount one = [](ZoStreamableBase*, TZoClassField*) { return 1ULL; };
    static constexpr auto none = [](auto...) {};
    const char* tooMany = "portableNItems <= MAX_INT_SIZE";
    const char* another = "save.Count() == count && \"[zoerror] the list gave another number of items\"";
    const TZoListAccessors<ZoString> values{nullptr, nullptr, claim};
    const TZoPointerListAccessors pointers{.nItems = claim, .iterateOver = none};
    const TZoPointerListAccessors broken{.nItems = one,
                                         .iterateOver = none}; // its walk does not keep the count
    const std::tuple<const char*, std::function<void(TZoClass & on)>, const char*> cases[] = {
        {"strings", [&](TZoClass& on) { on.AddFieldListString("f", values); }, tooMany},
        {"children", [&](TZoClass& on) { on.AddFieldChildPointerList("f", nullptr, pointers); }, tooMany},
        {"references", [&](TZoClass& on) { on.AddFieldPointerList("f", nullptr, pointers); }, tooMany},
        {"a map of nothing",
         [&](TZoClass& on) { on.AddFieldChildPointerMap("f", nullptr, nullptr, nullptr); }, "key && value"},
        {"another count", [&](TZoClass& on) { on.AddFieldPointerList("f", nullptr, broken); }, another},
    };
    for (const auto& [name, declare, expression] : cases) {
        TZoMetaData own;
        Thing::Register(&own);
        declare(*own.FindClass("Thing"));
        Thing object;
        const FailedAssertion failed = AssertionOf([&] { Save(own, &object); });
        EXPECT_EQ(failed.expression, expression) << name;
        EXPECT_EQ(failed.source, "cpp/Persistence/ZoMetaData") << name;
    }
}

// The schema of a file

std::vector<std::string> ClassesIn(const std::string& file) {
    TMemoryBinInStream stream(file.data(), file.size(), 0);
    stream.Initialize();
    int uid = 0;
    int classId = 0;
    stream.LoadRecord(&uid, &classId);
    TZoMetaData read;
    EXPECT_TRUE(read.LoadFromStream(&stream, nullptr));
    std::vector<std::string> classes;
    for (int i = 1; i <= read.GetClassCount(); ++i) {
        classes.push_back(Text(read.GetClass(i)->GetName()) + " " +
                          std::to_string(read.GetClass(i)->GetClassId()));
    }
    return classes;
}

class Wheel : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Wheel)
    DECLARE_ZO_FIELD(int, spokes)
    REGISTER_ZO_END
};
class Machine : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Machine)
    DECLARE_ZO_FIELD_CHILD_MAP(ZoFloat, Wheel, gears)
    REGISTER_ZO_END
};
class Vehicle : public Machine {
    REGISTER_ZO_BEGIN(Vehicle, Machine)
    REGISTER_ZO_END
};
class Engine : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Engine)
    DECLARE_ZO_FIELD_REFERENCE(Vehicle, vehicle)
    REGISTER_ZO_END
};
class Turbine : public Engine {
    REGISTER_ZO_BEGIN(Turbine, Engine)
    REGISTER_ZO_END
};
class Garage : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Garage)
    DECLARE_ZO_FIELD_CHILD(Engine, engine)
    DECLARE_ZO_FIELD_CHILD_MAP(Wheel, ZoDouble, prices)
    DECLARE_ZO_FIELD_CHILD(ZoObjectStreamable, anything)
    DECLARE_ZO_FIELD_EXTERNAL_REFERENCE(ZoObjectStreamable, elsewhere)
    REGISTER_ZO_END
};

struct FileSchemaTests : testing::Test {
    FileSchemaTests() {
        ZoInteger::Register(&schema); // 1: never needed
        ZoDouble::Register(&schema);
        ZoFloat::Register(&schema);
        Wheel::Register(&schema);
        Machine::Register(&schema); // 5
        Vehicle::Register(&schema);
        Engine::Register(&schema);
        Turbine::Register(&schema);
        Garage::Register(&schema); // 9
        schema.AddClass(new TZoClass(&schema, nullptr, "ZoObjectStreamable", nullptr, true, nullptr));
    }
    TZoMetaData schema;
};

TEST_F(FileSchemaTests, HoldsTheClassesThatTheGraphNeeds) {
    const pointer<Turbine> turbine(new Turbine);
    const std::vector<std::string> declared{"ZoDouble 2", "ZoFloat 3", "Wheel 4", "Machine 5",
                                            "Vehicle 6",  "Engine 7",  "Garage 9"};
    std::vector<std::string> withTurbine = declared;
    withTurbine.insert(withTurbine.end() - 1, "Turbine 8");
    const std::tuple<const char*, std::function<void(Garage&)>, std::vector<std::string>> cases[] = {
        {"null: the declared classes and all that they declare, generic bases not", [](auto&) {}, declared},
        {"an object brings its own class and its ancestors",
         [](auto& garage) { garage.engine = new Turbine; }, withTurbine},
        {"behind a generic base too", [](auto& garage) { garage.anything = new Turbine; }, withTurbine},
        {"and as an external instance", [&](auto& garage) { garage.elsewhere = turbine.get(); }, withTurbine},
        {"a map's values that are null", [](auto& garage) { garage.prices.Append(new Wheel, nullptr); },
         declared},
    };
    for (const auto& [name, fill, classes] : cases) {
        SCOPED_TRACE(name);
        Garage garage;
        fill(garage);
        const std::string file = Save(schema, &garage);
        EXPECT_EQ(ClassesIn(file), classes);
        TDVector<ZoString> names, declaredNames;
        garage.GetOriginalClass(&schema)->GetClassMetaData(&schema, &garage, &names);
        EXPECT_EQ(names.NItems(), classes.size());
        schema.FindClass("Garage")->FindField("engine")->GetUninstantiatedFieldMetaData(&schema,
                                                                                        &declaredNames);
        EXPECT_EQ(declaredNames.NItems(), 5U) << "engines, vehicles, and what those and their parents hold";
        Opened opened(file, schema);
        EXPECT_EQ(SaveAtOnce(schema, opened.root), file);
    }
}

TEST(StreamablePrimitivesTests, SeveralRootsOrTheWholeApplication) {
    TZoMetaData schema;
    ZoRegisterPrimitives(&schema);
    ZoInteger first(1);
    ZoFloat second(2);
    TDList<ZoStreamableBase*> roots;
    for (ZoStreamableBase* root : std::initializer_list<ZoStreamableBase*>{&first, nullptr, &second, &first})
        roots.Add(root);
    TMemoryBinOutStream stream;
    stream.Initialize();
    TBinOutStreamer streamer(&stream, &schema);
    streamer.WriteObjectsMetaData(&roots);
    streamer.WriteObjects(&roots);
    EXPECT_EQ(ClassesIn(BytesOf(stream)), (std::vector<std::string>{"ZoInteger 2", "ZoFloat 4"}));
    Opened opened(BytesOf(stream), schema);
    ASSERT_EQ(opened.Count(), 2U);
    EXPECT_EQ(opened.Root<ZoInteger>().value, 1);
    EXPECT_EQ(opened.At<ZoFloat>(2).value, 2.0F);

    const std::string apart = BytesOf(stream);
    stream.Initialize();
    streamer.WriteObjectsWithMetaData(&roots);
    EXPECT_EQ(BytesOf(stream), apart);
    stream.Initialize();
    streamer.WriteMetaData();
    EXPECT_EQ(ClassesIn(BytesOf(stream)).size(), 7U);
    stream.Initialize();
    streamer.WriteObjectMetaData(nullptr);
    EXPECT_TRUE(ClassesIn(BytesOf(stream)).empty());
}

// Wrappers

TEST(StreamablePrimitivesTests, AListWritesItsItemsBehindItself) {
    TZoMetaData schema;
    ZoRegisterPrimitives(&schema);
    const std::unique_ptr<ZoStreamableBase> made(
        StreamableList::Create(nullptr, &schema, schema.FindClass("StreamableList")));
    auto* list = dynamic_cast<StreamableList*>(made.get());
    list->GetList().Add(new ZoInteger(10));
    list->GetList().Add(new ZoBoolean(true));
    list->GetList().Add(new StreamableZoString("x"));
    const std::string file = Save(schema, list);
    EXPECT_EQ(ObjectRows(file), (std::vector<Row>{{1, 7, Payload().Ints({3, 2, 3, 4})},
                                                  {2, 2, Payload().Int(10)},
                                                  {3, 1, Payload().Bool(true)},
                                                  {4, 6, Payload().Text("x")}}));
    Opened opened(file, schema);
    EXPECT_EQ(dynamic_cast<StreamableZoString&>(*opened.Root<StreamableList>().list[3]).value, "x");
    const pointer<ZoStreamableBase> last = list->GetList()[3];
    EXPECT_TRUE(StreamableList::Dellist(list, nullptr, last.get()));
    EXPECT_FALSE(StreamableList::Dellist(list, nullptr, last.get()));
}

// Size

TEST_F(BinOutStreamerTests, AChainOfAnyLengthIsSavedOpenedAndReleased) {
#if defined(__SANITIZE_ADDRESS__)
    constexpr int LENGTH = 200'000;
#else
    constexpr int LENGTH = 1'000'000;
#endif
    const pointer<Thing> head(new Thing);
    Thing* last = head.get();
    for (int i = 2; i <= LENGTH; ++i) {
        last->child = new Thing;
        last = last->child.get();
        last->number = i;
    }
    last->reference = head.get();
    const std::string file = Save(schema, head.get());
    TMemoryBinInStream in(file.data(), file.size(), 0);
    in.Initialize();
    const pointer<Thing> read(dynamic_cast<Thing*>(TBinInStreamer(&in, &schema).ReadObjects()));
    ASSERT_EQ(in.Objects().NItems(), static_cast<unsigned>(LENGTH));
    int length = 1;
    for (last = read.get(); last->child.get() != nullptr; last = last->child.get()) ++length;
    EXPECT_EQ(length, LENGTH);
    EXPECT_EQ(last->number, LENGTH);
    EXPECT_EQ(last->reference, read.get());
}

} // namespace
