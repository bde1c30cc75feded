#include "support/EveryKind.h"

#include "ZoPrimitives/ZoStreamablePrimitives.h"

#include <atomic>
#include <cstdlib>
#include <malloc.h>
#include <new>
#include <random>

using namespace ZoPrimitives;

// Files whose sums are all right and whose content is not.

namespace {

/// An application that has a little of everything.
class Application {
public:
    Application() {
        app::RegisterEveryKind(schema);
        ZoRegisterPrimitives(&schema);
    }
    /// Opens the file, which may fail in the documented ways only, and walks what came of it.
    void Survive(const std::string& file) {
        const int before = Alive::Count();
        try {
            Opened opened(file, schema);
            TMemoryBinOutStream out;
            out.Initialize();
            TDList<ZoStreamableBase*> roots;
            for (ZoStreamableBase* object : opened.stream.Objects()) roots.Add(object);
            TBinOutStreamer streamer(&out, &schema);
            streamer.WriteObjectsMetaData(&roots);
            streamer.WriteObjects(&roots); // everything that is referred to is among the objects
            ++opens;
        } catch (const XStream& failure) {
            const std::string message = Text(failure.Message());
            EXPECT_TRUE(message == "Metadado corrompido" || message == "Metadado inv\xE1lido" ||
                        message == "Tamanho de registro corrompido")
                << message;
            ++failures;
        }
        EXPECT_EQ(Alive::Count(), before);
    }
    TZoMetaData schema;
    int opens = 0;
    int failures = 0;
};

std::vector<Row> GoodRows() {
    std::vector<Row> rows = app::EveryKindRows();
    rows.insert(rows.begin(), Row{0, 0, SchemaOf(app::EveryKindEntries())});
    return rows;
}

} // namespace

TEST(HostileFiles, RecordsCutAnywhere) {
    Application application;
    const std::vector<Row> good = GoodRows();
    for (const std::size_t record : {0U, 1U, 2U}) {
        for (std::size_t size = 0; size < good[record].payload.size(); ++size) {
            SCOPED_TRACE(testing::Message() << "record " << record << " cut to " << size);
            std::vector<Row> rows = good;
            rows[record].payload.resize(size);
            application.Survive(FileOf(rows));
        }
    }
    EXPECT_EQ(application.opens, 0);
}

TEST(HostileFiles, RecordsWithEachByteChanged) {
    Application application;
    const std::vector<Row> good = GoodRows();
    for (const std::size_t record : {0U, 1U, 2U}) {
        for (std::size_t at = 0; at < good[record].payload.size(); ++at) {
            for (const int change : {0x01, 0x80, 0xFF, 0x40}) {
                SCOPED_TRACE(testing::Message() << "record " << record << " byte " << at << " by " << change);
                std::vector<Row> rows = good;
                rows[record].payload[at] = static_cast<char>(rows[record].payload[at] ^ change);
                application.Survive(FileOf(rows));
            }
        }
    }
    EXPECT_GT(application.opens, 100);
    EXPECT_GT(application.failures, 100);
}

TEST(HostileFiles, RandomChanges) {
    Application application;
    std::mt19937 random(1);
    const std::vector<Row> good = GoodRows();
    const int interesting[] = {
        0, 1, -1, -6, -7, -18, -19, 2, 3, 8, 100, 2'147'483'647, -2'147'483'647 - 1, 0x10000};
    for (int round = 0; round < 20'000; ++round) {
        SCOPED_TRACE(round);
        std::vector<Row> rows = good;
        for (auto changes = 1 + random() % 4; changes > 0; --changes) {
            Row& row = rows[random() % rows.size()];
            std::string& payload = row.payload;
            const std::size_t at = payload.empty() ? 0 : random() % payload.size();
            const int value = interesting[random() % std::size(interesting)];
            switch (random() % 7) {
            case 0:
                payload.replace(at, 4, std::string(Payload().Int(value)));
                break;
            case 1:
                payload.insert(at, std::string(Payload().Int(value)));
                break;
            case 2:
                payload.erase(at, random() % 12);
                break;
            case 3:
                payload.insert(at, payload.substr(random() % (payload.size() + 1), random() % 40));
                break;
            case 4:
                row.classId = value;
                break;
            case 5:
                row.uid = value;
                break;
            case 6:
                rows.push_back(rows[random() % rows.size()]);
                break;
            }
        }
        application.Survive(FileOf(rows));
    }
    EXPECT_GT(application.opens, 1000);
    EXPECT_GT(application.failures, 1000);
}

