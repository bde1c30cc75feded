#include "ZoPrimitives/FileInputStream.h"
#include "ZoPrimitives/FileOutputStream.h"
#include "support/Assertions.h"
#include "support/FaultyServices.h"
#include "support/TemporaryFolder.h"

#include <chrono>
#include <climits>
#include <cmath>
#include <gmock/gmock.h>

namespace {

using namespace ZoPrimitives;
using testing::ElementsAre;
using namespace ZoPrimitives::Testing;

constexpr const char* NAME = "tokens.txt";

/// A text file, written and read by the streams.
class Text {
public:
    Text() = default;
    explicit Text(const std::string& bytes) { folder.Write(NAME, bytes); }

    std::string Path() const { return folder.Path(NAME); }
    std::string Bytes() const { return folder.Read(NAME); }
    /// What the stream leaves in the file.
    template <class Operation>
    std::string Writing(Operation operation) const {
        {
            FileOutputStream stream(Path().c_str(), false);
            operation(stream);
        }
        return Bytes();
    }
    TemporaryFolder folder;
};

std::string Next(InputStream& stream) {
    ZoString token;
    stream >> token;
    return token.c_str();
}

TEST(FileOutputStreamTests, WritesOneLineForEachValue) {
    const struct {
        const char* name;
        std::function<void(OutputStream&)> write;
        std::string bytes;
    } rows[] = {
        {"nothing", [](OutputStream&) {}, ""},
        {"integers",
         [](OutputStream& s) {
             s << INT_MIN << UINT_MAX << static_cast<short>(-32768) << static_cast<unsigned short>(65535)
               << false;
         },
         "-2147483648\r\n4294967295\r\n-32768\r\n65535\r\n0"},
        {"reals", [](OutputStream& s) { s << 100.0 << 1e20 << 0.5f << 0.0L; },
         "100.\r\n1.e+020\r\n0.5\r\n0."},
        {"texts as they are",
         [](OutputStream& s) {
             for (const char* token : {"caf\xE9 ", " \t", static_cast<const char*>(nullptr)}) s << token;
             s << ZoString("a\nb");
         },
         "caf\xE9 \r\n \t\r\n\r\na\nb"},
        {"an empty token alone", [](OutputStream& s) { s << ""; }, ""},
        {"an empty token last", [](OutputStream& s) { s << ZoString("a") << ""; }, "a\r\n"},
    };
    for (const auto& row : rows) {
        const Text text;
        EXPECT_EQ(text.Writing(row.write), row.bytes) << row.name;
    }
}

TEST(FileOutputStreamTests, WritesOnceAtTheEnd) {
    const Text text("something longer than what comes");
    FaultyServices system;
    {
        FileOutputStream stream(text.Path().c_str(), false);
        EXPECT_EQ(text.Bytes(), "");
        for (const char* token : {"a", "b"}) stream << token;
        EXPECT_EQ(text.Bytes(), "");
        EXPECT_FALSE(stream.GetHasEOF());
        stream << "EOF ";
        EXPECT_FALSE(stream.GetHasEOF());
        stream << "EOF";
        EXPECT_TRUE(stream.GetHasEOF());
    }
    EXPECT_THAT(system.Calls(),
                ElementsAre("OpenFile tokens.txt", "WriteFile tokens.txt", "CloseFile tokens.txt"));
    EXPECT_EQ(text.Bytes(), "a\r\nb\r\nEOF \r\nEOF");
}

TEST(FileOutputStreamTests, LeavesAHandleOpenThatIsNotItsOwn) {
    const Text text;
    FaultyServices system;
    void* file = nullptr;
    {
        FileOutputStream stream(text.Path().c_str(), true);
        stream << 1;
        file = stream.GetFile();
    }
    {
        FileOutputStream stream(file);
        stream << 2 << 3;
        EXPECT_EQ(stream.GetFile(), file);
        stream.Finalize();
        EXPECT_EQ(stream.GetFile(), file);
    }
    EXPECT_EQ(system.OpenHandles(), 1u);
    Platform::Current().CloseFile(file);
    EXPECT_EQ(text.Bytes(), "12\r\n3");
}

TEST(FileOutputStreamTests, FinalizeTellsOfAFailure) {
    const struct {
        const char* operation;
        unsigned long error;
        const char* thrown;
    } rows[] = {
        {"WriteFile", Platform::ErrorDiskFull, "full @ FileOutputStream::Finalize"},
        {"WriteFile", Platform::ErrorHandleDiskFull, "full @ FileOutputStream::Finalize"},
        {"WriteFile", Platform::ErrorDevice, "Unknown error @ FileOutputStream::Finalize"},
        {"CloseFile", Platform::ErrorDiskFull, "full @ FileOutputStream::Finalize"},
        {"OpenFile", Platform::ErrorAccessDenied, "Input/output error @ FileOutputStream::FileOutputStream"},
        {"", 0, ""},
    };
    for (const auto& row : rows) {
        const Text text;
        FaultyServices system;
        if (row.error != 0) system.Fail(row.operation, 1, row.error);
        EXPECT_EQ(FailureOf([&] {
                      FileOutputStream stream(text.Path().c_str(), false);
                      stream << "a";
                      EXPECT_EQ(FailureOf([&] { stream.Finalize(); }), row.thrown);
                      EXPECT_EQ(FailureOf([&] { stream.Finalize(); }), "");
                      EXPECT_EQ(stream.GetFile(), nullptr);
                      EXPECT_NE(AssertionOf([&] { stream << "b"; }).line, 0);
                  }),
                  std::string(row.operation) == "OpenFile" ? row.thrown : "");
        EXPECT_LE(system.Count("WriteFile"), 1) << row.operation;
        EXPECT_EQ(system.OpenHandles(), 0u) << row.operation;
    }
    // Without `Finalize` nobody is told, and nothing is thrown.
    const Text text;
    FaultyServices system;
    system.Fail("WriteFile", 1, Platform::ErrorDiskFull);
    FileOutputStream(text.Path().c_str(), false) << "a";
    EXPECT_EQ(system.OpenHandles(), 0u);
}

TEST(FileInputStreamTests, TakesALineForAToken) {
    const struct {
        const char* name;
        std::string bytes;
        std::vector<std::string> tokens;
        bool ends; // otherwise the last token comes again
    } rows[] = {
        {"empty", "", {}, true},
        {"both", "a\nb\r\nc\n", {"a", "b", "c"}, true},
        {"no last line end", "a\r\nb", {"a", "b", "b", "b"}, false},
        {"empty lines", "\n\r\n\n", {"", "", ""}, true},
        {"CR is a line end only before LF", "\ra\rb\r\r\n\r", {"\ra\rb\r", "\r", "\r"}, false},
        {"LF does not take the CR of the line before", "a\r\n\nb\n", {"a", "", "b"}, true},
        {"a 0 byte ends its token", std::string("a\0b\nc\n\0\nd\n", 10), {"a", "c", "", "d"}, true},
        {"0 bytes only", std::string("\0\0", 2), {"", ""}, false},
        {"a long line", std::string(100'000, 'x') + "\ny\n", {std::string(100'000, 'x'), "y"}, true},
    };
    for (const auto& row : rows) {
        const Text texts[] = {Text(row.bytes), Text(row.bytes), Text(row.bytes)};
        FileInputStream stream(texts[0].Path().c_str());
        FileInputStream lines(texts[1].Path().c_str());
        FileInputStream skipping(texts[2].Path().c_str());
        std::vector<char> buffer(row.bytes.size() + 1, '?');
        unsigned repeats = 0;
        for (const std::string& token : row.tokens) {
            EXPECT_EQ(Next(stream), token) << row.name;
            EXPECT_TRUE(lines.GetLine(buffer.data()));
            EXPECT_EQ(buffer.data(), token) << row.name;
            skipping.SkipValue();
            EXPECT_GE(stream.GetRepeats(), repeats);
            repeats = stream.GetRepeats();
        }
        EXPECT_EQ(repeats != 0, !row.ends) << row.name;
        EXPECT_EQ(skipping.GetRepeats(), repeats) << row.name;
        if (!row.ends) continue;
        buffer[0] = '?';
        EXPECT_EQ(FailureOf([&] { Next(stream); }), "End-of-file @ ") << row.name;
        EXPECT_EQ(FailureOf([&] { skipping.SkipValue(); }), "End-of-file @ ") << row.name;
        EXPECT_EQ(FailureOf([&] { static_cast<InputStream&>(stream).CheckRead(); }), "End-of-file @ ");
        EXPECT_FALSE(lines.GetLine(buffer.data())) << row.name;
        EXPECT_EQ(buffer[0], '?') << row.name;
    }
}

