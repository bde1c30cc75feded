#include "Persistence/records/FileAccess.h"

#include "Persistence/records/ErrorText.h"
#include "ZoPrimitives/AnsiLiteral.h"
#include "ZoPrimitives/TTranslatedString.h"
#include "ZoPrimitives/WholeText.h"
#include "ZoPrimitives/XStream.h"

namespace ZoPrimitives {

ZoString FileName(const char* name, const char* suffix) {
    return WholeText({name != nullptr ? name : "", suffix});
}

Platform::FileHandle OpenToRead(const char* name, TFileReading& reading, const char* location) {
    Platform::Services& system = Platform::Current();
    bool viewed = false;
    if (!system.FileExists(name, &viewed)) ThrowUnreadable(name, location);
    if (viewed) reading = TFileReading::Viewing;
    viewed = reading == TFileReading::Viewing;
    const Platform::FileHandle file = system.OpenFile(
        name, viewed ? Platform::Access::Read : Platform::Access::ReadWrite,
        viewed ? Platform::Share::ReadWrite : Platform::Share::Read, Platform::Creation::OpenExisting);
    if (file == nullptr) ThrowUnreadable(name, location);
    return file;
}

bool BeingReplaced(const char* name) {
    return Platform::Current().FileExists(FileName(name, FRESH_SUFFIX).c_str(), nullptr);
}

bool FileIsThere(const ZoString& name, const char* location) {
    if (Platform::Current().FileExists(name.c_str(), nullptr)) return true;
    const unsigned long error = Platform::LastError();
    if (!Platform::NotFound(error)) ThrowUnwritten(error, location, name);
    return false;
}

void RefuseReadOnly(const char* name, const char* location) {
    bool readOnly = false;
    if (Platform::Current().FileExists(name, &readOnly) && readOnly)
        ThrowUnwritten(Platform::ErrorAccessDenied, location, name);
}

void ThrowUnreadable(const char* name, const char* location) {
    const TStreamCause cause = CauseOf(Platform::LastError());
    XReadStream failure(TTranslatedString("Não foi possível ler o arquivo "_ansi).Text() + name, location,
                        cause);
    failure.SetPath(name);
    throw failure;
}

void ThrowUnwritten(unsigned long error, const ZoString& location, const ZoString& path) {
    const TStreamCause cause = CauseOf(error);
    if (cause.kind == TStreamFailure::DiskFull) {
        XWriteStreamOutOfSpace failure(location, cause.systemCode);
        failure.SetPath(path);
        throw failure;
    }
    XWriteStream failure(ErrorText(error), location, cause);
    failure.SetPath(path);
    throw failure;
}

} // namespace ZoPrimitives
