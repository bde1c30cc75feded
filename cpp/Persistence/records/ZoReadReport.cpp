#include "ZoPrimitives/ZoReadReport.h"

#include "ZoPrimitives/UserText.h"
#include "ZoPrimitives/WholeText.h"
#include "ZoPrimitives/ZoUtf8.h"

#include <algorithm>
#include <string>

namespace ZoPrimitives {

namespace {

constexpr unsigned long long MOST_TOLD = 20; // stretches of a text

/// Puts a text together line by line.
class Lines {
public:
    template <class... Arguments>
    void Add(UserText sentence, const Arguments&... arguments) {
        const char* const line = Translated(sentence, language);
        if constexpr (sizeof...(arguments) == 0)
            text += line;
        else
            text += ZoString::FormatString(line, arguments...).c_str();
        text += '\n';
    }
    ZoString Whole() const { return WholeText({text}); }

private:
    const Language language = CurrentLanguage();
    std::string text;
};

/// Puts JSON together; commas stand where they must.
class Json {
public:
    Json& Open(char bracket) { return Value(std::string(1, bracket), false); }
    Json& Close(char bracket) {
        text += bracket;
        fresh = false;
        return *this;
    }
    Json& Key(const char* name) {
        Value('"' + std::string(name) + "\":", false);
        return *this;
    }
    Json& Number(unsigned long long value) { return Value(std::to_string(value), true); }
    Json& Integer(int value) { return Value(std::to_string(value), true); }
    Json& Boolean(bool value) { return Value(value ? "true" : "false", true); }
    Json& Text(const ZoString& value) {
        std::string quoted = "\"";
        for (const char c : std::string(ZoToUtf8(value))) {
            constexpr char digits[] = "0123456789abcdef";
            const auto byte = static_cast<unsigned char>(c);
            if (c == '"' || c == '\\') quoted += '\\';
            if (byte < 0x20) {
                quoted += "\\u00";
                quoted += digits[byte / 16];
                quoted += digits[byte % 16];
            } else {
                quoted += c;
            }
        }
        return Value(quoted + '"', true);
    }
    ZoString Whole() const { return WholeText({text}); }

private:
    /// `ends`: a comma stands before what follows.
    Json& Value(const std::string& value, bool ends) {
        if (!fresh) text += ',';
        text += value;
        fresh = !ends;
        return *this;
    }

