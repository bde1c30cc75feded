#include "Persistence/records/ErrorText.h"
#include "ZoPrimitives/BinUnresolved.h"
#include "ZoPrimitives/ZoBlob.h"
#include "ZoPrimitives/ZoMetaData.h"
#include "ZoPrimitives/ZoString.h"
#include "support/Streaming.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <random>
#include <stdexcept>

using namespace ZoPrimitives;
using namespace std::string_literals;

namespace {

const std::string CORRUPT_FILE = "Arquivo corrompido";
constexpr const char* CORRUPT_RECORD = "Tamanho de registro corrompido";

/// A source of one's own: `Read` and nothing else.
class Source : public TBinInStream {
public:
    enum Kind {
        Strict, ///< true when all bytes came
        Lenient ///< true when any came
    };
    explicit Source(std::string data, unsigned version = 9999, Kind sourceKind = Strict)
        : TBinInStream(version, false), bytes(std::move(data)), kind(sourceKind) {}

    void Initialize() { ReadHeader("Source::Source"); }
    void Use(const std::string& data) {
        bytes = data;
        cursor = 0;
    }
    /// From here on the device fails.
    std::size_t failsFrom = std::string::npos;

protected:
    bool Read(void* data, unsigned size, unsigned& done) override {
        const std::size_t end = std::min(bytes.size(), failsFrom);
        done = static_cast<unsigned>(std::min<std::size_t>(size, end - cursor));
        bytes.copy(static_cast<char*>(data), done, cursor);
        cursor += done;
        if (done < size && failsFrom < bytes.size()) SetReadError(DEVICE_ERROR);
        return kind == Strict ? done == size : done != 0;
    }

private:
    std::string bytes;
    std::size_t cursor = 0;
    Kind kind;
};

bool Load(TBinInStream& stream) {
    int uid = 0, classId = 0;
    return stream.LoadRecord(&uid, &classId);
}

/// The record that a stream holds.
std::string RecordOf(TBinInStream& stream) {
    std::string bytes(stream.GetRecordSize(), '\0');
    stream.SetRecordPosition(0);
    for (char& byte : bytes) stream.Take(byte);
    stream.SetRecordPosition(0);
    return bytes;
}

std::string Told(const std::string& message, const std::string& location) {
    return message + " @ " + location;
}

using Classes = std::vector<int>; // rising

/// All records, or those of some classes, up to the end, or to an exception, as lines of text.
std::vector<std::string> ReadAll(TBinInStream& stream, const Classes* classes = nullptr) {
    std::vector<std::string> lines;
    const unsigned long long before = stream.GetSkipped();
    const std::string thrown = FailureOf([&] {
        int uid = 0, classId = 0;
        const auto load = [&] {
            return classes == nullptr ? stream.LoadRecord(&uid, &classId)
                                      : stream.LoadFilteredRecord(nullptr, classes->data(), &classId, &uid,
                                                                  static_cast<int>(classes->size()));
        };
        while (load()) {
            EXPECT_EQ(stream.GetCurrentUID(), uid);
            lines.push_back(std::to_string(uid) + ' ' + std::to_string(classId) + ' ' + RecordOf(stream));
        }
    });
    if (!thrown.empty()) lines.push_back(thrown);
    EXPECT_EQ(stream.GetRecordSize() + stream.GetRecordPosition(), 0u) << "a record after the end";
    lines.push_back(std::to_string(stream.GetSkipped() - before) + " passed over");
    return lines;
}

/// The rule for finding records, once more and as plainly as it can be said.
std::vector<std::string> ReadByTheRule(const std::string& bytes, const Classes* classes = nullptr) {
    const std::string location =
        classes == nullptr ? "TBinInStream::LoadRecord #" : "TBinInStream::LoadFilteredRecord #";
    using Window = std::string;
    const Window none(4, '\0');
    std::vector<std::string> lines;
    std::size_t at = 0;
    unsigned long long skipped = 0;
    const auto take = [&](std::size_t count, std::string& taken) {
        taken = bytes.substr(std::min(at, bytes.size()), count);
        at += taken.size();
        return taken.size() == count;
    };
    const auto end = [&](const std::string& how) {
        if (!how.empty()) lines.push_back(how);
        lines.push_back(std::to_string(skipped) + " passed over");
        return lines;
    };
    const auto failed = [&](int point) { return end(Told("No error", location + std::to_string(point))); };
    for (;;) {
        Window window;
        if (!take(4, window)) return end("");
        bool found = false;
        for (int round = 1; round <= 65'535 && !found; ++round) {
            if (window == "\xCA\xAB\xCA\xAB" || window == "\xCD\xAB\xCD\xAB") {
                window = none;
                std::string size, head, payload; // the rest of the head
                if (!take(4, size)) return failed(1);
                if (Word(size, 0) > 10'485'760) {
                    skipped += 8;
                    continue;
                }
                if (!take(16, head)) return failed(2 + static_cast<int>(head.size() / 4));
                const int id = static_cast<int>(Word(head, 4)), uid = static_cast<int>(Word(head, 8));
                const bool asked =
                    classes == nullptr || std::find(classes->begin(), classes->end(), id) != classes->end();
                if (!take(Word(size, 0), payload)) return failed(classes == nullptr ? 3 : asked ? 7 : 6);
                for (unsigned key = 1; asked && key <= 4; key *= 2) {
                    if ((Word(head, 12) & key) == 0) continue;
                    payload = Scrambled(payload, key);
                    break;
                }
                if (asked && ZlibCrc(payload) != Word(head, 0)) {
                    skipped += Word(size, 0) + 24;
                    continue;
                }
                found = true; // what is not asked for as if by another call
                if (asked) lines.push_back(std::to_string(uid) + ' ' + std::to_string(id) + ' ' + payload);
            } else {
                ++skipped;
                std::string byte;
                if (!take(1, byte)) return end("");
                window = {window[1], byte[0], window[3], window[0]};
            }
        }
        if (!found) return end(Told(CORRUPT_FILE, location + "5"));
    }
}

/// Data that lies in memory as a whole, for a stream that is used again.
class Window : public TBinInStream {
public:
    Window() : TBinInStream(9999, false) {}
    void Use(const std::string& data) {
        bytes.reset(new unsigned char[data.size()]); // of just that size: a read behind it is seen
        std::copy(data.begin(), data.end(), bytes.get());
        SetWindow(bytes.get(), bytes.get() + data.size());
    }

protected:
    bool Read(void*, unsigned, unsigned&) override { throw std::logic_error("the window is not asked"); }

private:
    std::unique_ptr<unsigned char[]> bytes;
};

/// Every way to read a block gives what the rule gives, for all records or those of some classes. The streams
/// are used again and again: each takes 10 MiB when it meets damage.
::testing::AssertionResult ReadsByTheRule(const std::string& bytes,
                                          std::vector<std::string>* result = nullptr,
                                          const Classes* classes = nullptr) {
    static Window window;
    static Source strict(""), lenient("", 9999, Source::Lenient);
    const auto expected = ReadByTheRule(bytes, classes);
    if (result != nullptr) *result = expected;
    window.Use(bytes);
    strict.Use(bytes);
    lenient.Use(bytes);
    const std::pair<const char*, TBinInStream*> streams[] = {
        {"window", &window}, {"strict source", &strict}, {"lenient source", &lenient}};
    for (const auto& [name, stream] : streams) {
        const auto got = ReadAll(*stream, classes);
        if (got != expected) {
            return ::testing::AssertionFailure() << name << ": " << ::testing::PrintToString(got)
                                                 << "\ninstead of: " << ::testing::PrintToString(expected);
        }
    }
    return ::testing::AssertionSuccess();
}

const std::string A = RecordBytes(1, 7, "aaaa"), B = RecordBytes(2, 8, "bb"), C = RecordBytes(3, 9, "c");

std::string WithBadSum(std::string record) {
    record[8] = static_cast<char>(record[8] ^ 1);
    return record;
}
std::string Repeated(const std::string& piece, std::size_t times) {
    std::string text;
    for (std::size_t i = 0; i < times; ++i) text += piece;
    return text;
}

TEST(BinInStreamTests, PassesOverDamageAndOtherClasses) {
    const std::string at = " @ TBinInStream::LoadRecord #",
                      atFiltered = " @ TBinInStream::LoadFilteredRecord #";
    const std::string corrupt = CORRUPT_FILE + at + "5", most(65'534, 'x');
    const Classes eight{8}, none, absent{-1, 10};
    const struct {
        const char* name;
        std::string bytes;
        std::string uids; // and "end" for a quiet end
        const Classes* classes = nullptr;
    } cases[] = {
        {"nothing", "", "end"},
        {"both markers", A + Record{2, 8, "b", 0, 0xABCDABCD}.Bytes() + C, "1 2 3 end"},
        {"a mixture of the markers is none", A + Record{2, 8, "b", 0, 0xABCAABCD}.Bytes() + C, "1 3 end"},
        {"a flipped payload byte", A + B + WithBadSum(C) + A + B, "1 2 1 2 end"},
        {"a record without payload", A + RecordBytes(5, 6, "") + C, "1 5 3 end"},
        {"one byte of garbage: the next record is lost", A + "x" + B + C, "1 3 end"},
        {"three bytes", A + "xxx" + B + C, "1 3 end"},
        {"four bytes", A + "xxxx" + B + C, "1 2 3 end"},
        {"one byte that completes the window", A + "\xAB" + B + C, "1 2 3 end"},
        {"half a marker before: its size is half a marker", A + "\xCA\xAB" + B + C, "1 No error" + at + "3"},
        {"a whole marker before: its size is a marker", A + "\xCA\xAB\xCA\xAB" + B + C, "1 3 end"},
        {"the most garbage", A + most + B, "1 2 end"},
        {"a byte more", A + most + "x" + B, "1 " + corrupt},
        {"that much again after a good record", most + A + most + B, "1 2 end"},
        {"garbage to the end before the limit", A + most + "xxxx", "1 end"},
        {"garbage to the end at the limit", A + most + "xxxxx", "1 " + corrupt},
        {"the most records with a wrong sum", Repeated(WithBadSum(A), 13'106) + B, "2 end"},
        {"one more of them", Repeated(WithBadSum(A), 13'107) + B, corrupt},
        {"a size just too large", A + "\xCA\xAB\xCA\xAB\1\0\xA0\0"s + B + C, "1 2 3 end"},
        {"the largest size", A + "\xCA\xAB\xCA\xAB\xFF\xFF\xFF\xFF" + B + C, "1 2 3 end"},
        {"a possible size that is not there", A + "\xCA\xAB\xCA\xAB\0\0\xA0\0"s + B + C,
         "1 No error" + at + "3"},
        {"one class of three", A + B + C + A, "2 end", &eight},
        {"no class", A + B + C, "end", &none},
        {"a class that is not there", A + B + C, "end", &absent},
        {"a wrong sum in a class not asked for", WithBadSum(A) + B, "2 end", &eight},
        {"a wrong sum in a class asked for", WithBadSum(B) + A + B, "2 end", &eight},
        {"more records than there are rounds", Repeated(A, 65'536) + B, "2 end", &eight},
        {"the most garbage, twice", most + A + most + B, "2 end", &eight},
        {"too much garbage", A + "x" + most + B, CORRUPT_FILE + atFiltered + "5", &eight},
        {"a record not asked for that is not whole", B + A.substr(0, 27), "2 No error" + atFiltered + "6",
         &eight},
        {"a record asked for that is not whole", A + B.substr(0, 25), "No error" + atFiltered + "7", &eight},
    };
    for (const auto& row : cases) {
        std::vector<std::string> lines;
        EXPECT_TRUE(ReadsByTheRule(row.bytes, &lines, row.classes)) << row.name;
        lines.pop_back(); // how much was passed over
        std::string got;
        for (const std::string& line : lines)
            got += line.find(" @ ") != std::string::npos ? line : line.substr(0, line.find(' ') + 1);
        if (got.find(" @ ") == std::string::npos) got += "end";
        EXPECT_EQ(got, row.uids) << row.name;
    }
}

TEST(BinInStreamTests, FollowsTheRuleOnMixturesOfRecordsAndGarbage) {
    std::mt19937 random(42);
    const auto below = [&](unsigned n) { return static_cast<unsigned>(random() % n); };
    const char garbage[] = {'\xCA', '\xAB', '\xCD', '\0', 'x'};
    for (int round = 0; round < 3000; ++round) {
        std::string bytes;
        for (unsigned piece = 0; piece < 12; ++piece) {
            std::string payload(below(9), '\0');
            for (char& byte : payload) byte = below(2) != 0 ? static_cast<char>(random()) : garbage[below(5)];
            Record record{static_cast<int>(random()), static_cast<int>(below(20)), payload,
                          below(3) != 0 ? 0 : below(256), below(4) != 0 ? 0xABCAABCA : 0xABCDABCD};
            std::string frame = record.Bytes();
            const unsigned damage = below(10);
            if (damage == 0) frame = WithBadSum(frame);
            if (damage == 1) frame[6 + below(2)] = static_cast<char>(random()); // a size, often too large
            if (damage == 2) frame[below(4)] = garbage[below(5)];               // the marker
            if (damage == 3) frame.erase(below(static_cast<unsigned>(frame.size())), 1 + below(3));
            bytes += frame;
            if (below(3) == 0) {
                for (unsigned i = below(11); i > 0; --i) bytes += garbage[below(5)];
            }
        }
        if (below(2) == 0) bytes.resize(below(static_cast<unsigned>(bytes.size()) + 1));
        ASSERT_TRUE(ReadsByTheRule(bytes)) << "round " << round;
        const Classes some{static_cast<int>(below(7)), 7, 8, static_cast<int>(9 + below(11))};
        ASSERT_TRUE(ReadsByTheRule(bytes, nullptr, &some)) << "some classes, round " << round;
    }
}

TEST(BinInStreamTests, TellsWhereADeviceFails) {
    const std::string points = "111111112222333344445555"
                               "33";
    ASSERT_EQ(points.size(), B.size());
    for (std::size_t left = 0; left < B.size(); ++left) {
        SCOPED_TRACE(left);
        Source broken(A + B + C);
        broken.failsFrom = A.size() + left;
        EXPECT_TRUE(Load(broken));
        EXPECT_EQ(FailureOf([&] { Load(broken); }),
                  Told("Input/output error", "TBinInStream::LoadRecord #" + points.substr(left, 1)));
        broken.failsFrom = std::string::npos;
        const std::string last = ReadAll(broken).back();
        EXPECT_EQ(last.find(" @ "), std::string::npos) << "an error that is over is forgotten";
    }
    Source hunting(A + "xxxxxxxxx" + B);
    hunting.failsFrom = A.size() + 6;
    EXPECT_EQ(ReadAll(hunting)[1], Told("Input/output error", "TBinInStream::LoadRecord #5"));
    Source passing(A + B);
    passing.failsFrom = A.size() - 1;
    const Classes eight{8};
    EXPECT_EQ(ReadAll(passing, &eight)[0], Told("Input/output error", "TBinInStream::LoadFilteredRecord #6"));
}

TEST(BinInStreamTests, ChecksTheHeader) {
    const std::string invalid = Told("Header de arquivo inv\xE1lido", "TBinInStream::LoadHeader");
    const struct {
        const char* name;
        std::string bytes;
        unsigned supported;
        std::string thrown; // empty: record A is read
    } cases[] = {
        {"usual", HeaderBytes(3, 2026) + A, 3, ""},
        {"newer", HeaderBytes(4, 2026) + A, 3, " @ "},
        {"the highest version", HeaderBytes(9'999, 0) + A, 9'999, ""},
        {"version out of range", HeaderBytes(10'000, 0) + A, 20'000, invalid},
        {"version out of range and newer", HeaderBytes(0xFFFFFFFF, 0) + A, 3, invalid},
        {"the highest release", HeaderBytes(3, 999'999) + A, 3, ""},
        {"release out of range", HeaderBytes(3, 1'000'000) + A, 3, invalid},
        {"reserved fields say nothing",
         HeaderBytes(3, 1).replace(4, 8, 8, '\xFF').replace(20, 4, 4, '\xFF') + A, 3, ""},
        {"the largest extra block", HeaderBytes(3, 1, 1, 65'535) + std::string(65'535, '\xCA') + A, 3, ""},
        {"extra block out of range", HeaderBytes(3, 1, 1, 65'536) + std::string(65'536, 'x') + A, 3, invalid},
        {"newer, with an extra block", HeaderBytes(4, 1, 1, 5) + "ext", 3, " @ "},
        {"cut short", HeaderBytes(3, 1).substr(0, 27), 3, "short"},
        {"empty", "", 3, "short"},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        void* block = std::malloc(row.bytes.size() + 1); // the leak checker watches it
        std::memcpy(block, row.bytes.data(), row.bytes.size());
        TMemoryBinInStream memory(block, row.bytes.size(), row.supported, true);
        Source source(row.bytes, row.supported);
        Source lenient(row.bytes, row.supported, Source::Lenient);
        const auto expect = [&](auto& stream, const char* location) {
            const std::string expected = row.thrown == "short" ? Told("No error", location) : row.thrown;
            EXPECT_EQ(FailureOf([&] { stream.Initialize(); }), expected);
            if (!row.thrown.empty()) return;
            EXPECT_EQ(stream.GetVersion(), Word(row.bytes, 0));
            EXPECT_EQ(stream.GetNInstances(), Word(row.bytes, 12));
            EXPECT_EQ(stream.GetRelease(), Word(row.bytes, 16));
            EXPECT_EQ(stream.GetRecordSize(), 0u);
            EXPECT_EQ(ReadAll(stream)[0], "1 7 aaaa");
        };
        for (int again = 0; again < 2; ++again) expect(memory, "TMemoryBinInStream::TMemoryBinInStream");
        expect(source, "Source::Source");
        expect(lenient, "Source::Source");
    }
    // An extra block that is cut short leaves a file without records; a device that fails is told.
    const std::string cut = HeaderBytes(3, 1, 1, 100) + "extra";
    EXPECT_FALSE(CreateMemoryBinInStream(cut.data(), cut.size(), 3)->LoadRecord(nullptr, nullptr));
    Source broken(cut);
    broken.failsFrom = 30;
    EXPECT_EQ(FailureOf([&] { broken.Initialize(); }), Told("Input/output error", "Source::Source"));
    EXPECT_FALSE(TMemoryBinInStream(nullptr, 5, 3).GetOwnsSource());
    EXPECT_EQ(FailureOf([&] { CreateMemoryBinInStream(nullptr, 5, 3); }),
              Told("No error", "TMemoryBinInStream::TMemoryBinInStream"));
}

/// Hands a payload, as the current record, to an operation: of a memory stream and of a source.
template <class Operation>
void WithRecord(const std::string& payload, Operation operation) {
    // What lies behind the record in memory must not show.
    const std::string file = RecordBytes(1, 1, payload) + std::string(100, '\xEE');
    TMemoryBinInStream memory(file.data(), file.size(), 1);
    Source source(file);
    for (TBinInStream* stream : std::initializer_list<TBinInStream*>{&memory, &source}) {
        ASSERT_TRUE(Load(*stream));
        operation(*stream);
    }
}

/// A value's bytes in a record, and whether they give the value again.
template <class Read, class T>
void Check(const T& value, const std::string& bytes, const Read& expected) {
    SCOPED_TRACE(::testing::PrintToString(bytes));
    TMemoryBinOutStream out;
    out << value << value; // nothing stands between values
    EXPECT_EQ(out.GetBufferSize(), 2 * bytes.size());
    out.FlushRecord(1, 1);
    EXPECT_EQ(BytesOf(out), RecordBytes(1, 1, bytes + bytes));
    WithRecord(bytes + bytes, [&](TBinInStream& stream) {
        Read first{}, second{};
        stream >> first >> second;
        EXPECT_TRUE(first == expected && second == expected);
        EXPECT_EQ(stream.GetRemaining(), 0u);
    });
}
template <class T>
void Check(const T& value, const std::string& bytes) {
    Check<T>(value, bytes, value);
}

TEST(BinInStreamTests, TakesTheValuesThatAreWritten) {
    Check(true, "\1");
    Check(false, "\0"s);
    Check(short{-2}, "\xFE\xFF");
    Check(static_cast<unsigned short>(0x9234), "\x34\x92");
    Check(-2, "\xFE\xFF\xFF\xFF");
    Check(0x92345678u, "\x78\x56\x34\x92");
    Check(-1.5f, "\0\0\xC0\xBF"s);
    Check(1.5, "\0\0\0\0\0\0\xF8\x3F"s);
    Check<long double>(0.1L, "\x9A\x99\x99\x99\x99\x99\xB9\x3F"s, 0.1);
    Check(std::numeric_limits<long double>::infinity(), "\0\0\0\0\0\0\xF0\x7F"s);
    Check(ZoString("a\xE7"), "\2\0\0\0a\xE7"s);
    Check<ZoString>(ZoString("a\0b", 3u), "\1\0\0\0a"s, "a"); // up to a zero byte
    Check(ZoString(), "\0\0\0\0"s);
    Check<ZoString>("ab", "\2\0\0\0ab"s, "ab");
    Check<ZoString>(static_cast<const char*>(nullptr), "\0\0\0\0"s, "");
    Check(ZoBlob("\0\xFF", 2), "\2\0\0\0\0\xFF"s);
    Check(ZoBlob(), "\0\0\0\0"s);
    WithRecord("\2\xFF\2\0\0\0cd\0\0\0\0"s, [](TBinInStream& stream) {
        bool two = false, all = false;
        char characters[] = "before", none[] = "before";
        stream >> two >> all >> characters >> none;
        EXPECT_TRUE(two && all) << "any byte but 0 is true";
        EXPECT_STREQ(characters, "cd");
        EXPECT_STREQ(none, "");
    });
}

TEST(BinInStreamTests, ReadsPastTheEndOfARecordDefinedBytes) {
    WithRecord("\1\2\3\4\5", [](TBinInStream& stream) {
        int whole = 0, part = -1;
        double behind = -1;
        bool yes = true;
        stream >> whole >> part >> behind >> yes;
        EXPECT_EQ(whole, 0x04030201);
        EXPECT_EQ(part, 5) << "what there is, and zeros";
        EXPECT_TRUE(behind == 0 && !yes);
        EXPECT_EQ(stream.GetRecordPosition(), 17u);
        EXPECT_EQ(stream.GetRemaining(), 0u);
    });
}

TEST(BinInStreamTests, ReadsPastTheBuffersCapacityNothing) {
    const std::string file = RecordBytes(1, 1, "x");
    TMemoryBinInStream stream(file.data(), file.size(), 1);
    ASSERT_TRUE(Load(stream));
    double eight = 0;
    short two = 0;
    bool byte = true;
    ZoString text;
    while (stream.GetRecordPosition() < DEFAULT_BUFFER_SIZE - 8) stream >> eight;
    while (stream.GetRecordPosition() < DEFAULT_BUFFER_SIZE - 1) stream >> byte;
    const std::string corrupt = Told(CORRUPT_RECORD, "TBinInStream::operator>>");
    EXPECT_EQ(FailureOf([&] { stream >> eight; }), corrupt);
    EXPECT_EQ(FailureOf([&] { stream >> two; }), corrupt);
    EXPECT_EQ(stream.GetRecordPosition(), DEFAULT_BUFFER_SIZE - 1);
    EXPECT_EQ(FailureOf([&] { stream >> byte; }), "") << "the last byte";
    EXPECT_EQ(FailureOf([&] { stream >> byte; }), corrupt);
    EXPECT_EQ(FailureOf([&] { stream >> text; }), Told(CORRUPT_RECORD, "TBinInStream::operator>>(ZoString)"));
    EXPECT_EQ(stream.GetRecordPosition(), DEFAULT_BUFFER_SIZE);
}

TEST(BinInStreamTests, ChecksLengthsOfStringsAndBlobs) {
    const struct {
        const char* name;
        std::string payload;
        unsigned from; // bytes taken before
        bool good;
    } cases[] = {
        {"fits", "\3\0\0\0abc"s, 0, true},
        {"empty at the end", "\0\0\0\0"s, 0, true},
        {"one too long", "\4\0\0\0abc"s, 0, false},
        {"2^32 - 1", "\xFF\xFF\xFF\xFFxyz", 0, false},
        {"wraps to the beginning", "xxxx\xF8\xFF\xFF\xFF", 4, false},
        {"no length at all", "abc", 3, false},
        {"half a length, of zero", "abc\0\0"s, 3, false},
        {"position behind the end", "abc", 20, false},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        const auto check = [&](const char* type, auto before, auto same) {
            WithRecord(row.payload, [&](TBinInStream& stream) {
                for (bool skipped; stream.GetRecordPosition() < row.from;) stream >> skipped;
                auto value = before;
                const std::string location = std::string("TBinInStream::operator>>(") + type + ")";
                EXPECT_EQ(FailureOf([&] { stream >> value; }),
                          row.good ? "" : Told(CORRUPT_RECORD, location));
                EXPECT_TRUE(row.good || (stream.GetRecordPosition() == row.from + 4 && same(value)));
            });
        };
        char characters[] = "before";
        const auto text = [](const ZoString& value) { return value == "before"; };
        check("ZoString", ZoString("before"), text);
        check("char*", static_cast<char*>(characters), text);
        check("ZoBlob", ZoBlob("before", 6),
              [](const ZoBlob& value) { return value == ZoBlob("before", 6); });
    }
}

TEST(BinInStreamTests, CopiesHeaderAndRecord) {
    const std::string file = HeaderBytes(3, 2026, 2) + A + B;
    Source stream(file, 5);
    stream.Initialize();
    ASSERT_TRUE(Load(stream));
    short first = 0;
    stream >> first;
    Source copy = stream;
    Source assigned("");
    assigned = stream;
    for (Source* other : {&copy, &assigned}) {
        EXPECT_TRUE(*other == stream && !(*other != stream));
        EXPECT_EQ(other->GetRelease() + other->GetVersion() + other->GetNInstances(), 2026u + 3 + 2);
        EXPECT_EQ(other->GetCurrentUID(), 1);
        EXPECT_EQ(other->GetRecordPosition(), 2u);
        EXPECT_EQ(RecordOf(*other), "aaaa");
    }
    ASSERT_TRUE(Load(stream));
    EXPECT_FALSE(copy == stream);
    EXPECT_EQ(RecordOf(copy), "aaaa") << "a copy keeps its own";
}

// Objects

struct Thing : ZoStreamableBase {
    explicit Thing(const char* itsName = "class Thing") : name(itsName) {}
    ZoString StreamableClassName() const override { return name; }
    const char* name;
};

TEST(BinInStreamTests, ListsTheObjectsRead) {
    const struct {
        const char* name;
        std::vector<int> uids;
    } cases[] = {{"rising", {1, 2, 5, 9}}, {"in any order", {9, 2, 5, 1}}, {"negative", {-3, -1, 0, 7}}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        std::string file;
        for (int uid : row.uids) file += RecordBytes(uid, 1, "x");
        TMemoryBinInStream stream(file.data(), file.size(), 1);
        EXPECT_EQ(stream.FirstObject(), nullptr);
        Thing things[] = {Thing("class Other"), Thing("class ZoPrimitives::own::Thing"), Thing(),
                          Thing("class Other")};
        for (Thing& thing : things) {
            ASSERT_TRUE(Load(stream));
            stream.AddInstance(&thing);
        }
        EXPECT_EQ(stream.FirstObject(), &things[0]);
        for (const char* name : {"Thing", "own::Thing"}) EXPECT_EQ(stream.FindFirstObject(name), &things[1]);
        EXPECT_EQ(stream.FindFirstObject("Nothing"), nullptr);
        for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(stream.GetInstance(row.uids[i]), &things[i]);
        EXPECT_EQ(stream.GetInstance(4), nullptr);
        TDVector<ZoStreamableBase*> list;
        for (const int gone : {2, 1, 0}) list.Add(&things[gone]);
        stream.RemoveInstances(list);
        stream.FillObjects(&list);
        ASSERT_EQ(list.NItems(), 4u);
        EXPECT_EQ(list[4], &things[3]);
        EXPECT_EQ(stream.GetInstance(row.uids[1]), nullptr);
        EXPECT_EQ(stream.GetInstance(row.uids[3]), &things[3]);
        stream.ForgetInstances();
        EXPECT_EQ(stream.FirstObject(), nullptr);
        EXPECT_EQ(stream.GetInstance(row.uids[0]), nullptr);
    }
}

} // namespace