TEST(FileInputStreamTests, ConvertsAsTheCRuntime) {
    const struct {
        const char* line;
        int integer;
        unsigned natural;
        short small;
        unsigned short smallNatural;
        bool flag;
        double real;
    } rows[] = {
        {"0", 0, 0, 0, 0, false, 0},
        {"  +12abc", 12, 12, 12, 12, true, 12},
        {"-7.9e1", -7, 4294967289u, -7, 65529, true, -79},
        {"", 0, 0, 0, 0, false, 0},
        {"1.e+020", 1, 1, 1, 1, true, 1e20},
        {"0.5", 0, 0, 0, 0, false, 0.5},
        {"65535", 65535, 65535, -1, 65535, true, 65535},
        {"70000", 70000, 70000, 4464, 4464, true, 70000},
        {"2147483648", INT_MAX, 2147483648u, -1, 65535, true, 2147483648.0},
        {"4294967295", INT_MAX, UINT_MAX, -1, 65535, true, 4294967295.0},
        {"-99999999999", INT_MIN, 2147483648u, 0, 0, true, -99999999999.0},
        {"1e999", 1, 1, 1, 1, true, HUGE_VAL},
        {"1,5", 1, 1, 1, 1, true, 1},
    };
    for (const auto& row : rows) {
        std::string bytes;
        for (int i = 0; i < 8; ++i) bytes += row.line + std::string("\n");
        const Text text(bytes);
        FileInputStream stream(text.Path().c_str());
        const auto next = [&](auto value) { return stream >> value, value; };
        EXPECT_EQ(next(-1), row.integer) << row.line;
        EXPECT_EQ(next(1u), row.natural) << row.line;
        EXPECT_EQ(next(short{-1}), row.small) << row.line;
        EXPECT_EQ(next(static_cast<unsigned short>(1)), row.smallNatural) << row.line;
        EXPECT_EQ(next(!row.flag), row.flag) << row.line;
        EXPECT_EQ(next(-1.0f), static_cast<float>(row.real)) << row.line;
        EXPECT_EQ(next(-1.0), row.real) << row.line;
        EXPECT_EQ(next(-1.0L), row.real) << row.line;
    }
}