    std::string text;
    bool fresh = true; // nothing stands before in the same brackets
};

const char* NameOf(TReferenceLoss why) {
    switch (why) {
    case TReferenceLoss::Dropped:
        return "dropped";
    case TReferenceLoss::Missing:
        return "missing";
    case TReferenceLoss::WrongType:
        return "wrongType";
    case TReferenceLoss::NotRead:
        return "notRead";
    }
    return "";
}

const char* NameOf(TFieldFault fault) {
    switch (fault) {
    case TFieldFault::NotInClass:
        return "notInClass";
    case TFieldFault::NotInFile:
        return "notInFile";
    case TFieldFault::OtherKind:
        return "otherKind";
    }
    return "";
}

UserText Sentence(TReferenceLoss why) {
    switch (why) {
    case TReferenceLoss::Dropped:
        return UserText("%s.%s: %llu referências perdidas: os objetos do arquivo não foram criados");
    case TReferenceLoss::Missing:
        return UserText("%s.%s: %llu referências perdidas: os objetos não estão no arquivo");
    case TReferenceLoss::WrongType:
        return UserText("%s.%s: %llu referências perdidas: os objetos são de outra classe");
    case TReferenceLoss::NotRead:
        return UserText("%s.%s: %llu referências a objetos que não foram lidos");
    }
    return {};
}

UserText Sentence(TFieldFault fault) {
    switch (fault) {
    case TFieldFault::NotInClass:
        return UserText("%s.%s: o campo do arquivo não existe mais; seus valores não foram lidos");
    case TFieldFault::NotInFile:
        return UserText("%s.%s: o arquivo não tem o campo, que fica com o valor inicial");
    case TFieldFault::OtherKind:
        return UserText("%s.%s: o campo do arquivo é de outro tipo; seus valores não foram lidos");
    }
    return {};
}

} // namespace

TZoReadReport::TZoReadReport() = default;
TZoReadReport::TZoReadReport(const TZoReadReport&) = default;
TZoReadReport::TZoReadReport(TZoReadReport&&) noexcept = default;
TZoReadReport& TZoReadReport::operator=(const TZoReadReport&) = default;
TZoReadReport& TZoReadReport::operator=(TZoReadReport&&) noexcept = default;
TZoReadReport::~TZoReadReport() = default;

XRefusedData::XRefusedData(const TZoReadReport& itsReport, const ZoString& location)
    : XReadStream(itsReport.Text(), location, TStreamFailure::Damaged), report(itsReport) {}
XRefusedData::XRefusedData(const XRefusedData&) = default;
XRefusedData& XRefusedData::operator=(const XRefusedData&) = default;
XRefusedData::~XRefusedData() = default;

unsigned TZoReadReport::Faults() const {
    unsigned faults = strictNothing;
    if (wrongDigest || passedOver.NItems() != 0 || read < expected) faults |= strictDamage;
    for (const LostClass& lost : lostClasses) {
        if (lost.lost != 0 || lost.read > lost.kept) faults |= strictClasses;
    }
    if (removed.NItems() != 0) faults |= strictInvalid;
    for (const Field& field : fields) {
        if (field.fault != TFieldFault::NotInFile && !field.kept) faults |= strictFields;
    }
    for (const Reference& reference : references) {
        if (reference.why != TReferenceLoss::NotRead) faults |= strictReferences;
    }
    return faults;
}

bool TZoReadReport::IsClean() const {
    return Faults() == strictNothing && lostClasses.NItems() == 0 && fields.NItems() == 0 &&
           references.NItems() == 0;
}

ZoString TZoReadReport::Text() const {
    Lines lines;
    if (wrongDigest)
        lines.Add(UserText("O conteúdo não é o que foi salvo: registros faltam, sobram ou trocaram de lugar, "
                           "classe ou número"));
    if (read < expected) lines.Add(UserText("Faltam %llu de %llu registros"), expected - read, expected);
    unsigned long long told = 0;
    for (const TZoPassedOver& stretch : passedOver) {
        if (++told > MOST_TOLD) break;
        lines.Add(UserText("%llu bytes ilegíveis a partir do byte %llu (%u registros danificados)"),
                  stretch.size, stretch.offset, stretch.records);
    }
    if (told > MOST_TOLD)
        lines.Add(UserText("... e mais %llu trechos ilegíveis"), passedOver.NItems() - MOST_TOLD);
    for (const LostClass& lost : lostClasses) {
        if (lost.read != 0)
            lines.Add(UserText("Classe %s desconhecida: %llu objetos lidos como %s"), lost.name.c_str(),
                      lost.read, lost.readAs.c_str());
        if (lost.lost != 0)
            lines.Add(lost.known ? UserText("Classe %s: %llu objetos não foram criados")
                                 : UserText("Classe %s desconhecida: %llu objetos perdidos"),
                      lost.name.c_str(), lost.lost);
        if (lost.kept != 0)
            lines.Add(UserText("Classe %s: %llu objetos preservados"), lost.name.c_str(), lost.kept);
    }
    for (const Field& field : fields)
        lines.Add(field.kept
                      ? UserText("%s.%s: os valores do campo do arquivo, que é desconhecido, são preservados")
                      : Sentence(field.fault),
                  field.className.c_str(), field.name.c_str());
    for (const Reference& reference : references)
        lines.Add(Sentence(reference.why), reference.className.c_str(), reference.field.c_str(),
                  reference.count);
    for (const Removed& gone : removed)
        lines.Add(UserText("Classe %s: %llu objetos inválidos retirados, e %llu que só eles possuíam"),
                  gone.className.c_str(), gone.invalid, gone.owned);
    return lines.Whole();
}

ZoString TZoReadReport::Json() const {
    ZoPrimitives::Json json;
    json.Open('{').Key("expected").Number(expected).Key("read").Number(read);
    json.Key("partial").Boolean(partial).Key("wrongDigest").Boolean(wrongDigest);
    json.Key("passedOver").Open('[');
    for (const TZoPassedOver& stretch : passedOver) {
        json.Open('{').Key("offset").Number(stretch.offset).Key("size").Number(stretch.size);
        json.Key("records").Number(stretch.records).Close('}');
    }
    json.Close(']').Key("lostClasses").Open('[');
    for (const LostClass& lost : lostClasses) {
        json.Open('{').Key("name").Text(lost.name).Key("known").Boolean(lost.known);
        json.Key("readAs").Text(lost.readAs).Key("read").Number(lost.read);
        json.Key("lost").Number(lost.lost).Key("kept").Number(lost.kept).Close('}');
    }
    json.Close(']').Key("fields").Open('[');
    for (const Field& field : fields) {
        json.Open('{').Key("class").Text(field.className).Key("name").Text(field.name);
        json.Key("fault").Text(NameOf(field.fault)).Key("fileKind").Integer(field.fileKind);
        json.Key("classKind").Integer(field.classKind).Key("kept").Boolean(field.kept).Close('}');
    }
    json.Close(']').Key("references").Open('[');
    for (const Reference& reference : references) {
        json.Open('{').Key("class").Text(reference.className).Key("field").Text(reference.field);
        json.Key("why").Text(NameOf(reference.why)).Key("count").Number(reference.count).Close('}');
    }
    json.Close(']').Key("removed").Open('[');
    for (const Removed& gone : removed) {
        json.Open('{').Key("class").Text(gone.className).Key("invalid").Number(gone.invalid);
        json.Key("owned").Number(gone.owned).Close('}');
    }
    return json.Close(']').Close('}').Whole();
}

} // namespace ZoPrimitives
