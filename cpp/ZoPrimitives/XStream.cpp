#include "ZoPrimitives/XStream.h"

#include "ZoPrimitives/UserText.h"

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
    : XWriteStream(Translated("Espaço em disco insuficiente."), where,
                   {TStreamFailure::DiskFull, systemCode}) {}
XWriteStreamOutOfSpace::~XWriteStreamOutOfSpace() = default;

XNotReplaced::XNotReplaced(const XWriteStream& reason, const TZoPath& path)
    : XWriteStream(reason), writtenPath(path) {}
XNotReplaced::XNotReplaced(const XNotReplaced&) = default;
XNotReplaced& XNotReplaced::operator=(const XNotReplaced&) = default;
XNotReplaced::~XNotReplaced() = default;

XWrongDigest::XWrongDigest(const ZoString& where)
    : XReadStream(Translated("Arquivo corrompido"), where, TStreamFailure::Damaged) {}
XWrongDigest::~XWrongDigest() = default;

XCancelled::XCancelled(const ZoString& where)
    : XStream(Translated("Operação cancelada"), where, TStreamFailure::Cancelled) {}
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
    : XReadStream(ZoString::FormatString(
                      Translated("Partes de uma versão mais nova não podem ser preservadas: %s%s%s"),
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
XInvalidLanguage::XInvalidLanguage(const ZoString& name, const ZoString& where)
    : XReadStream(ZoString::FormatString(
                      Translated("O idioma \"%s\" é desconhecido. Use pt-BR, en-US ou es-MX."), name.c_str()),
                  where) {}
XInvalidLanguage::~XInvalidLanguage() = default;

XInvalidVersion::XInvalidVersion() : XReadStream("", "") {}
XInvalidVersion::~XInvalidVersion() = default;

} // namespace ZoPrimitives
