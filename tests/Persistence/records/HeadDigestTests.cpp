#include "ZoPrimitives/ZoPrimitives.h"
#include "support/FakeClipboard.h"
#include "support/Streaming.h"
#include "support/TemporaryFolder.h"

#include <functional>

using namespace ZoPrimitives;
using namespace ZoPrimitives::Testing;

namespace {

constexpr std::size_t BLOCK = 28, FIRST = BLOCK + 12; // the extra block, the first record

/// The digest of a sound file, calculated as docs/file-format.md says.
std::string DigestOf(const std::string& file) {
    std::string covered;
    for (std::size_t at = FIRST; at < file.size(); at += 24 + Word(file, at + 4))
        covered += file.substr(at, 24);
    return LittleEndian(ZlibCrc(covered + file.substr(0, BLOCK + 8)));
}

void Put(TBinOutStream& out, int uid, const std::string& payload) {
    out.Append(payload.data(), payload.size());
    out.FlushRecord(uid, 7);
}

/// Some records, of which each but the first has a neighbour of its size, and an empty one.
void PutRecords(TBinOutStream& out, int count = 5) {
    for (int uid = 0; uid < count; ++uid)
        Put(out, uid, std::string(uid == 0 ? 9 : 3, static_cast<char>('a' + uid)));
    out.FlushRecord(99, 7);
}

std::string Digested(int count = 5) {
    TMemoryBinOutStream out(3, 2026);
    out.SetWritesDigest(true);
    out.Initialize();
    PutRecords(out, count);
    out.RewriteHeader();
    return BytesOf(out);
}

/// Its records, but none is used in place.
class IndirectStream : public TMemoryBinInStream {
public:
    using TMemoryBinInStream::TMemoryBinInStream;
    bool GetsDirectly() const override { return false; }
};

/// How reading to the end ends.
template <class Stream = TMemoryBinInStream>
std::string EndOf(const std::string& file, bool checks = true, bool filters = false) {
    Stream in(file.data(), file.size(), 9999);
    in.SetChecksDigest(checks);
    return FailureOf([&] {
        in.Initialize();
        const int asked[] = {6, 7};
        int uid = 0, classId = 0;
        while (filters ? in.LoadFilteredRecord(nullptr, asked, &classId, &uid, 1)
                       : in.LoadRecord(&uid, &classId))
            continue;
    });
}

TEST(HeadDigestTests, IsTheSameInFilesMemoryAndTheClipboard) {
    FakeClipboard clipboard;
    const InstalledServices installed(clipboard);
    const TemporaryFolder folder;
    for (const int count : {0, 5, 127, 128, 40'000}) {
        SCOPED_TRACE(count);
        const std::string memory = Digested(count);
        ASSERT_EQ(memory.substr(BLOCK, 8), std::string("ZoDg\1\0\0\0", 8));
        EXPECT_EQ(memory.substr(BLOCK + 8, 4), DigestOf(memory));
        for (const bool backup : {false, true}) {
            const pointer<TFileBinOutStream> file(
                TFileBinOutStream::Create(folder.Path("plan.zo").c_str(), 3, 2026, backup));
            file->SetWritesDigest(true);
            file->Initialize();
            PutRecords(*file, count);
            file->Finalize();
            EXPECT_TRUE(folder.Read("plan.zo") == memory);
        }
        TClipboardBinOutStream board(3, 2026);
        board.SetWritesDigest(true);
        board.Initialize();
        PutRecords(board, count);
        board.Finalize();
        EXPECT_TRUE(*clipboard.block == memory);
    }
    TMemoryBinOutStream scrambled(3, 2026);
    scrambled.SetUsesSecurity(true);
    scrambled.SetWritesDigest(true);
    scrambled.Initialize();
    PutRecords(scrambled);
    TMemoryBinOutStream copy(scrambled);
    for (TMemoryBinOutStream* out : {&scrambled, &copy}) {
        Put(*out, 5, "later");
        out->RewriteHeader();
        const std::string bytes = BytesOf(*out);
        EXPECT_EQ(bytes.substr(BLOCK + 8, 4), DigestOf(bytes));
        EXPECT_EQ(EndOf(bytes), "");
    }
}

TEST(HeadDigestTests, FindsWhatTheSumsOfRecordsMiss) {
    const std::string good = Digested();
    constexpr std::size_t SECOND = FIRST + 24 + 9, STEP = 24 + 3; // two records of one size and more
    const auto byte = [&](std::size_t at, int change) {
        std::string bytes = good;
        bytes[at] = static_cast<char>(bytes[at] ^ change);
        return bytes;
    };
    const auto place = [&](std::size_t from, std::size_t count, const std::string& with) {
        return std::string(good).replace(from, count, with);
    };
    const std::string second = good.substr(SECOND, STEP), third = good.substr(SECOND + STEP, STEP);
    const std::string wrong = "Arquivo corrompido @ TBinInStream::CheckDigest";
    // The last: the sums of records, or the search for them, tell too.
    const std::tuple<const char*, std::string, std::string, bool> rows[] = {
        {"good", good, "", false},
        {"class", byte(SECOND + 12, 1), wrong, false},
        {"uid", byte(SECOND + 16, 1), wrong, false},
        {"key that means the same", byte(SECOND + 20, 8), wrong, false},
        {"the other marker", byte(SECOND, 0xCA ^ 0xCD), wrong, true},
        {"twice", place(SECOND, 0, second), wrong, false},
        {"swapped", place(SECOND, 2 * STEP, third + second), wrong, false},
        {"cut away", place(SECOND, STEP, ""), wrong, false},
        {"cut away at the end", good.substr(0, good.size() - STEP), wrong, false},
        {"all cut away", good.substr(0, FIRST), wrong, false},
        {"payload", byte(good.size() - 1, 1), wrong, true},
        {"strays", place(SECOND, 0, "stray"), wrong, true},
        {"strays at the end", good + "xy", wrong, false},
        {"version", byte(0, 1), wrong, false},
        {"record count", byte(12, 1), wrong, false},
        {"release", byte(16, 1), wrong, false},
        {"reserved field", byte(20, 1), wrong, false},
        {"digest", byte(BLOCK + 8, 1), wrong, false},
        {"block of another kind", byte(BLOCK, 1), "", false},
        {"layout of a later version", byte(BLOCK + 4, 2), "", false},
    };
    for (const auto& [name, bytes, said, foundBefore] : rows) {
        SCOPED_TRACE(name);
        EXPECT_EQ(EndOf(bytes), said);
        EXPECT_EQ(EndOf<IndirectStream>(bytes), said);
        if (!foundBefore) {
            EXPECT_EQ(EndOf(bytes, true, true), said) << "none of a class";
            EXPECT_EQ(EndOf<IndirectStream>(bytes, true, true), said);
        }
        EXPECT_EQ(EndOf(bytes, false), "") << "unless asked";
    }
}

TEST(HeadDigestTests, IsLeftOutWhereItCannotBeTold) {
    const TemporaryFolder folder;
    const std::string none("ZoDg\0\0\0\0\0\0\0\0", 12);
    const std::tuple<const char*, void (*)(TFileBinOutStream&), std::string> rows[] = {
        {"raw bytes",
         [](TFileBinOutStream& out) {
             out.Initialize();
             out.Append("stray", 5);
             out.FlushBuffer();
         },
         none},
        {"written again from the beginning",
         [](TFileBinOutStream& out) {
             out.Initialize();
             out.Reset();
             out.SaveHeader();
             out.FlushBuffer();
         },
         none},
        {"header of the caller's", [](TFileBinOutStream& out) { out.SaveHeader(), out.Initialize(); }, ""},
    };
    for (const auto& [name, write, block] : rows) {
        SCOPED_TRACE(name);
        const pointer<TFileBinOutStream> out(
            TFileBinOutStream::Create(folder.Path("plan.zo").c_str(), 3, 2026, false));
        out->SetWritesDigest(true);
        write(*out);
        Put(*out, 1, "a");
        out->Finalize();
        const std::string bytes = folder.Read("plan.zo");
        EXPECT_EQ(Word(bytes, 24), block.size());
        EXPECT_EQ(bytes.substr(BLOCK, block.size()), block);
        EXPECT_EQ(EndOf(bytes), "");
    }
}

} // namespace
