#include "ZoPrimitives/XStream.h"

#include "ZoPrimitives/AnsiLiteral.h"
#include "ZoPrimitives/TTranslatedString.h"

namespace ZoPrimitives {

XStream::XStream(const ZoString& what, const ZoString& where, TStreamCause why)
    : message(what), location(where), cause(why) {}
XStream::XStream(const XStream&) = default;
XStream& XStream::operator=(const XStream&) = default;
XStream::~XStream() = default;

XStream& XStream::SetPath(const TZoPath& file) {
    if (path.IsEmpty()) path = file;
    return *this;
}

XReadStream::XReadStream(const ZoString& what, const ZoString& where, TStreamCause why)
    : XStream(what, where, why) {}
XReadStream::~XReadStream() = default;

XWriteStream::XWriteStream(const ZoString& what, const ZoString& where, TStreamCause why)
    : XStream(what, where, why) {}
XWriteStream::~XWriteStream() = default;

XWriteStreamOutOfSpace::XWriteStreamOutOfSpace(const ZoString& where, unsigned systemCode)
    : XWriteStream(TTranslatedString("Espaço em disco insuficiente."_ansi).Text(), where,
                   {TStreamFailure::DiskFull, systemCode}) {}
XWriteStreamOutOfSpace::~XWriteStreamOutOfSpace() = default;

XNotReplaced::XNotReplaced(const XWriteStream& reason, const TZoPath& path)
    : XWriteStream(reason), writtenPath(path) {}
XNotReplaced::XNotReplaced(const XNotReplaced&) = default;
XNotReplaced& XNotReplaced::operator=(const XNotReplaced&) = default;
XNotReplaced::~XNotReplaced() = default;

XWrongDigest::XWrongDigest(const ZoString& where)
    : XReadStream(TTranslatedString("Arquivo corrompido").Text(), where, TStreamFailure::Damaged) {}
XWrongDigest::~XWrongDigest() = default;

XCancelled::XCancelled(const ZoString& where)
    : XStream(TTranslatedString("Operação cancelada"_ansi).Text(), where, TStreamFailure::Cancelled) {}
XCancelled::~XCancelled() = default;

XEndOfStream::XEndOfStream() : XStream("End-of-file", "", TStreamFailure::Truncated) {}
XEndOfStream::~XEndOfStream() = default;

XInvalidObject::XInvalidObject()
    : XReadStream("Invalid object : data still incomplete after read.", "", TStreamFailure::Damaged) {}
XInvalidObject::~XInvalidObject() = default;

XNewerVersion::XNewerVersion(unsigned file, unsigned supported)
    : XReadStream("", "", TStreamFailure::TooNew), fileVersion(file), supportedVersion(supported) {}
XNewerVersion::~XNewerVersion() = default;

XCannotKeep::XCannotKeep(const ZoString& itsClass, const ZoString& itsField, const ZoString& where)
    : XReadStream(
          ZoString::FormatString(
              TTranslatedString("Partes de uma versão mais nova não podem ser preservadas: %s%s%s"_ansi)
                  .Text()
                  .c_str(),
              itsClass.c_str(), itsField.length() != 0 ? "." : "", itsField.c_str()),
          where, TStreamFailure::TooNew),
      className(itsClass), field(itsField) {}
XCannotKeep::XCannotKeep(const XCannotKeep&) = default;
XCannotKeep& XCannotKeep::operator=(const XCannotKeep&) = default;
XCannotKeep::~XCannotKeep() = default;

XUnversionableVersion::XUnversionableVersion() : XReadStream("", "", TStreamFailure::TooOld) {}
XUnversionableVersion::~XUnversionableVersion() = default;

XInvalidRoot::XInvalidRoot(const ZoString& what, const ZoString& where)
    : XReadStream(what, where, TStreamFailure::WrongFile) {}
XInvalidRoot::~XInvalidRoot() = default;

XInvalidFileType::XInvalidFileType() : XReadStream("", "", TStreamFailure::WrongFile) {}
XInvalidFileType::~XInvalidFileType() = default;

XInvalidLanguage::XInvalidLanguage() : XReadStream("", "") {}
XInvalidLanguage::~XInvalidLanguage() = default;

XInvalidVersion::XInvalidVersion() : XReadStream("", "") {}
XInvalidVersion::~XInvalidVersion() = default;

} // namespace ZoPrimitives
