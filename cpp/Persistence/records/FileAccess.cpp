#include "Persistence/records/FileAccess.h"

#include "Persistence/records/ErrorText.h"
#include "ZoPrimitives/UserText.h"
#include "ZoPrimitives/XStream.h"

namespace ZoPrimitives {

Platform::FileHandle OpenToRead(const TZoPath& name, TFileReading& reading, const char* location) {
    Platform::Services& system = Platform::Current();
    bool viewed = false;
    if (!system.FileExists(name.Utf8().c_str(), &viewed)) ThrowUnreadable(name, location);
    if (viewed) reading = TFileReading::Viewing;
    viewed = reading == TFileReading::Viewing;
    const Platform::FileHandle file = system.OpenFile(
        name.Utf8().c_str(), viewed ? Platform::Access::Read : Platform::Access::ReadWrite,
        viewed ? Platform::Share::ReadWrite : Platform::Share::Read, Platform::Creation::OpenExisting);
    if (file == nullptr) ThrowUnreadable(name, location);
    return file;
}

bool BeingReplaced(const TZoPath& name) {
    return Platform::Current().FileExists(name.With(FRESH_SUFFIX).Utf8().c_str(), nullptr);
}

bool FileIsThere(const TZoPath& name, const char* location) {
    if (Platform::Current().FileExists(name.Utf8().c_str(), nullptr)) return true;
    const unsigned long error = Platform::LastError();
    if (!Platform::NotFound(error)) ThrowUnwritten(error, location, name);
    return false;
}

void RefuseReadOnly(const TZoPath& name, const char* location) {
    bool readOnly = false;
    if (Platform::Current().FileExists(name.Utf8().c_str(), &readOnly) && readOnly)
        ThrowUnwritten(Platform::ErrorAccessDenied, location, name);
}

void ThrowUnreadable(const TZoPath& name, const char* location) {
    const TStreamCause cause = CauseOf(Platform::LastError());
    XReadStream failure(Translated("Não foi possível ler o arquivo ") + name.Text(), location, cause);
    failure.SetPath(name);
    throw failure;
}

void ThrowUnwritten(unsigned long error, const ZoString& location, const TZoPath& path) {
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
