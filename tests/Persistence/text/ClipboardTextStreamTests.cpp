#include "ZoPrimitives/ClipboardInputStream.h"
#include "ZoPrimitives/ClipboardOutputStream.h"

#include "support/FakeClipboard.h"
#include "support/Streaming.h"

using namespace ZoPrimitives;
using namespace std::string_literals;
using ZoPrimitives::Testing::FakeClipboard;

namespace {

const std::string TAKE = " @ ClipboardInputStream::GetDataFromClipboard";
const std::string PUT = " @ ClipboardOutputStream::PutDataInClipboard";
const std::string NUMBER = "Invalid data size @ ClipboardInputStream::ReadBinaryData";
const std::string STRING = "Invalid data size @ ClipboardInputStream::ReadString";
const std::string SKIP = "Invalid data size @ ClipboardInputStream::SkipValue";
const std::string END = "End-of-file @ ";

std::string Value(const std::string& bytes) { return LittleEndian(bytes.size()) + bytes; }

/// Reads one value as a type, or skips it; what came of it, or the failure.
template <class T>
std::string As(ClipboardInputStream& in) {
    T value{};
    const std::string failure = FailureOf([&] { in >> value; });
    if constexpr (std::is_same_v<T, ZoString>)
        return failure.empty() ? Text(value) : failure;
    else
        return failure.empty() ? std::to_string(value) : failure;
}
std::string Skip(ClipboardInputStream& in) {
    return FailureOf([&] { in.SkipValue(); });
}
std::string Line(ClipboardInputStream& in) {
    char buffer[64] = "untouched";
    return in.GetLine(buffer) ? buffer : std::string("false, ") + buffer;
}
std::string Characters(ClipboardInputStream& in) {
    char buffer[64] = "................";
    const std::string failure = FailureOf([&] { in >> buffer; });
    return failure.empty() ? buffer : failure;
}

// Writing

TEST(ClipboardOutputStreamTests, EachValueIsItsLengthAndItsBytes) {
    using Write = std::function<void(OutputStream&)>;
    using Read = std::string (*)(ClipboardInputStream&);
    const std::tuple<const char*, Write, std::string, Read, const char*> rows[] = {
        {"nothing", [](OutputStream&) {}, "", Line, "false, untouched"},
        {"int", [](OutputStream& s) { s << -2; }, Value("\xFE\xFF\xFF\xFF"), As<int>, "-2"},
        {"unsigned", [](OutputStream& s) { s << 4294967294u; }, Value("\xFE\xFF\xFF\xFF"), As<unsigned>,
         "4294967294"},
        {"short", [](OutputStream& s) { s << static_cast<short>(-2); }, Value("\xFE\xFF"), As<short>, "-2"},
        {"unsigned short", [](OutputStream& s) { s << static_cast<unsigned short>(0xFFFE); },
         Value("\xFE\xFF"), As<unsigned short>, "65534"},
        {"float", [](OutputStream& s) { s << 1.5f; }, Value("\0\0\xC0\x3F"s), As<float>, "1.500000"},
        {"double", [](OutputStream& s) { s << 1.5; }, Value("\0\0\0\0\0\0\xF8\x3F"s), As<double>, "1.500000"},
        {"long double", [](OutputStream& s) { s << 1.5L; }, Value("\0\0\0\0\0\0\xF8\x3F"s), As<long double>,
         "1.500000"},
        {"bool", [](OutputStream& s) { s << true << false; }, Value("\1") + Value("\0"s), As<bool>, "1"},
        {"text", [](OutputStream& s) { s << "Abc" << ZoString("d\xE7"); },
         Value("Abc\0"s) + Value("d\xE7\0"s), Characters, "Abc"},
        {"no text", [](OutputStream& s) { s << "" << static_cast<const char*>(nullptr) << ZoString(); },
         Value("\0"s) + Value("\0"s) + Value("\0"s), As<ZoString>, ""},
    };
    for (const auto& [name, write, block, read, text] : rows) {
        SCOPED_TRACE(name);
        FakeClipboard clipboard("theirs");
        {
            ClipboardOutputStream stream;
            write(stream);
            EXPECT_EQ(clipboard.log, "");
        }
        EXPECT_EQ(clipboard.log, "osc");
        EXPECT_EQ(clipboard.block, block);
        ClipboardInputStream in;
        EXPECT_EQ(read(in), text);
    }
}

// Reading

TEST(ClipboardInputStreamTests, TakesNothingThatIsNotThere) {
    FakeClipboard clipboard;
    EXPECT_EQ(FailureOf([] { ClipboardInputStream in; }), "Invalid data handle" + TAKE);
    clipboard.openError = Platform::ErrorInvalidOwner;
    EXPECT_EQ(FailureOf([] { ClipboardInputStream in; }), "Clipboard folder not private to this user" + TAKE);
    EXPECT_EQ(clipboard.log, "ogc");
}

TEST(ClipboardInputStreamTests, TheClipboardIsOpenAsLongAsTheStream) {
    FakeClipboard clipboard(Value("a\0"s));
    {
        ClipboardInputStream in;
        EXPECT_TRUE(clipboard.open);
        EXPECT_EQ(As<ZoString>(in), "a");
        ClipboardOutputStream out; // cannot take the block from under the reader
        EXPECT_EQ(FailureOf([&] { out.Finalize(); }), "Clipboard in use" + PUT);
    }
    EXPECT_FALSE(clipboard.open);
}

// Whatever a stranger's block holds: the value, or the exception, and the stream stays before what it
// refused.
TEST(ClipboardInputStreamTests, BlocksOfStrangers) {
    using Steps = std::vector<std::pair<std::string (*)(ClipboardInputStream&), std::string>>;
    const std::string eight = Value("12345678");
    const std::tuple<std::string, std::string, Steps> rows[] = {
        {"empty", "", {{As<int>, END}, {As<ZoString>, END}, {Skip, END}, {Line, "false, untouched"}}},
        {"zeros", std::string(100, '\0'), {{As<ZoString>, END}, {As<bool>, END}, {Skip, END}}},
        {"another size",
         eight,
         {{As<int>, NUMBER}, {As<bool>, NUMBER}, {As<ZoString>, "12345678"}, {As<int>, END}}},
        {"skipped", eight + Value("\7\0\0\0"s), {{Skip, ""}, {As<int>, "7"}, {Skip, END}}},
        {"cut in a length", "\4\0"s, {{As<int>, NUMBER}, {As<ZoString>, STRING}, {Skip, SKIP}}},
        {"cut in a value",
         Value("a\0"s) + LittleEndian(5) + "1234",
         {{Line, "a"}, {As<int>, NUMBER}, {As<ZoString>, STRING}, {Skip, SKIP}, {Line, "false, untouched"}}},
        {"the largest length", LittleEndian(0xFFFFFFFF) + "1234", {{As<ZoString>, STRING}, {Skip, SKIP}}},
        {"a length that wraps around", LittleEndian(0xFFFFFFFC) + "1234", {{As<int>, NUMBER}, {Skip, SKIP}}},
        {"texts without an end",
         Value("ab") + Value("c") + Value("d\0"s),
         {{As<ZoString>, "ab"}, {Characters, "c"}, {As<ZoString>, "d"}}},
        {"length 0 inside",
         LittleEndian(0) + LittleEndian(0) + LittleEndian(0) + Value("a\0"s),
         {{As<bool>, NUMBER}, {As<ZoString>, ""}, {Skip, ""}, {Characters, ""}, {As<ZoString>, "a"}}},
        {"a text of 0 bytes", Value("\0\0\0"s) + Value("a\0"s), {{As<ZoString>, ""}, {Line, "a"}}},
        {"a flag that is neither", Value("\x80"), {{As<bool>, "1"}}},
    };
    for (const auto& [name, block, steps] : rows) {
        for (const std::size_t padding : {0U, 1U, 3U, 4U, 15U, 100'000U}) {
            if (padding != 0 && name.starts_with("cut")) continue; // zeros would make it whole
            SCOPED_TRACE(name + " and " + std::to_string(padding) + " zeros");
            FakeClipboard clipboard(block);
            clipboard.padding = padding;
            {
                ClipboardInputStream in;
                for (const auto& [step, outcome] : steps) EXPECT_EQ(step(in), outcome);
            }
            EXPECT_EQ(clipboard.log, "ogc");
        }
    }
}

} // namespace
