#include "Persistence/FileAccess.h"

#include "Persistence/ErrorText.h"
#include "ZoPrimitives/AnsiLiteral.h"
#include "ZoPrimitives/TTranslatedString.h"
#include "ZoPrimitives/XStream.h"

namespace ZoPrimitives {

Platform::FileHandle OpenToRead(const char* name, const char* location) {
    Platform::Services& system = Platform::Current();
    bool readOnly = false;
    system.FileExists(name, &readOnly);
    const Platform::FileHandle file = system.OpenFile(
        name, readOnly ? Platform::Access::Read : Platform::Access::ReadWrite,
        readOnly ? Platform::Share::ReadWrite : Platform::Share::Read, Platform::Creation::OpenExisting);
    if (file == nullptr) ThrowUnreadable(name, location);
    return file;
}

void ThrowUnreadable(const char* name, const char* location) {
    throw XReadStream(TTranslatedString("Não foi possível ler o arquivo "_ansi).Text() + name, location);
}

void ThrowUnwritten(unsigned long error, const ZoString& location) {
    if (error == Platform::ErrorDiskFull || error == Platform::ErrorHandleDiskFull)
        throw XWriteStreamOutOfSpace(location);
    throw XWriteStream(ErrorText(error), location);
}

} // namespace ZoPrimitives
