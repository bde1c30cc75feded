#include "ZoPrimitives/BinOutStream.h"
#include "ZoPrimitives/MemoryBinInStream.h"
#include "ZoPrimitives/MemoryBinOutStream.h"
#include "ZoPrimitives/ZoBlob.h"
#include "ZoPrimitives/ZoString.h"
#include "support/Assertions.h"
#include "support/Records.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <random>
#include <vector>

using namespace ZoPrimitives;
using namespace std::string_literals;

namespace {

constexpr const char* ROOM =
    "size <= DEFAULT_BUFFER_SIZE - GetBufferSize() && \"[zoerror] the record is too big\"";
constexpr const char* SOURCE = "cpp/Persistence/BinOutStream";

std::string Written(TMemoryBinOutStream& stream) {
    const unsigned char* data = stream.GetData();
    return {reinterpret_cast<const char*>(data), static_cast<std::size_t>(stream.GetSize())};
}

/// A sink as an application may write it: on the virtual operations and the protected helpers alone.
class OwnSink : public TBinOutStream {
public:
    using TBinOutStream::TBinOutStream;
    std::string bytes;
    int headerFields = 0;

    using TBinOutStream::operator<<;
    TBinOutStream& operator<<(unsigned value) override {
        ++headerFields;
        return TBinOutStream::operator<<(value);
    }
    void FlushRecord(int uid, int classId) override {
        TBinOutStream::FlushRecord(uid, classId);
        const unsigned size = GetBufferSize();
        if (size == 0) return;
        std::string payload = Payload();
        const unsigned key = GetSecurityKey();
        bytes += LittleEndian(0xABCAABCA) + LittleEndian(size) + LittleEndian(GetCrc()) +
                 LittleEndian(static_cast<unsigned>(classId)) + LittleEndian(static_cast<unsigned>(uid)) +
                 LittleEndian(key);
        ApplySecurityKey(key, reinterpret_cast<unsigned char*>(payload.data()), size);
        bytes += payload;
        Records().Drop();
    }
    void FlushBuffer() override {
        bytes += Payload();
        Records().Drop();
    }
    void Initialize() override {
        SaveHeader();
        FlushBuffer();
    }
    std::string Payload() const {
        return {reinterpret_cast<const char*>(Records().Bytes()), static_cast<std::size_t>(GetBufferSize())};
    }
};

/// A sink that lets frames gather and takes them out in blocks, in the middle of an open record too.
class GatheringSink : public TBinOutStream {
public:
    using TBinOutStream::TBinOutStream;
    std::string bytes;

