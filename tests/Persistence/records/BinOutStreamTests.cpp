#include "support/Memory.h"
#include "support/Streaming.h"

#include <cstdlib>
#include <memory>
#include <random>

using namespace ZoPrimitives;
using namespace std::string_literals;

namespace {

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

TEST(BinOutStreamTests, HeaderHoldsVersionReleaseAndCount) {
    TMemoryBinOutStream stream(3, 2026);
    stream.Initialize();
    stream.RewriteHeader();
    EXPECT_EQ(BytesOf(stream), HeaderBytes(3, 2026, 0));
    stream.FlushRecord(1, 1); // without values: counted only
    stream << true;
    stream.FlushRecord(2, 1);
    stream << 7; // the open record is nobody's yet
    stream.RewriteHeader();
    stream.Append(std::string(DEFAULT_BUFFER_SIZE - 4, 'x').c_str(), DEFAULT_BUFFER_SIZE - 4);
    stream.RewriteHeader(); // where the open record is full
    EXPECT_EQ(stream.GetBufferSize(), DEFAULT_BUFFER_SIZE);
    EXPECT_EQ(stream.GetNInstances(), 2u);
    EXPECT_EQ(BytesOf(stream), HeaderBytes(3, 2026, 2) + RecordBytes(2, 1, "\1"s));
    stream.FlushRecord(3, 1);
    EXPECT_EQ(BytesOf(stream).substr(28),
              RecordBytes(2, 1, "\1"s) +
                  RecordBytes(3, 1, "\7\0\0\0"s + std::string(DEFAULT_BUFFER_SIZE - 4, 'x')));

    OwnSink own(3, 2026);
    own.Initialize();
    EXPECT_EQ(own.headerFields, 7) << "each field goes through the operation for it";
    EXPECT_EQ(own.bytes, HeaderBytes(3, 2026));
    EXPECT_FALSE(own.PutsDirectly());
    EXPECT_TRUE(OwnSink() == OwnSink(0, 0));
}

/// Sums are put in late and in batches: whatever is done between, they are right when the bytes are seen.
TEST(BinOutStreamTests, SumsAreRightWhateverTheInterleaving) {
    std::mt19937 random(20260714);
    const auto below = [&](unsigned n) { return static_cast<unsigned>(random() % n); };
    const unsigned sizes[] = {0,    1,    2,     23,    24,    25,    100,    1000,   4071,   4072,
                              4073, 8191, 12263, 12264, 12265, 65536, 131072, 262144, 307200, 7};
    for (int round = 0; round < 12; ++round) {
        auto memory = std::make_unique<TMemoryBinOutStream>();
        GatheringSink gathering;
        OwnSink own;
        TBinOutStream* sinks[] = {memory.get(), &gathering, &own};
        std::string expected;  // since the memory stream was last emptied
        std::string allBefore; // and before that
        bool secure = false;
        for (int step = 1; step <= 150; ++step) {
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
            const bool raw = below(6) == 0;
            for (TBinOutStream* sink : sinks) {
                sink->Append(payload.data() + cut, payload.size() - cut);
                std::srand(static_cast<unsigned>(step)); // the keys are the same then
                raw ? sink->FlushBuffer() : sink->FlushRecord(step, round);
            }
            std::srand(static_cast<unsigned>(step));
            const unsigned key = secure ? 1u << std::rand() % 3 : 0;
            if (raw)
                expected += payload;
            else if (!payload.empty())
                expected += Record{step, round, payload, key}.Bytes();
            if (below(10) == 0) {
                secure = !secure;
                for (TBinOutStream* sink : sinks) sink->SetUsesSecurity(secure);
            }
            if (below(25) == 0) {
                unsigned long long size = 0;
                unsigned char* block = memory->Detach(size);
                ASSERT_TRUE(std::string(reinterpret_cast<char*>(block), size) == expected)
                    << "round " << round << " step " << step;
                std::free(block);
                allBefore += std::exchange(expected, "");
            } else if (below(10) == 0) {
                ASSERT_TRUE(BytesOf(*memory) == expected) << "round " << round << " step " << step;
            }
        }
        gathering.Take();
        EXPECT_TRUE(BytesOf(*memory) == expected) << "round " << round;
        EXPECT_TRUE(gathering.bytes == allBefore + expected) << "round " << round;
        EXPECT_TRUE(own.bytes == allBefore + expected) << "round " << round;
    }
}

TEST(BinOutStreamTests, RefusesWhatARecordCannotHold) {
    const std::string most(DEFAULT_BUFFER_SIZE, 'x');
    const char* const source = "cpp/Persistence/BinOutStream";
    const FailedAssertion noRoom{
        "size <= DEFAULT_BUFFER_SIZE - GetBufferSize() && \"[zoerror] the record is too big\"", source};
    const FailedAssertion tooBig{
        "blob.Size() <= UINT_MAX && blob.Size() <= DEFAULT_BUFFER_SIZE && \"[zoerror] the blob is too big\"",
        source, 211};
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
        const std::string before = BytesOf(memory);
        GatheringSink gathering;
        gathering << std::string(300'000, 'y').c_str();
        gathering.FlushBuffer();
        const bool fits = row.failed == FailedAssertion();
        for (TBinOutStream* stream : std::initializer_list<TBinOutStream*>{&memory, &gathering}) {
            stream->Append(most.data(), row.before);
            FailedAssertion failed = AssertionOf([&] { row.write(*stream); });
            if (row.failed.line == 0) failed.line = 0; // any
            EXPECT_EQ(failed, row.failed);
            EXPECT_EQ(stream->GetBufferSize(), fits ? DEFAULT_BUFFER_SIZE : row.before);
            failed = AssertionOf([&] { stream->Append("123456", fits ? 1 : 0); });
            EXPECT_EQ(failed.expression, fits ? noRoom.expression : "");
        }
        if (fits) continue;
        memory.FlushRecord(2, 1);
        const std::string record = row.before == 0 ? "" : RecordBytes(2, 1, most.substr(0, row.before));
        EXPECT_TRUE(BytesOf(memory) == before + record) << "the record is as it was";
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
        const std::string bytes = BytesOf(*target);
        EXPECT_EQ(bytes.substr(0, 28), HeaderBytes(3, 2026, 3));
        EXPECT_EQ(bytes.substr(28, 100'028), BytesOf(stream).substr(28, 100'028));
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
    TMemoryBinOutStream memory;
    memory << true;
    memory.FlushRecord(3, 1);
    for (TBinOutStream* target : std::initializer_list<TBinOutStream*>{&copy, &memory}) {
        *target = stream;
        EXPECT_TRUE(*target == stream);
        target->FlushRecord(2, 1);
    }
    copy.Take();
    EXPECT_EQ(copy.bytes, RecordBytes(2, 1, LittleEndian(2)));
    EXPECT_EQ(BytesOf(memory), RecordBytes(3, 1, "\1") + copy.bytes);
    EXPECT_FALSE(GatheringSink(1, 1) == GatheringSink(1, 2) || GatheringSink(1, 1) == GatheringSink(2, 1));
    copy << 1;
    memory << 2;
    EXPECT_FALSE(copy == memory) << "of one size";
}

TEST(MemoryBinOutStreamTests, WritesIntoTheCallersBlock) {
    TMemoryBinOutStream stream;
    stream << 5;
    stream.FlushRecord(1, 1);
    std::string block(29, '#');
    EXPECT_EQ(stream.WriteInMemory(block.data(), block.size()), 28u);
    EXPECT_EQ(block, RecordBytes(1, 1, LittleEndian(5)) + "#");
    EXPECT_EQ(FailureOf([&] { stream.WriteInMemory(block.data(), 27); }),
              "full @ TMemoryBinOutStream::WriteInMemory");
    stream << ZoString('x', 1'000'000);
    const long long before = Memory::InUse();
    stream.FreeResourses();
    EXPECT_TRUE(!Memory::Watched() || Memory::InUse() < before - 900'000);
    EXPECT_EQ(stream.GetBufferSize(), 0u);
    EXPECT_EQ(stream.WriteInMemory(nullptr, 0), 0u);
}

} // namespace
