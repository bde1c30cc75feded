#pragma once

// The places that assertions report. Crash reports are compared with those of older versions, so these paths,
// relative to the source root and without extension, and these lines do not change when code moves.
// Assertions not listed here report their actual line.

namespace ZoPrimitives {

/// A place in the sources, as assertions report it.
struct ZoSite {
    const char* source;
    int line;
};

namespace ZoSources {

inline constexpr const char* DVECTOR = "public/include/ZoPrimitives/dvector";
inline constexpr const char* ILIST = "public/include/ZoPrimitives/IList";
inline constexpr const char* IMAP = "public/include/ZoPrimitives/IMap";
inline constexpr const char* IVECTOR = "public/include/ZoPrimitives/IVector";
inline constexpr const char* POINTER = "public/include/ZoPrimitives/pointer";
inline constexpr const char* SDLIST = "public/include/ZoPrimitives/SDList";
inline constexpr const char* ZOSTRING_HEADER = "public/include/ZoPrimitives/ZoString";

inline constexpr const char* GRANDEZA = "cpp/ZoPrimitives/grandeza";
inline constexpr const char* MATH2 = "cpp/ZoPrimitives/Math2";
inline constexpr const char* TTRANSFORMATION = "cpp/ZoPrimitives/TTransformation";
inline constexpr const char* UNIT_TEXT = "cpp/ZoPrimitives/UnitText";
inline constexpr const char* ZOSTRING = "cpp/ZoPrimitives/ZoString";

inline constexpr const char* BIN_OUT_STREAM = "cpp/Persistence/BinOutStream";
inline constexpr const char* BIN_IN_STREAMER = "cpp/Persistence/BinInStreamer";
inline constexpr const char* BIN_OUT_STREAMER = "cpp/Persistence/BinOutStreamer";
inline constexpr const char* CLIPBOARD_BIN_OUT_STREAM = "cpp/Persistence/ClipboardBinOutStream";
inline constexpr const char* CLIPBOARD_OUTPUT_STREAM = "cpp/Persistence/ClipboardOutputStream";
inline constexpr const char* CONVERTION_HELPER = "cpp/Persistence/ConvertionHelper";
inline constexpr const char* FACTORY_MANAGER = "cpp/Persistence/FactoryManager";
inline constexpr const char* FILE_BIN_OUT_STREAM = "cpp/Persistence/FileBinOutStream";
inline constexpr const char* FILE_OUTPUT_STREAM = "cpp/Persistence/FileOutputStream";
inline constexpr const char* TBASE64 = "cpp/Persistence/TBase64";
inline constexpr const char* ZO_SAVE = "cpp/Persistence/ZoSave";
inline constexpr const char* ZOMETADATA = "cpp/Persistence/ZoMetaData";

// ZoString
inline constexpr ZoSite INDEX{ZOSTRING_HEADER, 514};
inline constexpr ZoSite CONST_INDEX{ZOSTRING_HEADER, 524};
inline constexpr ZoSite FIND{ZOSTRING, 645};
inline constexpr ZoSite RFIND{ZOSTRING, 693};
inline constexpr ZoSite TEXT_RFIND{ZOSTRING, 723};

// TBinOutStream
inline constexpr ZoSite PUT_BLOB{BIN_OUT_STREAM, 211};

} // namespace ZoSources

} // namespace ZoPrimitives