    void FlushRecord(int uid, int classId) override {
        Frame(uid, classId, true);
        if (Records().FramesSize() >= 256 * 1024) Take();
    }
    void FlushBuffer() override {
        Records().FrameRaw();
        Take();
    }
    void Initialize() override {
        SaveHeader();
        FlushBuffer();
    }
    void Take() {
        unsigned long long size = 0;
        const unsigned char* data = Records().Frames(size);
        bytes.append(reinterpret_cast<const char*>(data), static_cast<std::size_t>(size));
        Records().DropFrames();
    }
};

TEST(BinOutStreamTests, EncodesValues) {
    const struct {
        const char* name;
        std::function<void(TBinOutStream&)> write;
        std::string bytes;
    } cases[] = {
        {"bool", [](auto& s) { s << true << false; }, "\1\0"s},
        {"short", [](auto& s) { s << short{-2}; }, "\xFE\xFF"s},
        {"unsigned short", [](auto& s) { s << static_cast<unsigned short>(0x1234); }, "\x34\x12"s},
        {"int", [](auto& s) { s << -2; }, "\xFE\xFF\xFF\xFF"s},
        {"unsigned", [](auto& s) { s << 0x12345678u; }, "\x78\x56\x34\x12"s},
        {"float", [](auto& s) { s << -1.5f; }, "\0\0\xC0\xBF"s},
        {"double", [](auto& s) { s << 1.5; }, "\0\0\0\0\0\0\xF8\x3F"s},
        {"long double is a double", [](auto& s) { s << 0.1L; }, "\x9A\x99\x99\x99\x99\x99\xB9\x3F"s},
        {"long double beyond a double", [](auto& s) { s << std::numeric_limits<long double>::infinity(); },
         "\0\0\0\0\0\0\xF0\x7F"s},
        {"string", [](auto& s) { s << ZoString("a\xE7"); }, "\2\0\0\0a\xE7"s},
        {"string up to a zero byte", [](auto& s) { s << ZoString("a\0b", 3u); }, "\1\0\0\0a"s},
        {"empty string", [](auto& s) { s << ZoString(); }, "\0\0\0\0"s},
        {"characters", [](auto& s) { s << "ab"; }, "\2\0\0\0ab"s},
        {"no characters", [](auto& s) { s << static_cast<const char*>(nullptr); }, "\0\0\0\0"s},
        {"blob", [](auto& s) { s << ZoBlob("\0\xFF", 2); }, "\2\0\0\0\0\xFF"s},
        {"empty blob", [](auto& s) { s << ZoBlob(); }, "\0\0\0\0"s},
        {"nothing between values", [](auto& s) { s << true << 1 << "x" << short{2}; },
         "\1\1\0\0\0\1\0\0\0x\2\0"s},
    };
    for (const auto& row : cases) {
        OwnSink own;
        row.write(own);
        EXPECT_EQ(own.Payload(), row.bytes) << row.name;
        EXPECT_EQ(own.GetBufferSize(), row.bytes.size()) << row.name;
    }
}

TEST(BinOutStreamTests, HeaderHoldsVersionReleaseAndCount) {
    TMemoryBinOutStream stream(3, 2026);
    stream.Initialize();
    EXPECT_EQ(Written(stream), HeaderBytes(3, 2026, 0));
    stream.FlushRecord(1, 1); // without values: counted only
    stream << true;
    stream.FlushRecord(2, 1);
    stream << 7; // the open record is nobody's yet
    stream.RewriteHeader();
    stream.Append(std::string(DEFAULT_BUFFER_SIZE - 4, 'x').c_str(), DEFAULT_BUFFER_SIZE - 4);
    stream.RewriteHeader(); // where the open record is full
    EXPECT_EQ(stream.GetBufferSize(), DEFAULT_BUFFER_SIZE);
    EXPECT_EQ(stream.GetNInstances(), 2u);
    EXPECT_EQ(Written(stream), HeaderBytes(3, 2026, 2) + RecordBytes(2, 1, "\1"s));
    stream.FlushRecord(3, 1);
    EXPECT_EQ(Written(stream).substr(28),
              RecordBytes(2, 1, "\1"s) +
                  RecordBytes(3, 1, "\7\0\0\0"s + std::string(DEFAULT_BUFFER_SIZE - 4, 'x')));

    OwnSink own(3, 2026);
    own.Initialize();
    EXPECT_EQ(own.headerFields, 7) << "each field goes through the operation for it";
    EXPECT_EQ(own.bytes, HeaderBytes(3, 2026));
    OwnSink plain;
    plain.Initialize();
    EXPECT_EQ(plain.bytes, HeaderBytes(0, 0));
}

TEST(BinOutStreamTests, ScramblesWithThreeKeysAndSumsThePlainBytes) {
    const std::string plain = "\0\1\2\3\4\xFF"s;
    std::map<std::string, int> met;
    std::srand(1);
    for (int i = 0; i < 300; ++i) {
        TMemoryBinOutStream stream;
        stream.SetUsesSecurity(true);
        stream.Append(plain.data(), plain.size());
        stream.FlushRecord(1, 1);
        const std::string bytes = Written(stream);
        EXPECT_EQ(Word(bytes, 8), ZlibCrc(plain));
        ++met[bytes.substr(20)];
    }
    EXPECT_EQ(met.size(), 3u);
    for (const std::string& stored :
         {"\1\0\0\0\x0B\x0C\x0D\x08\x09\xF0"s, "\2\0\0\0\x16\x1B\x1C\x15\x1E\xE1"s,
          "\4\0\0\0\x2C\x35\x3E\x2F\x30\xC3"s})
        EXPECT_GT(met[stored], 60) << "key " << stored[0];
}

/// What a stream was told to write, and whether its bytes say the same. Keys are chance: they are taken from
/// the bytes.
class Script {
public:
    void Frame(const Record& record, bool scrambled) {
        if (!record.payload.empty()) parts.push_back({record, scrambled, false});
    }
    void Raw(const std::string& bytes) { parts.push_back({{0, 0, bytes}, false, true}); }
    void Clear() { parts.clear(); }

