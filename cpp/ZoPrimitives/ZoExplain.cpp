#include "ZoPrimitives/ZoExplain.h"

#include "Platform/Platform.h"
#include "ZoPrimitives/UserText.h"
#include "ZoPrimitives/WholeText.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoAssert.h"
#include "ZoPrimitives/ZoUtf8.h"
#include "ZoPrimitives/xContainer.h"

#include <exception>
#include <new>

namespace ZoPrimitives {

namespace {

/// A translated sentence with its "%s" replaced.
ZoString Filled(UserText sentence, const char* text, Language language = CurrentLanguage()) {
    return ZoString::FormatString(Translated(sentence, language), text);
}

bool IsReadOnly(const TZoPath& path) {
    bool readOnly = false;
    return !path.IsEmpty() && Platform::Current().FileExists(path.Utf8().c_str(), &readOnly) && readOnly;
}

/// In Windows-1252, with '?' for what that lacks. Bytes that are not UTF-8 are taken to be in it.
ZoString Shown(const TZoPath& path) {
    const char* const bytes = path.Utf8().c_str();
    for (const char* p = bytes; *p != '\0';)
        if (Windows1252::Next(p) == Windows1252::MALFORMED) return path.Text();
    return ZoFromUtf8(bytes);
}

/// What the sentence is about: the file, or what stands for one.
ZoString Subject(const XStream& failure, Language language) {
    return !failure.FilePath().IsEmpty()
               ? Filled("O arquivo \"%s\"", Shown(failure.FilePath()).c_str(), language)
               : ZoString(Translated("O destino ou a origem dos dados", language));
}

/// For the developer who is asked about it.
ZoString Place(const XStream& failure) {
    if (failure.Message().length() == 0 && failure.Location().length() == 0) return "";
    return WholeText({" (", failure.Message().c_str(), failure.Location().length() != 0 ? "; " : "",
                      failure.Location().c_str(), ")"});
}

ZoString SystemWords(unsigned code) {
    const std::string words = Platform::DescribeError(code);
    return ZoString::FormatString(words.empty() ? "%s%u" : "%s (%u)", words.c_str(), code);
}

/// Follows the subject.
UserText Reason(const XStream& failure) {
    switch (failure.Kind()) {
    case TStreamFailure::NotFound:
        return failure.SystemCode() == Platform::ErrorPathNotFound
                   ? UserText(" não pode ser usado: a pasta não existe. Confira o nome dela.")
                   : UserText(" não foi encontrado. Confira o nome e a pasta.");
    case TStreamFailure::Denied:
        return IsReadOnly(failure.FilePath())
                   ? UserText(" é somente leitura. Salve com outro nome ou retire essa proteção.")
                   : UserText(" não pode ser usado: falta permissão. Escolha outra pasta ou peça acesso.");
    case TStreamFailure::InUse:
        return UserText(" está em uso por outro programa. Feche-o lá e tente de novo.");
    case TStreamFailure::DiskFull:
        return UserText(" não cabe: falta espaço em disco. Libere espaço e tente de novo.");
    case TStreamFailure::Truncated:
        return UserText(" está incompleto: os dados terminam antes do fim. Use uma cópia de segurança.");
    case TStreamFailure::Damaged:
        return UserText(" está danificado. Use uma cópia de segurança.");
    case TStreamFailure::WrongFile:
        return UserText(" não é deste formato. Escolha um arquivo salvo por este programa.");
    case TStreamFailure::TooNew:
        return UserText(" foi salvo por uma versão mais nova. Atualize o programa.");
    case TStreamFailure::TooOld:
        return UserText(
            " foi salvo por uma versão que já não é lida. Converta-o com uma versão intermediária.");
    case TStreamFailure::Device:
        if (failure.SystemCode() == Platform::ErrorInvalidName ||
            failure.SystemCode() == Platform::ErrorFilenameTooLong)
            return UserText(
                " tem um nome que o sistema não aceita. Use outro, mais curto ou sem caracteres especiais.");
        break;
    case TStreamFailure::Other:
    case TStreamFailure::Cancelled:
        break;
    }
    return {};
}

ZoString Explain(const XStream& failure) {
    const Language language = CurrentLanguage();
    if (failure.Kind() == TStreamFailure::Cancelled) return Translated("A operação foi cancelada.", language);
    if (const UserText reason = Reason(failure)) {
        const ZoString text = WholeText({Subject(failure, language).c_str(), Translated(reason, language)});
        const auto* newer = dynamic_cast<const XNewerVersion*>(&failure);
        if (newer == nullptr || newer->FileVersion() == 0) return text;
        return ZoString::FormatString(
            Translated("%s (Versão do arquivo: %u; a mais nova que este programa lê: %u.)", language),
            text.c_str(), newer->FileVersion(), newer->SupportedVersion());
    }
    const ZoString system =
        failure.SystemCode() != 0 ? WholeText({": ", SystemWords(failure.SystemCode()).c_str()}) : ZoString();
    return WholeText({Subject(failure, language).c_str(), Translated(" não pôde ser lido ou salvo", language),
                      system.c_str(), ".", Place(failure).c_str()});
}

ZoString Explain(const XInvalidLanguage& failure) {
    if (failure.Message().IsNull()) return Explain(static_cast<const XStream&>(failure));
    if (failure.FilePath().IsEmpty()) return failure.Message();
    return WholeText({failure.Message().c_str(), " (", Shown(failure.FilePath()).c_str(), ")"});
}

ZoString Explain(const XZoAssertFailed& failure) {
    const char* said = *failure.Hint() != '\0' ? failure.Hint() : failure.Expression();
    const ZoString what =
        *failure.Advice() != '\0' ? WholeText({said, "; ", failure.Advice()}) : WholeText({said});
    return ZoString::FormatString(
        Translated("Erro interno do programa: %s (%s, linha %d). Avise quem o fornece."), what.c_str(),
        failure.File(), failure.Line());
}

} // namespace

ZoString ZoExplain() {
    const std::exception_ptr caught = std::current_exception();
    if (caught == nullptr) return "";
    try {
        std::rethrow_exception(caught);
    } catch (const XInvalidLanguage& failure) {
        return Explain(failure);
    } catch (const XStream& failure) {
        return Explain(failure);
    } catch (const XZoAssertFailed& failure) {
        return Explain(failure);
    } catch (const XZoAssert& failure) {
        return Filled("Erro interno do programa: %s. Avise quem o fornece.", failure.Message());
    } catch (const XEndSection&) {
        return Translated("O texto termina uma seção antes do esperado.");
    } catch (const XInvalidHandle&) {
        return Translated("O texto menciona um objeto que não contém.");
    } catch (const XUnknownObject&) {
        return Translated("O texto contém um objeto de uma classe desconhecida.");
    } catch (const XStreamer&) {
        return Translated("O texto não pôde ser lido.");
    } catch (const xContainer&) {
        return Translated("Erro interno do programa: uso indevido de uma lista. Avise quem o fornece.");
    } catch (const xRegionContainsExceeded&) {
        return Translated("O teste de um ponto em uma região passou do limite.");
    } catch (const xInvalidConversion&) {
        return Translated("Um valor não pôde ser convertido.");
    } catch (const std::bad_alloc&) {
        return Translated("Memória insuficiente. Feche outros programas e tente de novo.");
    } catch (const std::exception& failure) {
        return Filled("Erro inesperado: %s.", failure.what());
    } catch (...) {
        return Translated("Erro desconhecido.");
    }
}

} // namespace ZoPrimitives
