#include "support/EveryKind.h"
#include "support/Memory.h"

#include "ZoPrimitives/ZoStreamablePrimitives.h"

#include <ctime>
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

/// A class with so many fields of one kind.
ClassEntry Wide(int kind, int count) {
    ClassEntry entry{.id = 1, .name = "Leaf"};
    entry.BlockOf(kind) = std::vector<FieldEntry>(static_cast<std::size_t>(count), {0, kind, ""});
    return entry;
}

TEST(HostileFileTests, RecordsCutAnywhere) {
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

TEST(HostileFileTests, RandomChanges) {
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
            switch (random() % 8) {
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
            case 7:
                if (!payload.empty()) payload[at] = static_cast<char>(payload[at] ^ (1 << random() % 8));
                break;
            }
        }
        application.Survive(FileOf(rows));
    }
    EXPECT_GT(application.opens, 1000);
    EXPECT_GT(application.failures, 1000);
}

// Prime numbers of buckets that hash tables grow through: ids that are multiples of one share a bucket.
int Multiple(int i, int count) { return i * (count <= 20'753 ? 20'753 : 42'043); }

std::vector<Row> Repeated(std::size_t count, int classId, const std::string& payload) {
    std::vector<Row> rows;
    for (std::size_t i = 0; i < count; ++i) rows.push_back({static_cast<int>(i) + 1, classId, payload});
    return rows;
}

/// A file that grows with `n`: its classes, and its objects' records.
struct Hostile {
    const char* name;
    int n;
    std::function<void(int n, std::vector<ClassEntry>& classes, std::vector<Row>& rows)> fill;
};

std::vector<Hostile> HostileGrowing() {
    using Classes = std::vector<ClassEntry>&;
    using Rows = std::vector<Row>&;
    const ClassEntry empty{.id = 1, .name = "Leaf"}, flag{.id = 1, .name = "Leaf", .values = {{0, -10, "x"}}},
        leaf{.id = 1, .name = "Leaf", .values = {{0, -1, "number"}}};
    const auto times = [](int n) { return static_cast<std::size_t>(n); };
    std::vector<Hostile> files{
        {"unknown classes whose ids share a bucket, an object of each", 20'000,
         [](int n, Classes classes, Rows rows) {
             for (int i = 1; i <= n; ++i) {
                 classes.push_back({.id = Multiple(i, n), .name = ""});
                 rows.push_back({i, Multiple(i, n), ""});
             }
         }},
        {"known classes of one name, an object of each", 20'000,
         [=](int n, Classes classes, Rows rows) {
             for (int i = 1; i <= n; ++i) {
                 classes.push_back(leaf);
                 classes.back().id = i;
                 rows.push_back({i, i, "\1\1\1\1"});
             }
         }},
        {"parents that are repeated, an object of each class", 400,
         [=](int n, Classes classes, Rows rows) {
             classes = {flag};
             for (int i = 2; i <= n; ++i) {
                 classes.push_back({.id = i, .name = "Leaf", .parents = std::vector<int>(990, 1)});
                 rows.push_back({i, i, std::string(990, '\1')});
             }
         }},
        {"long lines of ancestors, an object of each class", 10'000,
         [=](int n, Classes classes, Rows rows) {
             classes = {flag};
             for (int i = 2; i < 1000 + n; ++i) {
                 classes.push_back({.id = i, .name = "Leaf", .parents = {i < 990 ? i - 1 : 989}});
                 if (i >= 1000) rows.push_back({i, i, "\1"});
             }
         }},
        {"one wide class among the ancestors again and again", 10'000,
         [=](int n, Classes classes, Rows rows) {
             classes = {Wide(-10, n), {.id = 2, .name = "Leaf", .parents = std::vector<int>(500, 1)}};
             rows = {{1, 2, std::string(500 * times(n), '\1')}};
         }},
        {"records without content", 40'000,
         [=](int n, Classes classes, Rows rows) {
             classes = {empty};
             rows = Repeated(times(n), 1, "");
         }},
        {"uids far apart, falling", 40'000,
         [=](int n, Classes classes, Rows rows) {
             classes = {empty};
             for (int i = 0; i < n; ++i) rows.push_back({2'147'483'647 - i * 5'000, 1, ""});
         }},
        {"members", 10'000,
         [=](int n, Classes classes, Rows rows) {
             classes = {leaf, {.id = 2, .name = "EveryKind", .children = {{1, -18, "member"}}}};
             for (int i = 1; i < 2 * n; i += 2) {
                 rows.push_back({i, 2, Payload().Int(i + 1)});
                 rows.push_back({i + 1, 1, Payload().Int(7)});
             }
         }},
    };
    for (const int kind : {-4, -6, -7, -8, -9, -10, -14, -19})
        files.push_back({"many fields of one kind", 40'000, [=](int n, Classes classes, Rows rows) {
                             classes = {Wide(kind, n)};
                             const std::size_t bytes = kind == -19 ? 8 : kind == -10 ? 1 : 4;
                             rows = {{1, 1, std::string(times(n) * bytes, '\0')}};
                         }});
    return files;
}

std::string FileOf(const Hostile& hostile, int n) {
    std::vector<ClassEntry> classes;
    std::vector<Row> rows;
    hostile.fill(n, classes, rows);
    return FileOf(classes, rows);
}

/// Processor time that opening takes, and the most memory beside the application's objects.
struct Effort {
    double seconds = 0;
    long long bytes = 0;
};

Effort EffortOf(const std::string& file) {
    Application application;
    constexpr long long OBJECT_SIZES[] = {sizeof(app::Leaf) + 16, sizeof(app::EveryKind) + 256};
    TMemoryBinInStream stream(file.data(), file.size(), 0);
    stream.Initialize();
    TBinInStreamer streamer(&stream, &application.schema);
    Memory::ResetPeak();
    const long long before = Memory::Peak();
    const std::clock_t begin = std::clock();
    try {
        streamer.ReadObjects();
    } catch (const XStream&) {
        // Refusing the file is as good.
    }
    const std::clock_t end = std::clock();
    long long objects = 0;
    for (const ZoStreamableBase* object : stream.Objects())
        objects += OBJECT_SIZES[dynamic_cast<const app::EveryKind*>(object) != nullptr ? 1 : 0];
    const long long bytes = Memory::Peak() - before - objects;
    TIVector<ZoStreamableBase> all;
    stream.TakeObjects(&all);
    return {static_cast<double>(end - begin) / CLOCKS_PER_SEC, bytes};
}

TEST(HostileFileTests, TakeTimeAndMemoryInProportionToTheirSize) {
    const std::vector<Hostile> files = HostileGrowing();
    for (const Hostile& tested : files) {
        SCOPED_TRACE(testing::Message() << tested.name << ", " << &tested - &files[0]);
        const std::string small = FileOf(tested, tested.n);
        const std::string large = FileOf(tested, 2 * tested.n);
        Effort of[2];
        for (int round = 0; round < 5; ++round) { // others use the machine too
            of[0] = EffortOf(small);
            of[1] = EffortOf(large);
            if (of[1].seconds < 3 * of[0].seconds + 0.01) break;
        }
        EXPECT_LT(of[1].seconds, 3 * of[0].seconds + 0.01);
        EXPECT_LT(of[1].bytes, 16 * static_cast<long long>(large.size()))
            << static_cast<double>(of[1].bytes) / static_cast<double>(large.size()) << " times";
    }
}

TEST(HostileFileTests, ManyTinyRecordsOfAWideClassEndAtTheFirst) {
    Application application;
    application.Survive(FileOf({Wide(-6, 300'000)}, Repeated(100'000, 1, "1234")));
    EXPECT_EQ(application.failures, 1);
}

TEST(HostileFileTests, ALargeFileIsNotReservedASecondTime) {
    if (!Memory::Watched()) GTEST_SKIP() << "memory is not counted";
    const std::string file =
        FileOf({{.id = 1, .name = "Unknown"}}, Repeated(8, 1, std::string(8'000'000, '\1')));
    EXPECT_LT(EffortOf(file).bytes, static_cast<long long>(file.size()) / 4);
}

} // namespace