    ::testing::AssertionResult Check(const std::string& bytes) const {
        std::size_t at = 0;
        for (const Part& part : parts) {
            Record record = part.record;
            if (part.scrambled && at + 24 <= bytes.size()) record.key = Word(bytes, at + 20);
            const bool right = part.scrambled == (record.key == 1 || record.key == 2 || record.key == 4);
            const std::string expected = part.raw ? record.payload : record.Bytes();
            if (!right || bytes.compare(at, expected.size(), expected) != 0)
                return ::testing::AssertionFailure()
                       << "uid " << record.uid << " differs, key " << record.key;
            at += expected.size();
        }
        if (at == bytes.size()) return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure() << bytes.size() - at << " bytes too many";
    }

private:
    struct Part {
        Record record;
        bool scrambled;
        bool raw;
    };
    std::vector<Part> parts;
};

/// Sums are put in late and in batches: whatever is done between, they are right when the bytes are seen.
TEST(BinOutStreamTests, SumsAreRightWhateverTheInterleaving) {
    std::mt19937 random(20260714);
    const auto below = [&](unsigned n) { return static_cast<unsigned>(random() % n); };
    const unsigned sizes[] = {0,    1,    2,     23,    24,    25,    100,    1000,   4071,   4072,
                              4073, 8191, 12263, 12264, 12265, 65536, 131072, 262144, 307200, 7};
    for (int round = 0; round < 12; ++round) {
        std::srand(static_cast<unsigned>(round));
        auto memory = std::make_unique<TMemoryBinOutStream>();
        GatheringSink gathering;
        OwnSink own;
        TBinOutStream* sinks[] = {memory.get(), &gathering, &own};
        Script script;    // since the memory stream was last emptied
        Script allScript; // since the beginning
        int uid = 0;
        bool secure = false;
        for (int step = 0; step < 150; ++step) {
            const bool small = below(4) != 0;
            std::string payload(small ? below(200) : sizes[below(std::size(sizes))], '\0');
            for (std::size_t i = 0; i < payload.size(); i += 1 + payload.size() / 1000)
                payload[i] = static_cast<char>(random());
            const std::size_t cut = payload.empty() ? 0 : below(static_cast<unsigned>(payload.size()));
            for (TBinOutStream* sink : sinks) sink->Append(payload.data(), cut);
            if (below(10) == 0) gathering.Take();
            if (below(10) == 0) memory->GetData();
            if (below(20) == 0) {
                memory = std::make_unique<TMemoryBinOutStream>(*memory);
                sinks[0] = memory.get();
            }
            for (TBinOutStream* sink : sinks) sink->Append(payload.data() + cut, payload.size() - cut);
            if (below(6) == 0) {
                for (TBinOutStream* sink : sinks) sink->FlushBuffer();
                script.Raw(payload);
                allScript.Raw(payload);
            } else {
                ++uid;
                for (TBinOutStream* sink : sinks) sink->FlushRecord(uid, step);
                script.Frame({uid, step, payload}, secure);
                allScript.Frame({uid, step, payload}, secure);
            }
            if (below(10) == 0) {
                secure = !secure;
                for (TBinOutStream* sink : sinks) sink->SetUsesSecurity(secure);
            }
            if (below(25) == 0) {
                unsigned long long size = 0;
                unsigned char* block = memory->Detach(size);
                ASSERT_TRUE(script.Check(std::string(reinterpret_cast<char*>(block), size)))
                    << "round " << round << " step " << step;
                std::free(block);
                script.Clear();
            } else if (below(10) == 0) {
                ASSERT_TRUE(script.Check(Written(*memory))) << "round " << round << " step " << step;
            }
        }
        gathering.Take();
        EXPECT_TRUE(script.Check(Written(*memory))) << "round " << round;
        EXPECT_TRUE(allScript.Check(gathering.bytes)) << "round " << round;
        EXPECT_TRUE(allScript.Check(own.bytes)) << "round " << round;
    }
}

TEST(BinOutStreamTests, RefusesWhatARecordCannotHold) {
    const std::string most(DEFAULT_BUFFER_SIZE, 'x');
    const FailedAssertion noRoom{ROOM, SOURCE};
    const FailedAssertion tooBig{
        "blob.Size() <= UINT_MAX && blob.Size() <= DEFAULT_BUFFER_SIZE && \"[zoerror] the blob is too big\"",
        SOURCE, 211};
    volatile const std::size_t wrapping = static_cast<std::size_t>(-50); // the compiler would see through it
    const struct {
        const char* name;
        std::size_t before; // bytes in the record
        std::function<void(TBinOutStream&)> write;
        FailedAssertion failed; // none: it fits
    } cases[] = {
        {"a blob one byte above the limit", 0, [](auto& s) { s << ZoBlob(DEFAULT_BUFFER_SIZE + 1ull); },
         tooBig},
        {"a blob of the limit: its size leaves no room", 0, [](auto& s) { s << ZoBlob(DEFAULT_BUFFER_SIZE); },
         noRoom},
        {"a blob that fits with its size", 0, [](auto& s) { s << ZoBlob(DEFAULT_BUFFER_SIZE - 4ull); }, {}},
        {"a string one byte too long", 0,
         [&](auto& s) { s << ZoString(most.c_str(), DEFAULT_BUFFER_SIZE - 3); }, noRoom},
        {"no room for a size", DEFAULT_BUFFER_SIZE - 3, [](auto& s) { s << ""; }, noRoom},
        {"just that", DEFAULT_BUFFER_SIZE - 4, [](auto& s) { s << ""; }, {}},
        {"a double too many", DEFAULT_BUFFER_SIZE - 7, [](auto& s) { s << 1.0; }, noRoom},
        {"a last bool", DEFAULT_BUFFER_SIZE - 1, [](auto& s) { s << true; }, {}},
        {"a bool too many", DEFAULT_BUFFER_SIZE, [](auto& s) { s << true; }, noRoom},
        {"nothing more", DEFAULT_BUFFER_SIZE, [](auto& s) { s.Append("", 0); }, {}},
        {"a size that wraps", 100, [&](auto& s) { s.Append("", wrapping); }, noRoom},
        {"a block whose size wraps with its length", 100, [&](auto& s) { s.AppendBlock("", wrapping + 46); },
         noRoom},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        TMemoryBinOutStream memory;
        memory << "a record before";
        memory.FlushRecord(1, 1);
        const std::string before = Written(memory);
        GatheringSink gathering;
        gathering << std::string(300'000, 'y').c_str();
        gathering.FlushBuffer();
        const bool fits = row.failed == FailedAssertion();
        for (TBinOutStream* stream : std::initializer_list<TBinOutStream*>{&memory, &gathering}) {
            stream->Append(most.data(), row.before);
            FailedAssertion failed = AssertionOf([&] { row.write(*stream); });
            if (row.failed.line == 0) failed.line = 0; // any
            EXPECT_EQ(failed, row.failed);
            EXPECT_TRUE(fits || stream->GetBufferSize() == row.before);
        }
        if (fits) continue;
        memory.FlushRecord(2, 1);
        Script script;
        script.Raw(before);
        script.Frame({2, 1, most.substr(0, row.before)}, false);
        EXPECT_TRUE(script.Check(Written(memory))) << "the record is as it was";
    }
}

TEST(MemoryBinOutStreamTests, CopiesWhatWasWrittenAndTheOpenRecord) {
    TMemoryBinOutStream stream(3, 2026);
    stream.Initialize();
    stream.SetUsesSecurity(true);
    stream << std::string(100'000, 'x').c_str();
    stream.FlushRecord(1, 1);
    stream.SetUsesSecurity(false);
    stream << 1;
    stream.FlushRecord(2, 1); // its sum is not in yet
    stream << 2;
    const TMemoryBinOutStream original = stream;
    TMemoryBinOutStream copy(1, 1), longer(9, 9);
    longer << std::string(500'000, 'y').c_str();
    longer.FlushRecord(1, 1);
    for (TMemoryBinOutStream* target : {&copy, &longer}) {
        *target = original;
        EXPECT_TRUE(*target == original && !(*target != original));
        *target << 3;
        EXPECT_FALSE(*target == original);
        EXPECT_EQ(target->GetBufferSize(), 8u);
        target->FlushRecord(3, 1);
        target->RewriteHeader();
        const std::string bytes = Written(*target);
        EXPECT_EQ(bytes.substr(0, 28), HeaderBytes(3, 2026, 3));
        EXPECT_EQ(bytes.substr(28, 100'028), Written(stream).substr(28, 100'028));
        EXPECT_EQ(bytes.substr(100'056),
                  RecordBytes(2, 1, LittleEndian(1)) + RecordBytes(3, 1, LittleEndian(2) + LittleEndian(3)));
    }
    copy = *&copy;
    EXPECT_EQ(copy.GetSize(), longer.GetSize());
    EXPECT_EQ(stream.GetBufferSize(), 4u) << "the original goes on by itself";
    EXPECT_EQ(stream.GetNInstances(), 2u);
}

TEST(MemoryBinOutStreamTests, CopyOfASinkHoldsHeaderAndOpenRecordOnly) {
    GatheringSink stream(3, 2026), copy;
    stream << 1;
    stream.FlushRecord(1, 1);
    stream << 2;
    copy << "its own";
    copy = stream;
    EXPECT_TRUE(copy == stream);
    copy.FlushRecord(2, 1);
    copy.Take();
    EXPECT_EQ(copy.bytes, RecordBytes(2, 1, LittleEndian(2)));
}

TEST(MemoryBinOutStreamTests, HeaderIsRewrittenOnlyWhereThereIsOne) {
    TMemoryBinOutStream never;
    never << 1;
    never.RewriteHeader();
    EXPECT_EQ(never.GetBufferSize(), 4u);
    never.FlushRecord(1, 1);
    EXPECT_EQ(Written(never), RecordBytes(1, 1, LittleEndian(1)));

    TMemoryBinOutStream detached(3, 2026);
    detached.Initialize();
    unsigned long long size = 0;
    unsigned char* block = detached.Detach(size);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(block), size), HeaderBytes(3, 2026));
    std::free(block);
    detached << 1;
    detached.FlushRecord(1, 1);
    detached.RewriteHeader();
    EXPECT_EQ(Written(detached), RecordBytes(1, 1, LittleEndian(1)));

    TMemoryBinOutStream placed(3, 2026);
    placed << true; // no header at all
    placed.Initialize();
    placed.RewriteHeader();
    EXPECT_EQ(Written(placed), "\1");
    placed.SaveHeader();
    placed.Initialize();
    EXPECT_EQ(Written(placed), HeaderBytes(3, 2026)) << "one that was there before";
}

TEST(MemoryBinOutStreamTests, WritesIntoTheCallersBlock) {
    TMemoryBinOutStream stream;
    stream << 5;
    stream.FlushRecord(1, 1);
    std::string block(29, '#');
    EXPECT_EQ(stream.WriteInMemory(block.data(), block.size()), 28u);
    EXPECT_EQ(block, RecordBytes(1, 1, LittleEndian(5)) + "#");
    std::string small(27, '#');
    EXPECT_EQ(FailureOf([&] { stream.WriteInMemory(small.data(), small.size()); }),
              "full @ TMemoryBinOutStream::WriteInMemory");
    EXPECT_EQ(small, std::string(27, '#'));
    stream << "left open";
    stream.FreeResourses();
    EXPECT_EQ(stream.GetBufferSize(), 0u);
    EXPECT_EQ(stream.WriteInMemory(nullptr, 0), 0u);
}

} // namespace
