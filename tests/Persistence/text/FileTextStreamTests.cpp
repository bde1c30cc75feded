#include "ZoPrimitives/FileInputStream.h"
#include "ZoPrimitives/FileOutputStream.h"
#include "support/Assertions.h"
#include "support/FaultyServices.h"
#include "support/TemporaryFolder.h"

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
    TemporaryFolder folder;
};

std::string Next(InputStream& stream) {
    ZoString token;
    stream >> token;
    return token.c_str();
}

TEST(FileOutputStreamTests, WritesOneLineForEachValue) {
    const std::tuple<const char*, std::function<void(OutputStream&)>, const char*> rows[] = {
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
    for (const auto& [name, write, bytes] : rows) {
        const Text text;
        {
            FileOutputStream stream(text.Path().c_str(), false);
            write(stream);
        }
        EXPECT_EQ(text.Bytes(), bytes) << name;
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
    const std::tuple<const char*, unsigned long, const char*> rows[] = {
        {"WriteFile", Platform::ErrorDiskFull, "full @ FileOutputStream::Finalize"},
        {"WriteFile", Platform::ErrorHandleDiskFull, "full @ FileOutputStream::Finalize"},
        {"WriteFile", Platform::ErrorDevice, "Unknown error @ FileOutputStream::Finalize"},
        {"CloseFile", Platform::ErrorDiskFull, "full @ FileOutputStream::Finalize"},
        {"none", 0, ""},
    };
    for (const auto& [operation, error, thrown] : rows) {
        const Text text;
        FaultyServices system;
        for (const char* last : {"a", "told to nobody, nor thrown"}) {
            system.Fail(operation, 1, error);
            FileOutputStream stream(text.Path().c_str(), false);
            stream << last;
            if (*last != 'a') continue;
            EXPECT_EQ(FailureOf([&] { stream.Finalize(); }), thrown);
            EXPECT_EQ(FailureOf([&] { stream.Finalize(); }), "");
            EXPECT_EQ(stream.GetFile(), nullptr);
            EXPECT_NE(AssertionOf([&] { stream << "b"; }).line, 0);
            EXPECT_LE(system.Count("WriteFile"), 1) << operation;
        }
        EXPECT_EQ(system.OpenHandles(), 0u) << operation;
        system.Fail("OpenFile", 1, Platform::ErrorAccessDenied);
        EXPECT_EQ(FailureOf([&] { FileOutputStream(text.Path().c_str(), false); }),
                  "Input/output error @ FileOutputStream::FileOutputStream");
    }
}

TEST(FileInputStreamTests, TakesALineForAToken) {
    // Where the text does not end, its last token comes again.
    const std::tuple<const char*, std::string, std::vector<std::string>, bool> rows[] = {
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
    for (const auto& [name, bytes, tokens, ends] : rows) {
        SCOPED_TRACE(name);
        const Text text(bytes);
        const auto open = [&] { return FileInputStream(text.Path().c_str(), TFileReading::Viewing); };
        FileInputStream stream = open(), lines = open(), skipping = open();
        std::vector<char> buffer(bytes.size() + 1, '?');
        unsigned repeats = 0;
        for (const std::string& token : tokens) {
            EXPECT_EQ(Next(stream), token);
            EXPECT_TRUE(lines.GetLine(buffer.data()));
            EXPECT_EQ(buffer.data(), token);
            skipping.SkipValue();
            EXPECT_GE(stream.GetRepeats(), repeats);
            repeats = stream.GetRepeats();
        }
        EXPECT_EQ(repeats != 0, !ends);
        EXPECT_EQ(skipping.GetRepeats(), repeats);
        if (!ends) continue;
        buffer[0] = '?';
        EXPECT_EQ(FailureOf([&] { Next(stream); }), "End-of-file @ ");
        EXPECT_EQ(FailureOf([&] { skipping.SkipValue(); }), "End-of-file @ ");
        EXPECT_EQ(FailureOf([&] { static_cast<InputStream&>(stream).CheckRead(); }), "End-of-file @ ");
        EXPECT_TRUE(!lines.GetLine(buffer.data()) && buffer[0] == '?');
    }
}

TEST(FileInputStreamTests, ConvertsAsTheCRuntime) {
    const std::tuple<const char*, int, unsigned, short, unsigned short, float, double> rows[] = {
        {"  +12abc", 12, 12, 12, 12, 12, 12},
        {"-7.9e1", -7, 4294967289u, -7, 65529, -79, -79},
        {"", 0, 0, 0, 0, 0, 0},
        {"0.5", 0, 0, 0, 0, 0.5, 0.5},
        {"65535", 65535, 65535, -1, 65535, 65535, 65535},
        {"70000", 70000, 70000, 4464, 4464, 70000, 70000},
        {"2147483648", INT_MAX, 2147483648u, -1, 65535, 2147483648.0f, 2147483648.0},
        {"4294967295", INT_MAX, UINT_MAX, -1, 65535, 4294967296.0f, 4294967295.0},
        {"-99999999999", INT_MIN, 2147483648u, 0, 0, -99999997952.0f, -99999999999.0},
        {"1,5e999", 1, 1, 1, 1, 1, 1},
        {"-1.e+300", -1, UINT_MAX, -1, 65535, -HUGE_VALF, -1e300},
        {"3.4028235677973366e38", 3, 3, 3, 3, HUGE_VALF, 3.4028235677973366e38},
        {"3.4028235e38", 3, 3, 3, 3, 3.4028234664e38f, 3.4028235e38},
        {"1e-60", 1, 1, 1, 1, 0, 1e-60},
    };
    for (const auto& [line, integer, natural, small, smallNatural, real, precise] : rows) {
        SCOPED_TRACE(line);
        std::string bytes;
        for (int i = 0; i < 8; ++i) bytes += line + std::string("\n");
        const Text text(bytes + "nan\n");
        FileInputStream stream(text.Path().c_str());
        const auto next = [&](auto value) { return stream >> value, value; };
        EXPECT_EQ(next(-1), integer);
        EXPECT_EQ(next(1u), natural);
        EXPECT_EQ(next(short{-1}), small);
        EXPECT_EQ(next(static_cast<unsigned short>(1)), smallNatural);
        EXPECT_EQ(next(integer == 0), integer != 0);
        EXPECT_EQ(next(-1.0f), real);
        EXPECT_EQ(next(-1.0), precise);
        EXPECT_EQ(next(-1.0L), precise);
        EXPECT_TRUE(std::isnan(next(0.0f)));
    }
}

TEST(FileInputStreamTests, OpensAsReaderOfItsFile) {
    const std::string unreadable = "Não foi possível ler o arquivo "_ansi;
    FaultyServices system;
    const Text text("a\n");
    {
        FileInputStream first(text.Path().c_str());
        EXPECT_EQ(FailureOf([&] { FileInputStream(text.Path().c_str(), true); }),
                  unreadable + text.Path() + " @ FileInputStream::OpenFile")
            << "locked by its first reader";
    }
    // While a save replaces the file, a viewer waits for its end.
    text.folder.Write("tokens.txt-new", "new");
    system.onWait = [&](unsigned) {
        text.folder.Write(NAME, "new");
        std::filesystem::remove(text.folder.Path("tokens.txt-new"));
    };
    FileInputStream viewer(text.Path().c_str(), TFileReading::Viewing);
    EXPECT_EQ(Next(viewer), "new");
    EXPECT_EQ(FailureOf([&] { FileInputStream(static_cast<const char*>(nullptr)); }),
              unreadable + " @ FileInputStream::OpenFile");
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
    // Anything that grows with the square takes many minutes, and is stopped.
    constexpr int COUNT = 1'000'000;
    const Text text;
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
}

} // namespace