TEST(HostileFiles, CountsThatLie) {
    struct Case {
        const char* name;
        ClassEntry entry;
        Payload record;
    };
    const int counts[] = {-1, -2'147'483'647 - 1, 2'147'483'647, 0x40000001, 1000};
    for (const int count : counts) {
        SCOPED_TRACE(count);
        const Case cases[] = {
            {"ints",
             {.id = 1, .name = "EveryKind", .values = {{0, -11, "ints"}}},
             Payload().Ints({count, 1})},
            {"doubles",
             {.id = 1, .name = "EveryKind", .values = {{0, -13, "doubles"}}},
             Payload().Int(count).Double(1)},
            {"strings",
             {.id = 1, .name = "EveryKind", .values = {{0, -14, "strings"}}},
             Payload().Ints({count, 0})},
            {"strings that the class lacks",
             {.id = 1, .name = "EveryKind", .values = {{0, -14, "x"}}},
             Payload().Ints({count, 0})},
            {"children",
             {.id = 1, .name = "EveryKind", .childLists = {{0, -7, "children"}}},
             Payload().Ints({count, 1})},
            {"children that the class lacks",
             {.id = 1, .name = "EveryKind", .childLists = {{0, -7, "x"}}},
             Payload().Ints({count, 1})},
            {"references",
             {.id = 1, .name = "EveryKind", .referenceLists = {{0, -16, "externals"}}},
             Payload().Ints({count, 1})},
            {"keys",
             {.id = 1, .name = "EveryKind", .maps = {{0, -19, "map"}}},
             Payload().Ints({count, 1, 0})},
            {"values",
             {.id = 1, .name = "EveryKind", .maps = {{0, -19, "map"}}},
             Payload().Ints({0, count, 1})},
        };
        for (const Case& tested : cases) {
            SCOPED_TRACE(tested.name);
            Application application;
            EXPECT_EQ(FailureOf([&] {
                          Opened opened(FileOf({tested.entry}, {{1, 1, tested.record}}), application.schema);
                      }),
                      "Tamanho de registro corrompido @ TZoClass::LoadFromStreamPre");
        }
    }
    // Lengths of texts and blobs are the stream's to check.
    for (const auto& [kind, name, location] :
         {std::tuple(-4, "aString", "TBinInStream::operator>>(ZoString)"),
          std::tuple(-5, "aBlob", "TBinInStream::operator>>(ZoBlob)")}) {
        Application application;
        const ClassEntry entry{.id = 1, .name = "EveryKind", .values = {{0, kind, name}}};
        EXPECT_EQ(FailureOf([&] {
                      Opened opened(FileOf({entry}, {{1, 1, Payload().Ints({-1, 0})}}), application.schema);
                  }),
                  std::string("Tamanho de registro corrompido @ ") + location);
    }
}

// Memory is measured by replacing `operator new`, which a sanitizer keeps to itself.
#if defined(__SANITIZE_ADDRESS__)
#define ZO_TEST_OWN_NEW 0
#elif defined(__has_feature)
#define ZO_TEST_OWN_NEW !__has_feature(address_sanitizer)
#else
#define ZO_TEST_OWN_NEW 1
#endif
#if ZO_TEST_OWN_NEW

