#include "ZoPrimitives/ZoLanguage.h"

#include "support/FaultyServices.h"
#include "support/InLanguage.h"
#include "support/TemporaryFolder.h"

#include "ZoPrimitives/AnsiLiteral.h"
#include "ZoPrimitives/ECustomPropertyValueType.h"
#include "ZoPrimitives/TTranslatedString.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoExplain.h"
#include "ZoPrimitives/ZoReadReport.h"
#include "ZoPrimitives/grandeza.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>

using namespace ZoPrimitives;
using namespace ZoPrimitives::Testing;

namespace {

constexpr TZoText BEAMS[] = {{"Arquivo corrompido", {"not this", "nor this", "nor that"}},
                             {"beam", {"viga", "beam", "trabe"}}};

template <class Failure>
ZoString Explained(const Failure& failure) {
    try {
        throw failure;
    } catch (...) {
        return ZoExplain();
    }
}

TEST(ZoLanguageTest, TextsFollowTheLanguage) {
    ZoAddTexts(BEAMS);
    ZoAddTexts(BEAMS);
    const XStream damaged("", "", TStreamFailure::Damaged);
    const TTranslatedString made("beam"); // before the language is set
    const std::tuple<std::function<ZoString()>, const char*, const char*, const char*> rows[] = {
        {[] { return GTempo::NomeDaUnidade(TTempo::dia); }, "dia", "day", "día"_ansi},
        {[] { return GVelocidade::NomeDaUnidade(TVelocidade::mm_min); }, "", "", ""},
        {[] { return GComprimento(2.5).Texto(TComprimento::cm, 1, false, ','); }, "2,5 cm", "2,5 cm",
         "2,5 cm"},
        {[] { return GAngulo(0.0).LeTexto("x", ',', TAngulo::Graus).descricao; }, "um número"_ansi,
         "a number", "un número"_ansi},
        {[] { return GTempo(0.0).LeTexto("1 x", ',', TTempo::s).descricao; },
         "uma unidade: s, min, h, dia, ms", "a unit: s, min, h, day, ms",
         "una unidad: s, min, h, día, ms"_ansi},
        {[] { return ECustomPropertyValueType::Nome(2); }, "Sim/Não"_ansi, "Yes/No", "Sí/No"_ansi},
        {[] { return XWriteStreamOutOfSpace("").Message(); }, "Espaço em disco insuficiente."_ansi,
         "Not enough disk space.", "Espacio en disco insuficiente."},
        {[] { return XCannotKeep("C", "f", "").Message(); },
         "Partes de uma versão mais nova não podem ser preservadas: C.f"_ansi,
         "Parts of a newer version cannot be preserved: C.f",
         "No se pueden conservar partes de una versión más reciente: C.f"_ansi},
        {[&] { return Explained(damaged); },
         "O destino ou a origem dos dados está danificado. Use uma cópia de segurança."_ansi,
         "The destination or source of the data is damaged. Use a backup copy.",
         "El destino o el origen de los datos está dañado. Use una copia de respaldo."_ansi},
        {[] { return Explained(1); }, "Erro desconhecido.", "Unknown error.", "Error desconocido."},
        {[] { return TTranslatedString("Arquivo corrompido").ToZoString(); }, "Arquivo corrompido",
         "Corrupt file", "Archivo corrupto"},
        {[&] { return made.ToZoString(); }, "viga", "beam", "trabe"},
        {[] { return TTranslatedString("Zero").ToZoString(); }, "Zero", "Zero", "Zero"},
        {[] { return TTranslatedString(nullptr).ToZoString(); }, "", "", ""}};
    for (const auto& [text, portuguese, english, spanish] : rows) {
        EXPECT_EQ(text(), portuguese);
        EXPECT_EQ((InLanguage("en-US"), text()), english);
        EXPECT_EQ((InLanguage("es-MX"), text()), spanish);
    }
}

TEST(ZoLanguageTest, AnUnknownNameChangesNothing) {
    const InLanguage before("ES-mx");
    for (const char* name : {"", "en", "pt-PT", "en-USA", "en_US"}) {
        try {
            ZoSetLanguage(name);
            ADD_FAILURE() << name;
        } catch (const XInvalidLanguage& failure) {
            EXPECT_EQ(
                failure.Message(),
                ZoString::FormatString("El idioma \"%s\" es desconocido. Use pt-BR, en-US o es-MX.", name));
            EXPECT_EQ(ZoExplain(), failure.Message());
        }
    }
    EXPECT_STREQ(ZoLanguage(), "es-MX");
    EXPECT_THROW(ZoAddTexts({{"b", {"", "", ""}}, {"a", {"", "", ""}}}), XZoAssert);
}

TEST(ZoLanguageTest, AFileNamesTheLanguage) {
    const TemporaryFolder folder;
    const std::string path = folder.Path("Language.ini");
    EXPECT_FALSE(ZoLoadLanguage(path));
    EXPECT_FALSE(ZoLoadLanguage()) << "beside the tests";
    const std::pair<std::string, const char*> rows[] = {
        {"en-US", "en-US"},
        {"\xEF\xBB\xBF[Interface]\r\n; es-MX\r\n\r\nFont = 9\r\n language = EN-us \r\nLanguage=pt-BR",
         "en-US"},
        {"#\n\tes-MX\n", "es-MX"},
        {"", nullptr},
        {"Language=", nullptr},
        {"Languages=en-US", nullptr},
        {"fr-FR\nen-US", nullptr},
        {"\xFF\xFE"
         "en-US",
         nullptr}};
    for (const auto& [text, named] : rows) {
        const InLanguage before("pt-BR");
        folder.Write("Language.ini", text);
        try {
            EXPECT_TRUE(ZoLoadLanguage(path));
            EXPECT_STREQ(ZoLanguage(), named) << text;
        } catch (const XInvalidLanguage& failure) {
            EXPECT_EQ(named, nullptr) << text;
            EXPECT_EQ(failure.Path(), path.c_str());
            EXPECT_GE(ZoExplain().hasText(path.c_str()), 0);
        }
    }
    for (const char* operation : {"FileExists", "OpenFile", "ReadFile"}) {
        FaultyServices services;
        services.Fail(operation, 0, Platform::ErrorAccessDenied);
        EXPECT_THROW(ZoLoadLanguage(path), XReadStream) << operation;
    }
}

TEST(ZoLanguageTest, NoTextIsInTwoLanguagesWhileTheyChange) {
    const InLanguage after("pt-BR");
    const XStream damaged("", "", TStreamFailure::Damaged);
    const std::function<ZoString()> texts[] = {
        [&] { return Explained(damaged); },
        [] { return GTempo(0.0).LeTexto("1 x", ',', TTempo::s).descricao; },
        [] { return GTempo(86400.0).Texto(TTempo::dia, 0, false, ','); }};
    std::vector<std::string> known;
    for (const char* language : LANGUAGES) {
        for (const auto& text : texts) known.push_back((InLanguage(language), text().c_str()));
    }
    std::atomic<bool> done = false;
    std::thread switching([&] {
        for (int i = 0; !done; ++i) ZoSetLanguage(LANGUAGES[i % 3]);
    });
    for (int i = 0; i < 3000; ++i) {
        const std::string text = texts[i % 3]().c_str();
        if (std::find(known.begin(), known.end(), text) == known.end()) ADD_FAILURE() << text;
    }
    done = true;
    switching.join();
}

} // namespace
