#include "ZoPrimitives/XStream.h"

#include "ZoPrimitives/AnsiLiteral.h"
#include "ZoPrimitives/TTranslatedString.h"

namespace ZoPrimitives {

XStream::XStream(const ZoString& what, const ZoString& where) : message(what), location(where) {}
XStream::XStream(const XStream&) = default;
XStream& XStream::operator=(const XStream&) = default;
XStream::~XStream() = default;

XReadStream::XReadStream(const ZoString& what, const ZoString& where) : XStream(what, where) {}
XReadStream::~XReadStream() = default;

XWriteStream::XWriteStream(const ZoString& what, const ZoString& where) : XStream(what, where) {}
XWriteStream::~XWriteStream() = default;

XWriteStreamOutOfSpace::XWriteStreamOutOfSpace(const ZoString& where)
    : XWriteStream(TTranslatedString("Espaço em disco insuficiente."_ansi).Text(), where) {}
XWriteStreamOutOfSpace::~XWriteStreamOutOfSpace() = default;

XNotReplaced::XNotReplaced(const XWriteStream& reason, const ZoString& path)
    : XWriteStream(reason), writtenPath(path) {}
XNotReplaced::XNotReplaced(const XNotReplaced&) = default;
XNotReplaced& XNotReplaced::operator=(const XNotReplaced&) = default;
XNotReplaced::~XNotReplaced() = default;

XEndOfStream::XEndOfStream() : XStream("End-of-file", "") {}
XEndOfStream::~XEndOfStream() = default;

XInvalidObject::XInvalidObject() : XReadStream("Invalid object : data still incomplete after read.", "") {}
XInvalidObject::~XInvalidObject() = default;

XNewerVersion::XNewerVersion() : XReadStream("", "") {}
XNewerVersion::~XNewerVersion() = default;

XUnversionableVersion::XUnversionableVersion() : XReadStream("", "") {}
XUnversionableVersion::~XUnversionableVersion() = default;

XInvalidRoot::XInvalidRoot(const ZoString& what, const ZoString& where) : XReadStream(what, where) {}
XInvalidRoot::~XInvalidRoot() = default;

XInvalidFileType::XInvalidFileType() : XReadStream("", "") {}
XInvalidFileType::~XInvalidFileType() = default;

XInvalidLanguage::XInvalidLanguage() : XReadStream("", "") {}
XInvalidLanguage::~XInvalidLanguage() = default;

XInvalidVersion::XInvalidVersion() : XReadStream("", "") {}
XInvalidVersion::~XInvalidVersion() = default;

} // namespace ZoPrimitives