namespace {

std::atomic<long long> inUse{0};
std::atomic<long long> peak{0};

/// The C library knows. Blocks bear no mark of ours: a run-time library in another module may release what we
/// allocate, and the other way round.
template <class Block>
long long SizeOf(Block* block) noexcept {
    if constexpr (requires { malloc_usable_size(block); })
        return static_cast<long long>(malloc_usable_size(block));
    else
        return static_cast<long long>(_msize(block));
}

void* Allocate(std::size_t size) noexcept {
    void* block = std::malloc(size == 0 ? 1 : size);
    if (block == nullptr) return nullptr;
    const long long now = inUse += SizeOf(block);
    for (long long highest = peak; highest < now && !peak.compare_exchange_weak(highest, now);) {
    }
    return block;
}

void Free(void* block) noexcept {
    if (block == nullptr) return;
    inUse -= SizeOf(block);
    std::free(block);
}

} // namespace

void* operator new(std::size_t size) {
    void* data = Allocate(size);
    if (data == nullptr) throw std::bad_alloc();
    return data;
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void operator delete(void* data) noexcept { Free(data); }
void operator delete(void* data, std::size_t) noexcept { Free(data); }
void operator delete(void* data, const std::nothrow_t&) noexcept { Free(data); }

TEST(HostileFiles, TakeNoMoreThanASmallMultipleOfTheirSize) {
    struct Case {
        const char* name;
        std::vector<ClassEntry> classes;
        std::vector<Row> rows;
    };
    // A field of 12 bytes and a name, 300,000 times in one class, and tiny records of that class.
    const auto fields = [](int kind) { return std::vector<FieldEntry>(300'000, {0, kind, ""}); };
    const auto rows = [](std::size_t count, const std::string& payload) {
        return std::vector<Row>(count, {1, 1, payload});
    };
    const std::string few = Payload().Ints({1, 1, 1, 1, 1, 1});
    std::vector<ClassEntry> classes;
    for (int i = 1; i <= 200'000; ++i) classes.push_back({.id = i, .name = ""});
    const Case cases[] = {
        {"owned pointers", {{.id = 1, .name = "Leaf", .children = fields(-6)}}, rows(1, few)},
        {"lists", {{.id = 1, .name = "Leaf", .referenceLists = fields(-9)}}, rows(1, std::string(12, '\0'))},
        {"maps", {{.id = 1, .name = "Leaf", .maps = fields(-19)}}, rows(1, std::string(12, '\0'))},
        {"values", {{.id = 1, .name = "Leaf", .values = fields(-10)}}, rows(1, few)},
        {"classes", classes, {}},
        {"one list of the application's",
         {{.id = 1, .name = "EveryKind", .childLists = {{0, -7, "children"}}}},
         rows(1, Payload().Int(2'000'000).Add(Payload(std::string(8'000'000, '\0'))))},
        {"uids far apart",
         {{.id = 1, .name = "Leaf"}},
         [] {
             std::vector<Row> spread;
             for (int i = 0; i < 100'000; ++i) spread.push_back({2'147'483'647 - i * 20'000, 1, ""});
             return spread;
         }()},
        {"one list of texts",
         {{.id = 1, .name = "EveryKind", .values = {{0, -14, "strings"}}}},
         rows(1, Payload().Int(2'000'000).Add(Payload(std::string(8'000'000, '\0'))))},
    };
    for (const Case& tested : cases) {
        SCOPED_TRACE(tested.name);
        Application application;
        const std::string file = FileOf(tested.classes, tested.rows);
        peak = inUse.load();
        const long long before = peak;
        application.Survive(file);
        EXPECT_LT(peak - before, 24 * static_cast<long long>(file.size()));
    }
}
#endif

TEST(HostileFiles, ManyTinyRecordsOfAWideClassEndAtTheFirst) {
    Application application;
    const ClassEntry wide{.id = 1, .name = "Leaf", .children = std::vector<FieldEntry>(300'000, {0, -6, ""})};
    std::vector<Row> rows;
    for (int uid = 1; uid <= 100'000; ++uid) rows.push_back({uid, 1, "1234"});
    application.Survive(FileOf({wide}, rows));
    EXPECT_EQ(application.failures, 1);
}