TEST(FileInputStreamTests, FloatsAreTheNearest) {
    const Text text("1e300\n-1e300\n3.4028235677973366e38\n3.4028235e38\n1e-60\nnan\n");
    FileInputStream stream(text.Path().c_str());
    float value = 0;
    for (const float nearest : {HUGE_VALF, -HUGE_VALF, HUGE_VALF, 3.4028234664e38f, 0.0f}) {
        stream >> value;
        EXPECT_EQ(value, nearest);
    }
    stream >> value;
    EXPECT_TRUE(std::isnan(value));
}

TEST(FileInputStreamTests, OpensAsReaderOfItsFile) {
    const std::string unreadable = "Não foi possível ler o arquivo "_ansi;
    FaultyServices system;
    const Text text("a\n");
    const auto open = [&] { FileInputStream(text.Path().c_str(), true); };
    const std::string refused = unreadable + text.Path() + " @ FileInputStream::OpenFile";
    {
        FileInputStream first(text.Path().c_str());
        EXPECT_NE(first.GetFile(), nullptr);
        EXPECT_EQ(FailureOf(open), refused) << "locked by its first reader";
    }
    {
        FileInputStream first(text.Path().c_str(), TFileReading::Viewing);
        FileInputStream second(text.Path().c_str(), TFileReading::Viewing);
        EXPECT_EQ(FailureOf(open), "") << "viewers keep nobody out";
        FileOutputStream(text.Path().c_str(), false) << "written meanwhile";
        EXPECT_EQ(Next(first) + Next(second), "aa");
        // While a save replaces the file, opening waits for its end.
        text.folder.Write("tokens.txt-new", "new");
        system.onWait = [&](unsigned) {
            text.folder.Write(NAME, "new");
            std::filesystem::remove(text.folder.Path("tokens.txt-new"));
        };
        FileInputStream third(text.Path().c_str(), TFileReading::Viewing);
        EXPECT_EQ(Next(third), "new");
    }
    text.folder.MakeReadOnly(NAME);
    {
        FileInputStream first(text.Path().c_str(), true);
        EXPECT_TRUE(first.GetFlag());
        EXPECT_EQ(FailureOf(open), "") << "a read-only file has many readers";
    }
    EXPECT_EQ(FailureOf([&] { FileInputStream(text.folder.Path("none").c_str()); }),
              unreadable + text.folder.Path("none") + " @ FileInputStream::OpenFile");
    EXPECT_EQ(FailureOf([&] { FileInputStream(static_cast<const char*>(nullptr)); }),
              unreadable + " @ FileInputStream::OpenFile");
    EXPECT_EQ(system.OpenHandles(), 0u);
}

TEST(FileInputStreamTests, ReadsWhatTheDeviceGave) {
    const Text text("a\nb\nc\nd\n");
    for (const char* operation : {"", "ReadFile", "FileSize"}) {
        FaultyServices system;
        const bool fails = *operation != '\0';
        if (fails) system.Fail(operation, 1, Platform::ErrorDevice, FaultyServices::Half);
        FileInputStream stream(text.Path().c_str());
        EXPECT_EQ(stream.GetIsWhole(), !fails) << operation;
        std::string tokens;
        while (FailureOf([&] { tokens += Next(stream); }).empty()) continue;
        EXPECT_TRUE(std::string("abcd").rfind(tokens, 0) == 0) << tokens;
        EXPECT_EQ(tokens.size() == 4, !fails) << tokens;
    }
}

TEST(FileTextStreamTests, TakesAMillionTokensInLinearTime) {
    // A second each at most, with sanitizers too; anything that grows with the square takes many minutes.
    constexpr int COUNT = 1'000'000;
    const Text text;
    const auto start = std::chrono::steady_clock::now();
    {
        FileOutputStream stream(text.Path().c_str(), false);
        for (int i = 0; i < COUNT; ++i) stream << i;
        stream << "";
    }
    FileInputStream stream(text.Path().c_str());
    for (int i = 0; i < COUNT; ++i) {
        int value = -1;
        stream >> value;
        ASSERT_EQ(value, i);
    }
    EXPECT_NE(FailureOf([&] { stream.SkipValue(); }), "");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(60));
}

} // namespace
