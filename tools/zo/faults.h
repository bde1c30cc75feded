#pragma once

#include "ZoPrimitives/ZoFrames.h"
#include "ZoPrimitives/ZoMetaData.h"

#include <functional>
#include <string>

namespace ZoTool {

enum class FaultKind {
    Header,     ///< out of range, or cut short
    Schema,     ///< missing, or contradicts itself
    Garbage,    ///< bytes that belong to no record
    Checksum,   ///< of a payload
    Marker,     ///< of a record
    Size,       ///< of a record
    Torn,       ///< a record whose end is missing
    Digest,     ///< of all heads
    Uid,        ///< none that can be referred to, or another object has it
    Class,      ///< not in the schema
    Payload,    ///< is not consumed by the fields of the class exactly
    Dangling,   ///< a reference to an object that is not there
    WrongClass, ///< a reference to an object of another class than the field's
    // Notes: the file can be read all the same.
    Unreachable, ///< an object that is neither the root nor referred to by what the root leads to
    Order,       ///< uids do not rise
    Count,       ///< the header's differs
    Undecided,   ///< the records do not tell how a field stands in them
    Extra        ///< an extra block, or a digest, that this program does not know
};

inline bool IsNote(FaultKind kind) { return kind >= FaultKind::Unreachable; }

/// One thing that is wrong with a file.
struct Fault {
    FaultKind kind;
    std::string text; ///< UTF-8, one line
    unsigned long long offset = 0;
    unsigned long long number = 0; ///< of the record; 0: it belongs to none
    int uid = 0;
    std::string className{}; ///< empty if it is not known
};

/// Where it is: "offset 28, record 2, uid 1 (Node)".
std::string PlaceOf(const Fault& fault);

/// What is wrong with a frame. `hasPayload`: its payload is whole all the same.
Fault FrameFault(const ZoPrimitives::TZoFrame& frame, bool hasPayload, std::string className);

/// The class that the objects of a field have, as far as its declaration tells; null: any.
const ZoPrimitives::TZoClass* WantedClass(const ZoPrimitives::TZoClassField& field);

/// Finds what is wrong with a file, in passes over its records: its memory is 9 bytes an object, or 25 where
/// records stand in another order than references lead to them or only references tell how a list stands.
class FaultFinder {
public:
    /// `quick`: payloads are neither read nor checked where heads and digest show no damage.
    FaultFinder(ZoPrimitives::TZoBytes& itsBytes, bool isQuick) : bytes(itsBytes), quick(isQuick) {}

    /// Hands each fault to `take`, those of frames first. `show` (may be empty) is told how far it is, in
    /// bytes of `Work`.
    void Find(const std::function<void(const Fault&)>& take,
              const std::function<void(unsigned long long)>& show = {});
    unsigned long long Work() const { return bytes.GetSize() * (quick ? 1 : 2); }

private:
    ZoPrimitives::TZoBytes& bytes;
    bool quick;
};

} // namespace ZoTool
