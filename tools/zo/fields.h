#pragma once

#include "ZoPrimitives/ZoMetaData.h"

#include <string>
#include <vector>

namespace ZoTool {

/// The kind in one or a few words, such as "list of double" or "reference".
const char* KindName(ZoPrimitives::TZoClassFieldType kind);

/// The kind with the class that it points to, such as "owned list of Girder".
std::string TypeOf(const ZoPrimitives::TZoClassField& field);

/// The classes of a schema in its order, for loops.
std::vector<ZoPrimitives::TZoClass*> ClassesOf(const ZoPrimitives::TZoMetaData& schema);
/// A class's own fields in record order.
std::vector<ZoPrimitives::TZoClassField*> OwnFields(ZoPrimitives::TZoClass& type);
/// Inherited and own fields in record order; those of a parent that is inherited twice come twice.
std::vector<ZoPrimitives::TZoClassField*> AllFields(ZoPrimitives::TZoClass& type);
/// A name for each of these, in UTF-8: the field's own, or "Class.field" where one before it, or one of
/// `taken`, has that (capital letters do not count).
std::vector<std::string> UniqueNames(const std::vector<ZoPrimitives::TZoClassField*>& fields,
                                     const std::vector<std::string>& taken = {});
/// ASCII letters in small, as SQLite compares names.
std::string Lower(std::string text);
std::vector<ZoPrimitives::TZoClass*> ParentsOf(const ZoPrimitives::TZoClass& type);

} // namespace ZoTool
