#include "ZoPrimitives/ZoExplain.h"

#include "ZoPrimitives/BinInStreamer.h"
#include "ZoPrimitives/FileBinInStream.h"
#include "ZoPrimitives/FileBinOutStream.h"
#include "ZoPrimitives/FileInputStream.h"
#include "ZoPrimitives/FileOutputStream.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoMetaData.h"
#include "ZoPrimitives/xContainer.h"
#include "support/FaultyServices.h"
#include "support/Records.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <new>
#include <stdexcept>

using namespace ZoPrimitives;
using testing::HasSubstr;

namespace {

struct FailureTests : testing::Test {
    void Save(const char* name) const {
        const pointer<TFileBinOutStream> out(
            TFileBinOutStream::Create(folder.Path(name).c_str(), 7, 2026, false));
        out->Initialize();
        out->Finalize();
    }
    void Open(const char* name, TFileReading how = TFileReading::Locking, unsigned version = 9) const {
        TFileBinInStream in(folder.Path(name).c_str(), how, version);
        in.Initialize();
        TZoMetaData schema;
        TBinInStreamer(&in, &schema).ReadObjects();
    }

    const Testing::TemporaryFolder folder;
    Testing::FaultyServices system;
};

TEST_F(FailureTests, TellKindFileAndReason) {
    const std::string header = HeaderBytes(7, 2026);
    folder.Write("short", header.substr(0, 20));
    folder.Write("cut", header + RecordBytes(0, 0, "abcdef").substr(0, 10));
    folder.Write("letter", "Dear Sir or Madam, this is not a building at all.");
    folder.Write("new", HeaderBytes(10, 2026));
    folder.Write("torn", header + RecordBytes(0, 0, "no schema"));
    folder.Write("held", header);
    folder.Write("empty", "");
    const struct {
        const char* name;
        std::function<void()> fails;
        TStreamFailure kind;
        unsigned code;
        const char* file; // null: none
        const char* explained;
    } rows[] = {
        {"no file", [&] { Open("none"); }, TStreamFailure::NotFound, 2, "none", "Confira o nome"},
        {"no folder", [&] { Save("none/file"); }, TStreamFailure::NotFound, 3, "none/file", "a pasta n"},
        {"denied", [&] { system.Fail("OpenFile", 1, Platform::ErrorAccessDenied), Save("x"); },
         TStreamFailure::Denied, 5, "x", "falta permiss"},
        {"read-only",
         [&] {
             system.Fail("OpenFile", 1, Platform::ErrorAccessDenied);
             system.readOnly = true;
             Save("held");
         },
         TStreamFailure::Denied, 5, "held", "somente leitura"},
        {"in use",
         [&] {
             TFileBinInStream holder(folder.Path("held").c_str(), 9u);
             holder.Initialize();
             Open("held");
         },
         TStreamFailure::InUse, 32, "held", "em uso"},
        {"disk full", [&] { system.Fail("WriteFile", 1, Platform::ErrorDiskFull), Save("x"); },
         TStreamFailure::DiskFull, 112, "x", "falta espa"},
        {"device", [&] { system.Fail("WriteFile", 1, Platform::ErrorDevice), Save("x"); },
         TStreamFailure::Device, 1117, "x", "(1117)"},
        {"no name", [&] { system.Fail("OpenFile", 1, Platform::ErrorInvalidName), Save("x"); },
         TStreamFailure::Device, 123, "x", "tem um nome"},
        {"ends in the header", [&] { Open("short"); }, TStreamFailure::Truncated, 0, "short", "incompleto"},
        {"ends in a record", [&] { Open("cut"); }, TStreamFailure::Truncated, 0, "cut", "incompleto"},
        {"another format", [&] { Open("letter"); }, TStreamFailure::WrongFile, 0, "letter", "deste formato"},
        {"newer", [&] { Open("new"); }, TStreamFailure::TooNew, 0, "new",
         "arquivo: 10; a mais nova que este programa l"},
        {"schema", [&] { Open("torn"); }, TStreamFailure::Damaged, 0, "torn", "danificado"},
        {"text to no folder", [&] { FileOutputStream(folder.Path("none/text").c_str(), false); },
         TStreamFailure::NotFound, 3, "none/text", "a pasta n"},
        {"text that ends", [&] { FileInputStream(folder.Path("empty").c_str()).SkipValue(); },
         TStreamFailure::Truncated, 0, nullptr, "incompleto"},
        {"an application's", [] { throw XStream("reason", "place"); }, TStreamFailure::Other, 0, nullptr,
         "(reason; place)"},
        {"cancelled", [] { throw XStream("", "", TStreamFailure::Cancelled); }, TStreamFailure::Cancelled, 0,
         nullptr, "cancelada"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        try {
            row.fails();
            ADD_FAILURE() << "nothing thrown";
        } catch (const XStream& failure) {
            EXPECT_EQ(failure.Kind(), row.kind);
            EXPECT_EQ(failure.SystemCode(), row.code);
            const std::string file = row.file != nullptr ? folder.Path(row.file) : "";
            EXPECT_EQ(failure.Path(), file.c_str());
            const std::string explained = ZoExplain().c_str();
            EXPECT_THAT(explained, HasSubstr(row.explained));
            EXPECT_THAT(explained, HasSubstr(row.file != nullptr ? '"' + file + '"' : ""));
        }
        system.readOnly.reset();
    }
}

TEST_F(FailureTests, ShowPathsInWindows1252) {
    const struct {
        TZoPath path;
        const char* shown;
    } rows[] = {
        {std::filesystem::path(u8"Σ/pórtico"), "\"?/p\xF3rtico\""},
        {"bytes: \xF3", "\"bytes: \xF3\""},
    };
    const TZoPath letter("\xF3");
    const bool western = letter.Utf8() == "\xF3" || letter.Utf8() == "\xC3\xB3"; // the code page
    for (const auto& [path, shown] : rows) {
        if (!western && path.Text() == rows[1].path.Text()) continue;
        try {
            throw XReadStream("", "", TStreamFailure::NotFound).SetPath(path);
        } catch (const XStream&) {
            EXPECT_THAT(ZoExplain().c_str(), HasSubstr(shown));
        }
    }
}

TEST_F(FailureTests, AreExplainedWhateverWasThrown) {
    const struct {
        std::function<void()> fails;
        const char* explained;
    } rows[] = {
        {[] { throw XEndSection(); }, "se\xE7\xE3o"},
        {[] { throw XInvalidHandle(); }, "objeto que n\xE3o cont\xE9m"},
        {[] { throw XUnknownObject(); }, "classe desconhecida"},
        {[] { throw XStreamer(); }, "n\xE3o p\xF4"},
        {[] { throw xFind(); }, "lista"},
        {[] { throw xRegionContainsExceeded(); }, "limite"},
        {[] { throw xInvalidConversion(); }, "convertido"},
        {[] { throw XZoAssert("text"); }, "programa: text."},
        {[] { AssertWithFunctor("a < b", "", "cpp/File", 12); }, "programa: a < b (cpp/File, linha 12)."},
        {[] { AssertWithFunctor("a < b", "hint", "cpp/File", 12); }, "programa: hint (cpp/File, linha 12)."},
        {[] { throw std::bad_alloc(); }, "insuficiente"},
        {[] { throw std::runtime_error("what"); }, "inesperado: what."},
        {[] { throw 1; }, "desconhecido."},
    };
    for (const auto& row : rows) {
        try {
            row.fails();
        } catch (...) {
            EXPECT_THAT(ZoExplain().c_str(), HasSubstr(row.explained));
        }
    }
    EXPECT_EQ(ZoExplain(), "") << "nothing was thrown";
}

} // namespace
