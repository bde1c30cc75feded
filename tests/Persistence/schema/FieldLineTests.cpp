#include "support/Assertions.h"
#include "support/Streaming.h"

#include "ZoPrimitives/ZoRegister.h"

#include <climits>
#include <memory>

using namespace ZoPrimitives;

namespace {

enum class Finish { Raw, Painted, Galvanised };
enum Small : unsigned char { Least, Most = 255 };

// Where field lines stand makes no difference.
#define OWN_FIELD(name) DECLARE_ZO_FIELD(int, name)
// clang-format off
class Scattered : public ZoObjectStreamable { REGISTER_ZO_BEGIN(Scattered) DECLARE_ZO_FIELD(int, a)
    DECLARE_ZO_FIELD(int, b) DECLARE_ZO_FIELD_LIST(int, c)
    OWN_FIELD(d) DECLARE_ZO_FIELD(double, e, 1.5) REGISTER_ZO_END DECLARE_ZO_FIELD(ZoString, f, "none")
private:
    DECLARE_ZO_FIELD(int, g)
};
// clang-format on

class Wide : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Wide)
    DECLARE_ZO_FIELD(Finish, finish, Finish::Painted)
    DECLARE_ZO_FIELD(Small, small)
    DECLARE_ZO_FIELD(long long, least)
    DECLARE_ZO_FIELD(unsigned long long, most)
    DECLARE_ZO_FIELD(TTimestamp, when, TTimestamp::FromTicks(0))
    REGISTER_ZO_END
};

class Counted : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Counted)
    REGISTER_ZO_END
    Counted() = default;
    explicit Counted(int) { ADD_FAILURE() << "this one makes no empty objects"; }
};

} // namespace

TEST(FieldLineTests, CountWhereverTheyStand) {
    TZoMetaData schema;
    // The list stands behind the values in a record, whatever their lines.
    EXPECT_EQ(FieldNames(*Scattered::Register(&schema)), (Names{"a", "b", "c", "d", "e", "f", "g"}));
    Scattered scattered;
    EXPECT_EQ(scattered.e, 1.5);
    EXPECT_EQ(scattered.f, "none");
    Counted::Register(&schema);
    const std::unique_ptr<ZoStreamableBase> made(
        schema.FindClass("Counted")->CreateInstance(&schema, &schema));
    EXPECT_NE(dynamic_cast<Counted*>(made.get()), nullptr);
}

// Enumerations are ints in a file, what has no kind is a text that can be read without the application.
TEST(FieldLineTests, ValuesWithoutAKindAreStoredReadably) {
    TZoMetaData schema;
    Wide::Register(&schema);
    const auto payload = [](int finish, int small, const std::string& least, const std::string& most,
                            const std::string& when) {
        return Payload().Int(finish).Int(small).Text(least).Text(most).Text(when);
    };
    const Wide first;
    EXPECT_TRUE(first.finish == Finish::Painted && first.small == Least && first.least == 0 &&
                first.most == 0 && first.when.Ticks() == 0);
    const std::tuple<Finish, Small, long long, unsigned long long, long long, const char*> rows[] = {
        {Finish::Painted, Least, 0, 0, 0, "1970-01-01T00:00:00.0000000Z"},
        {Finish::Galvanised, Most, LLONG_MIN, ULLONG_MAX, 12'345'678, "1970-01-01T00:00:01.2345678Z"},
        {Finish::Raw, Least, -1, 1, -1, "1969-12-31T23:59:59.9999999Z"},
        {Finish::Raw, Least, LLONG_MAX, 1, LLONG_MAX, "31197-09-14T02:48:05.4775807Z"},
        {Finish::Raw, Least, 5, 1, LLONG_MIN, "-27258-04-19T21:11:54.5224192Z"},
    };
    for (const auto& [finish, small, least, most, ticks, when] : rows) {
        SCOPED_TRACE(when);
        Wide wide;
        wide.finish = finish;
        wide.small = small;
        wide.least = least;
        wide.most = most;
        wide.when = TTimestamp::FromTicks(ticks);
        const std::string file = Save(schema, &wide);
        EXPECT_EQ(RowsOf(file)[1].payload,
                  std::string(payload(static_cast<int>(finish), small, std::to_string(least),
                                      std::to_string(most), when)));
        Opened opened(file, schema);
        const Wide& read = opened.Root<Wide>();
        EXPECT_TRUE(read.finish == finish && read.small == small && read.least == least &&
                    read.most == most && read.when.Ticks() == ticks);
    }

    const std::pair<const char*, std::string> refused[] = {
        {"small", payload(0, 256, "0", "0", "1970-01-01T00:00:00Z")},
        {"small", payload(0, -1, "0", "0", "1970-01-01T00:00:00Z")},
        {"least", payload(0, 0, "9223372036854775808", "0", "1970-01-01T00:00:00Z")},
        {"least", payload(0, 0, "1.5", "0", "1970-01-01T00:00:00Z")},
        {"least", payload(0, 0, "", "0", "1970-01-01T00:00:00Z")},
        {"most", payload(0, 0, "0", "-1", "1970-01-01T00:00:00Z")},
        {"when", payload(0, 0, "0", "0", "1970-01-01")},
        {"when", payload(0, 0, "0", "0", "1970-02-30T00:00:00Z")},
    };
    Wide wide;
    std::vector<Row> sound = RowsOf(Save(schema, &wide));
    for (const auto& [field, bytes] : refused) {
        sound[1].payload = bytes;
        const std::string told = FailureOf([&] { const Opened opened(FileOf(sound), schema); });
        EXPECT_NE(told.find(std::string("field ") + field), std::string::npos) << told;
    }
}
