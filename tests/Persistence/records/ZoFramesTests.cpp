#include "ZoPrimitives/ZoFrames.h"
#include "support/FaultyServices.h"
#include "support/Records.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <ostream>
#include <vector>

using namespace ZoPrimitives;

namespace {

/// What a frame reader tells of a frame.
struct Told {
    int uid;
    TZoFrameState state;
    unsigned long long gap;
    std::string payload; ///< as far as it is whole

    bool operator==(const Told&) const = default;
    friend std::ostream& operator<<(std::ostream& out, const Told& told) {
        return out << told.uid << " state " << static_cast<int>(told.state) << " gap " << told.gap << " '"
                   << told.payload << '\'';
    }
};

struct Pass {
    std::vector<Told> frames;
    unsigned long long rest; // bytes behind them
    TZoDigestState digest;
};

Pass Read(TZoBytes& bytes, bool headsOnly = false) {
    TZoFrameReader reader(bytes);
    reader.SetHeadsOnly(headsOnly);
    Pass pass{};
    TZoFrame frame;
    unsigned long long end = reader.GetFirstOffset();
    while (reader.Next(frame)) {
        EXPECT_EQ(frame.offset, end + frame.gap);
        EXPECT_EQ(frame.number, pass.frames.size() + 1);
        end = frame.offset + frame.length;
        const auto* payload = reinterpret_cast<const char*>(reader.GetPayload());
        pass.frames.push_back({frame.uid, frame.state, frame.gap,
                               payload == nullptr ? "" : std::string(payload, reader.GetPayloadSize())});
    }
    EXPECT_EQ(frame.offset, bytes.GetSize());
    EXPECT_EQ(frame.offset, end + frame.gap);
    pass.rest = frame.gap;
    pass.digest = reader.GetDigestState();
    return pass;
}

/// From memory, and the same from a file.
Pass ReadBoth(const std::string& file) {
    const Testing::TemporaryFolder folder;
    folder.Write("frames", file);
    TZoFileBytes onDisk(folder.Path("frames"));
    TZoMemoryBytes inMemory(file.data(), file.size());
    Pass pass = Read(inMemory);
    EXPECT_EQ(Read(onDisk).frames, pass.frames);
    return pass;
}

const std::string HEADER = HeaderBytes(3, 2026);
std::string Frame(int uid, const std::string& payload) { return RecordBytes(uid, 7, payload); }

const std::string FIRST = Frame(1, "first"), SECOND = Frame(2, "second"), THIRD = Frame(3, "third!");
const std::string INNER = HEADER + Frame(8, "inner") + Frame(9, "inner too"); // a file in a payload

std::string Changed(std::string bytes, std::size_t at, int by = 1) {
    bytes[at] = static_cast<char>(bytes[at] + by);
    return bytes;
}
std::string Keyed(int uid, const std::string& payload) { return Record{uid, 7, payload, 2}.Bytes(); }

using enum TZoFrameState;

struct Damage {
    const char* name;
    std::string file;
    std::vector<Told> frames;
    unsigned long long rest = 0;
    unsigned long long first = 28; // offset of the first frame, if there is none of damage
};

const Told ONE{1, Whole, 0, "first"}, TWO{2, Whole, 0, "second"}, THREE{3, Whole, 0, "third!"};

// Frames have 29, 30 and 30 bytes.
const Damage DAMAGES[] = {
    {"nothing", HEADER + FIRST + SECOND + THIRD, {ONE, TWO, THREE}},
    {"no frames", HEADER, {}},
    {"an empty payload", HEADER + Frame(1, "") + SECOND, {{1, Whole, 0, ""}, TWO}},
    {"scrambled", HEADER + Keyed(1, "first") + SECOND, {ONE, TWO}},
    {"the other marker", HEADER + Record{1, 7, "first", 0, 0xABCDABCD}.Bytes() + SECOND, {ONE, TWO}},
    {"a stray byte", HEADER + FIRST + "x" + SECOND, {ONE, {2, Whole, 1, "second"}}},
    {"many, with halves of markers",
     HEADER + FIRST + std::string(300'000, '\xCA') + "\xAB" + SECOND + THIRD,
     {ONE, {2, Whole, 300'001, "second"}, THREE}},
    {"at the end", HEADER + FIRST + "garbage", {ONE}, 7},
    {"a payload", HEADER + FIRST + Changed(SECOND, 26) + THIRD, {ONE, {2, WrongCrc, 0, ""}, THREE}},
    {"a checksum at the end", HEADER + FIRST + Changed(SECOND, 8), {ONE, {2, WrongCrc, 0, ""}}},
    {"a payload, and what follows",
     HEADER + Changed(FIRST, 26) + "x" + SECOND,
     {{1, WrongCrc, 0, ""}, {2, Whole, 1, "second"}}},
    {"a marker", HEADER + FIRST + Changed(SECOND, 1) + THIRD, {ONE, {2, WrongMarker, 0, "second"}, THREE}},
    {"a marker and a payload",
     HEADER + FIRST + Changed(Changed(SECOND, 1), 25) + THIRD,
     {ONE, {3, Whole, 30, "third!"}}},
    {"a size, too large",
     HEADER + FIRST + Changed(SECOND, 4) + THIRD,
     {ONE, {2, WrongSize, 0, "second"}, THREE}},
    {"a size, too small",
     HEADER + FIRST + Changed(SECOND, 4, -2) + THIRD,
     {ONE, {2, WrongSize, 0, "second"}, THREE}},
    {"a size, beyond the end",
     HEADER + FIRST + Changed(SECOND, 6) + THIRD,
     {ONE, {2, WrongSize, 0, "second"}, THREE}},
    {"a size, beyond the limit, of a scrambled one",
     HEADER + FIRST + Changed(Keyed(2, "second"), 7) + THIRD,
     {ONE, {2, WrongSize, 0, "second"}, THREE}},
    {"a size that ends behind another",
     HEADER + FIRST + Changed(SECOND, 4, 30) + THIRD,
     {ONE, {2, WrongSize, 0, "second"}, THREE}},
    {"the last size", HEADER + FIRST + Changed(SECOND, 4, 9), {ONE, {2, WrongSize, 0, "second"}}},
    {"a size and its payload",
     HEADER + FIRST + Changed(Changed(SECOND, 4), 25) + THIRD,
     {ONE, {2, WrongSize, 0, ""}, THREE}},
    {"the end of a payload is missing", HEADER + FIRST + SECOND.substr(0, 28), {ONE, {2, Torn, 0, ""}}},
    {"all but a part of a head is missing", HEADER + FIRST + SECOND.substr(0, 17), {ONE, {2, Torn, 0, ""}}},
    {"all but two bytes are missing", HEADER + FIRST + SECOND.substr(0, 2), {ONE}, 2},
    {"others follow a torn one",
     HEADER + FIRST + SECOND.substr(0, 26) + THIRD,
     {ONE, {2, WrongSize, 0, ""}, THREE}},
    {"others follow a part of a head",
     HEADER + FIRST.substr(0, 7) + SECOND + THIRD,
     {{129376017, WrongSize, 0, ""}, TWO, THREE}},
    {"a file in a payload", HEADER + Frame(1, INNER) + THIRD, {{1, Whole, 0, INNER}, THREE}},
    {"a damaged payload with a file in it",
     HEADER + Changed(Frame(1, INNER), 24) + THIRD,
     {{1, WrongCrc, 0, ""}, THREE}},
    {"a wrong size of a payload with a file in it",
     HEADER + Changed(Frame(1, INNER), 4) + THIRD,
     {{1, WrongSize, 0, INNER}, THREE}},
    {"a wrong marker before a payload with a file in it",
     HEADER + Changed(Frame(1, INNER), 0) + THIRD,
     {{1, WrongMarker, 0, INNER}, THREE}},
    {"the header is not there", FIRST + SECOND, {ONE, TWO}, 0, 0},
    {"a version", Changed(HEADER, 2) + FIRST + SECOND, {ONE, TWO}},
    {"the length of the extra block", Changed(HEADER, 24) + FIRST + SECOND, {ONE, TWO}},
    {"the length of the extra block, much",
     Changed(HEADER, 26) + FIRST + SECOND,
     {{1, Whole, 28, "first"}, TWO},
     0,
     0},
    {"an extra block", HeaderBytes(3, 2026, 0, 5) + "extra" + FIRST, {ONE}, 0, 33},
    {"a part of a header", HEADER.substr(0, 20), {}, 20, 0},
    {"nothing at all", "", {}, 0, 0},
};

TEST(ZoFramesTests, FindsEveryFrameBehindAnyDamage) {
    for (const Damage& damage : DAMAGES) {
        SCOPED_TRACE(damage.name);
        const Pass pass = ReadBoth(damage.file);
        EXPECT_EQ(pass.frames, damage.frames);
        EXPECT_EQ(pass.rest, damage.rest);
        TZoMemoryBytes bytes(damage.file.data(), damage.file.size());
        EXPECT_EQ(TZoFrameReader(bytes).GetFirstOffset(), damage.first);
    }
}

TEST(ZoFramesTests, WithHeadsOnlyLooksAtPayloadsWhereSomethingIsDamaged) {
    for (const Damage& damage : DAMAGES) {
        SCOPED_TRACE(damage.name);
        TZoMemoryBytes bytes(damage.file.data(), damage.file.size());
        Pass pass = Read(bytes, true);
        if (std::string(damage.name) == "a size that ends behind another") continue; // heads do not tell
        ASSERT_EQ(pass.frames.size(), damage.frames.size());
        for (std::size_t i = 0; i < pass.frames.size(); ++i) {
            const Told &told = pass.frames[i], &expected = damage.frames[i];
            EXPECT_EQ(told.uid, expected.uid);
            if (told.state == Whole) continue; // what follows is where it should be
            EXPECT_EQ(told, expected);
        }
    }
    TZoMemoryBytes bytes(DAMAGES[0].file.data(), DAMAGES[0].file.size());
    EXPECT_EQ(Read(bytes, true).frames[1], (Told{2, Whole, 0, ""}));
}

TEST(ZoFramesTests, ReadsOneFrameAnywhere) {
    const std::string file =
        HEADER + FIRST + "x" + Keyed(2, "second") + Changed(THIRD, 25) + THIRD.substr(0, 27);
    TZoMemoryBytes bytes(file.data(), file.size());
    TZoFrameReader reader(bytes);
    TZoFrame frame;
    struct {
        unsigned long long offset;
        bool found;
        TZoFrameState state;
        std::string payload;
    } rows[] = {{28, true, Whole, "first"}, {57, false, {}, ""},   {58, true, Whole, "second"},
                {88, true, WrongCrc, ""},   {118, true, Torn, ""}, {9999, false, {}, ""}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.offset);
        ASSERT_EQ(reader.ReadAt(row.offset, frame), row.found);
        if (!row.found) continue;
        EXPECT_EQ(frame.offset, row.offset);
        EXPECT_EQ(frame.state, row.state);
        const auto* payload = reinterpret_cast<const char*>(reader.GetPayload());
        EXPECT_EQ(payload == nullptr ? "" : std::string(payload, reader.GetPayloadSize()), row.payload);
    }
    ASSERT_TRUE(reader.Next(frame)) << "the pass has not moved";
    EXPECT_EQ(frame.uid, 1);
}

TEST(ZoFramesTests, ChecksTheDigest) {
    const auto withDigest = [](const std::string& records, unsigned layout = 1) {
        std::string file = HeaderBytes(3, 2026, 2, 12) + "ZoDg" + LittleEndian(layout);
        std::string heads;
        for (const std::string& record : {FIRST, SECOND}) heads += record.substr(0, 24);
        return file + LittleEndian(ZlibCrc(heads + file)) + records;
    };
    const std::string sound = withDigest(FIRST + SECOND);
    struct {
        const char* name;
        std::string file;
        TZoDigestState state;
    } rows[] = {{"right", sound, TZoDigestState::Right},
                {"a class", Changed(sound, 52), TZoDigestState::Wrong},
                {"the header", Changed(sound, 4), TZoDigestState::Wrong},
                {"the digest", Changed(sound, 36), TZoDigestState::Wrong},
                {"a payload", Changed(sound, 66), TZoDigestState::Wrong},
                {"a stray byte", withDigest(FIRST + "x" + SECOND), TZoDigestState::Right},
                {"one at the end", sound + "x", TZoDigestState::Right},
                {"another order", withDigest(SECOND + FIRST), TZoDigestState::Wrong},
                {"one is missing", withDigest(FIRST), TZoDigestState::Wrong},
                {"none", withDigest(FIRST, 0), TZoDigestState::None},
                {"of a later layout", withDigest(FIRST, 2), TZoDigestState::Unknown},
                {"another block", Changed(sound, 28), TZoDigestState::None}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        TZoMemoryBytes bytes(row.file.data(), row.file.size());
        EXPECT_EQ(Read(bytes).digest, row.state);
    }
    TZoMemoryBytes bytes(sound.data(), sound.size());
    EXPECT_EQ(TZoFrameReader(bytes).GetDigestState(), TZoDigestState::Open);
}

/// Bytes that are not in memory, as far as the reader knows, and count what is read of them.
struct CountedBytes : TZoBytes {
    explicit CountedBytes(std::string all) : file(std::move(all)) {}
    unsigned long long GetSize() const override { return file.size(); }
    unsigned Read(unsigned long long offset, void* data, unsigned size) override {
        const std::size_t copied = file.copy(static_cast<char*>(data), size, offset);
        count += copied;
        return static_cast<unsigned>(copied);
    }
    std::string file;
    unsigned long long count = 0;
};

TEST(ZoFramesTests, HostileSizesCostNoMoreThanASmallMultiple) {
    const auto heads = [](unsigned size, unsigned count) { // frames that overlap
        std::string file = HEADER;
        for (unsigned i = 0; i < count; ++i)
            file += LittleEndian(0xABCAABCA) + LittleEndian(size) + std::string(16, 1);
        return file;
    };
    for (const unsigned size : {1U, 9U << 20, 10U << 20, 11U << 20}) {
        CountedBytes bytes(heads(size, 200'000)); // 5 MB
        Read(bytes);
        EXPECT_LT(bytes.count, 16 * bytes.file.size() + (64U << 20)) << size;
    }
}

TEST(ZoFramesTests, PassesOverPayloadsThatAreNotAskedFor) {
    std::string file = HEADER;
    for (int uid = 1; uid <= 4; ++uid) file += Frame(uid, std::string(2'000'000, 'x'));
    CountedBytes bytes(file);
    EXPECT_EQ(Read(bytes, true).frames.size(), 4U);
    EXPECT_LT(bytes.count, 500'000U);
}

} // namespace
