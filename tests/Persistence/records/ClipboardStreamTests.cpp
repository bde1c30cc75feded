#include "ZoPrimitives/ClipboardBinInStream.h"
#include "ZoPrimitives/ClipboardBinOutStream.h"

#include "support/FakeClipboard.h"
#include "support/PrivateClipboard.h"
#include "support/Streaming.h"

using namespace ZoPrimitives;
using namespace ZoPrimitives::Testing;

namespace {

const std::string FINALIZE = " @ TClipboardBinOutStream::Finalize";
const std::string TAKE = " @ TClipboardBinInStream::GetDataFromClipboard";
const std::string HEADER = " @ TClipboardBinInStream::TClipboardBinInStream";
const std::string RECORD = " @ TBinInStream::LoadRecord #";

/// What a stream over the clipboard reads: the uids, then the failure that it ends with.
std::string Pasted(unsigned supportedVersion = 9999) {
    std::string all;
    const std::string failure = FailureOf([&] {
        TClipboardBinInStream in(supportedVersion);
        in.Initialize();
        int uid = 0;
        int classId = 0;
        while (in.LoadRecord(&uid, &classId)) all += std::to_string(uid) + " ";
        if (in.GetSkipped() != 0) all += "skipped ";
    });
    return all + failure;
}

// Writing

TEST(ClipboardBinOutStreamTests, ABlockIsWhatAFileWouldHold) {
    FakeClipboard clipboard;
    TClipboardBinOutStream out(3, 2026);
    out.SetUsesSecurity(true); // never on the clipboard
    out.Initialize();
    PutText(out, 9, "text");
    out.FlushRecord(10, 7); // counted, not written
    PutText(out, 11, "");
    EXPECT_EQ(clipboard.log, "");
    out.Finalize();
    EXPECT_EQ(clipboard.log, "osc");
    EXPECT_EQ(clipboard.block, HeaderBytes(3, 2026, 3) + TextRecord(9, "text") + TextRecord(11, ""));

    out.Finalize(); // a second time does nothing
    EXPECT_EQ(clipboard.log, "osc");
}

TEST(ClipboardBinOutStreamTests, WithoutFinalizeTheClipboardStays) {
    FakeClipboard clipboard("theirs");
    {
        TClipboardBinOutStream out;
        out.Finalize(); // nothing was begun
        out.Initialize();
        PutText(out, 1, "text");
        out.RewriteHeader();
        out.FreeResourses();
        out.Finalize();
        out.Initialize();
        PutText(out, 1, "text");
        EXPECT_EQ(clipboard.log, "");
    }
    EXPECT_EQ(clipboard.log, "b") << "it was forgotten";
    EXPECT_EQ(clipboard.block, "theirs");
}

TEST(ClipboardBinOutStreamTests, WhatFailedToBePutMayBePutLater) {
    const std::tuple<unsigned long, unsigned long, const char*> rows[] = {
        // opening, putting
        {Platform::ErrorSharingViolation, 0, "Clipboard in use"},
        {Platform::ErrorInvalidOwner, 0, "Clipboard folder not private to this user"},
        {Platform::ErrorAccessDenied, 0, "Permission denied"},
        {0, Platform::ErrorNotEnoughMemory, "Not enough space"},
        {0, Platform::ErrorDiskFull, "full"},
    };
    for (const auto& [openError, setError, failure] : rows) {
        FakeClipboard clipboard("theirs");
        clipboard.openError = openError;
        clipboard.setError = setError;
        TClipboardBinOutStream out;
        out.Initialize();
        PutText(out, 1, "text");
        EXPECT_EQ(FailureOf([&] { out.Finalize(); }), failure + FINALIZE);
        EXPECT_TRUE(!clipboard.open && clipboard.block == "theirs") << failure;
        clipboard.openError = clipboard.setError = 0;
        PutText(out, 2, "more");
        out.Finalize();
        EXPECT_EQ(clipboard.block, HeaderBytes(0, 0, 2) + TextRecord(1, "text") + TextRecord(2, "more"));
    }
}

TEST(ClipboardBinOutStreamTests, Misuse) {
    TClipboardBinOutStream out;
    EXPECT_EQ(FailureOf([&] { out.Reset(); }),
              "Feature (reset) not implemented @ TClipboardBinOutStream::Reset");
    out << 1;
    EXPECT_EQ(AssertionOf([&] { out.FlushRecord(1, 7); }).expression,
              "writing && \"[zoerror] records go between Initialize and Finalize\"");
    EXPECT_EQ(AssertionOf([&] { out.FlushBuffer(); }).expression,
              "writing && \"[zoerror] bytes go between Initialize and Finalize\"");
}

// Reading

TEST(ClipboardBinInStreamTests, TheClipboardIsOpenNoLongerThanItIsCopied) {
    FakeClipboard clipboard(HeaderBytes(3, 2026, 1) + TextRecord(2, "b"));
    TClipboardBinInStream in(3);
    in.Initialize();
    EXPECT_EQ(clipboard.log, "ogc");
    clipboard.block = HeaderBytes(0, 0) + TextRecord(5, "other");
    int uid = 0, classId = 0;
    ASSERT_TRUE(in.LoadRecord(&uid, &classId));
    EXPECT_EQ(uid, 2);
    EXPECT_EQ(in.GetRelease(), 2026u);
    in.Initialize(); // takes what is there now
    ASSERT_TRUE(in.LoadRecord(&uid, &classId));
    EXPECT_EQ(uid, 5);
    EXPECT_EQ(FailureOf([&] { in.Seek(0, 0); }),
              "Feature (seek) not implemented @ TClipboardBinInStream::Seek");
}

TEST(ClipboardBinInStreamTests, WhatABlockHolds) {
    const std::string zeros(40, '\0');
    const std::string good = HeaderBytes(3, 0, 2) + TextRecord(1, "one") + TextRecord(2, "two");
    const auto changed = [&](std::size_t at, std::uint32_t word) {
        return std::string(good).replace(at, 4, LittleEndian(word));
    };
    const std::size_t second = good.size() - 31;
    // zeros behind the block are no records
    const std::tuple<const char*, std::optional<std::string>, std::string, bool> rows[] = {
        {"a header of zeros", HeaderBytes(0, 0), "", true},
        {"zeros at the end", HeaderBytes(0, 0, 2) + TextRecord(1, "a") + TextRecord(2, zeros), "1 2 ", true},
        {"nothing but zeros", HeaderBytes(0, 0, 1) + RecordBytes(0, 0, zeros), "0 ", true},
        {"a marker in the data",
         HeaderBytes(0, 0, 2) + TextRecord(1, "\xCA\xAB\xCA\xAB\x09") + TextRecord(2, zeros), "1 2 ", true},
        {"behind an extra block", HeaderBytes(0, 0, 1, 40) + zeros + TextRecord(1, zeros), "1 ", true},
        {"none", std::nullopt, "Invalid data handle" + TAKE, false},
        {"empty", "", "No error" + HEADER, false},
        {"a zero for nothing", std::string(1, '\0'), "No error" + HEADER, false},
        {"no header", std::string(100, 'x'),
         std::string("Header de arquivo inválido"_ansi) + " @ TBinInStream::LoadHeader", false},
        {"newer", changed(0, 4), " @ ", true},
        {"extra block beyond the end", changed(24, 65'535), "", false},
        {"size beyond the end", changed(second + 4, 8), "1 No error" + RECORD + "3", false},
        {"size beyond the buffer", changed(second + 4, ~0U), "1 skipped ", true},
    };
    for (const auto& [name, block, read, padded] : rows) {
        for (const std::size_t padding : {0U, 1U, 7U, 24U, 70'000U, 20'000'000U}) {
            if (padding != 0 && !padded) break;
            SCOPED_TRACE(std::string(name) + " and " + std::to_string(padding));
            FakeClipboard clipboard;
            clipboard.block = block;
            clipboard.padding = padding;
            EXPECT_EQ(Pasted(3), read);
            EXPECT_EQ(clipboard.log, "ogc");
        }
    }
    FakeClipboard clipboard(good);
    clipboard.openError = Platform::ErrorSharingViolation;
    EXPECT_EQ(Pasted(), "Clipboard in use" + TAKE);
    EXPECT_EQ(clipboard.log, "");
}

// The system's clipboard

TEST(RealClipboardStreamTests, CarriesRecords) {
    const PrivateClipboard clipboard;
    TClipboardBinOutStream out;
    out.Initialize();
    for (const int uid : {1, 9}) PutText(out, uid, "text");
    out.Finalize();
    EXPECT_EQ(Pasted(), "1 9 ");
}

} // namespace
