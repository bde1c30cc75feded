#pragma once

namespace ZoPrimitives {

class TBinOutStream;
class TZoClass;
class XZoAssertFailed;
class ZoStreamableBase;

/// If the assertion failed because the object's record is too big, has it tell which field takes most.
void AdviseOnSize(XZoAssertFailed& failure, TBinOutStream& stream, const TZoClass& objectClass,
                  ZoStreamableBase* object);

} // namespace ZoPrimitives
