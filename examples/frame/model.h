#pragma once

// The building frame: its classes, and how they describe themselves to the library to be saved.
//
// Values with a unit are the library's quantities. Their storage units are consistent (kgf, cm), so
// intermediate results are plain numbers in these units: cm times kgf/cm is kgf. Points are in cm; X runs to
// the right and Y upward from the ground. Texts are Windows-1252.

#include "words.h"

#include "ZoPrimitives/ConvertionHelper.h"
#include "ZoPrimitives/Point3D.h"
#include "ZoPrimitives/TTimestamp.h"
#include "ZoPrimitives/ZoRegister.h"
#include "ZoPrimitives/grandeza.h"

namespace Frame {

using ZoPrimitives::GArea;
using ZoPrimitives::GComprimento;
using ZoPrimitives::GForcaConcentrada;
using ZoPrimitives::GForcaLinear;
using ZoPrimitives::GInercia;
using ZoPrimitives::GPeso;
using ZoPrimitives::Point3D;
using ZoPrimitives::ZoBlob;
using ZoPrimitives::ZoString;

using ToBusiness = ZoPrimitives::TStreamableToBusinessObjectConvertionHelper;
using FromBusiness = ZoPrimitives::TBusinessToStreamableObjectConvertionHelper;

class Building;

/// Anything with a name.
class Entity : public ZoPrimitives::ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Entity)
    DECLARE_ZO_FIELD(ZoString, name)
    REGISTER_ZO_END

    void Write(ZoPrimitives::OutputStreamer& text) override;
    bool ReadData(int code, ZoPrimitives::InputStreamer& text) override;

    /// The kind of thing, in a word of the current language, in UTF-8.
    virtual std::string Kind() const = 0;
};

/// A manufacturer's table of sections. Buildings refer to it, but none owns it.
class Catalogue : public Entity {
    REGISTER_ZO_BEGIN(Catalogue, Entity)
    DECLARE_ZO_FIELD(unsigned, edition)
    REGISTER_ZO_END

    void Write(ZoPrimitives::OutputStreamer& text) override;
    bool ReadData(int code, ZoPrimitives::InputStreamer& text) override;

    std::string Kind() const override { return Words("catalogue"); }
};

/// The saved form of a `Metal`.
class Material : public Entity {
    REGISTER_ZO_BEGIN(Material, Entity)
    DECLARE_ZO_FIELD_CHILD_VALUE(GPeso, density)
    REGISTER_ZO_END

    void Write(ZoPrimitives::OutputStreamer& text) override;
    bool ReadData(int code, ZoPrimitives::InputStreamer& text) override;
    void HandleExcludedField(ZoPrimitives::TZoClassField* field, ZoPrimitives::TBinInStream* stream) override;

    std::string Kind() const override { return Words("material"); }
    ZoPrimitives::ZoObject* CreateBusinessObject() override;
    void FillBusinessObject(ZoPrimitives::ZoObject* object, ToBusiness* helper) override;
    void FillFromBusinessObject(ZoPrimitives::ZoObject* object, FromBusiness* helper) override;
};

/// A rolled profile of one material: the saved form of a `Profile`.
class Section : public Entity {
    REGISTER_ZO_BEGIN(Section, Entity)
    DECLARE_ZO_FIELD_CHILD_VALUE(GComprimento, depth)
    DECLARE_ZO_FIELD_CHILD_VALUE(GArea, area)
    DECLARE_ZO_FIELD_CHILD_VALUE(GInercia, inertia)
    DECLARE_ZO_FIELD_REFERENCE(Material, material)
    DECLARE_ZO_FIELD_EXTERNAL_REFERENCE(Catalogue, catalogue)
    REGISTER_ZO_END

    void Write(ZoPrimitives::OutputStreamer& text) override;
    bool ReadData(int code, ZoPrimitives::InputStreamer& text) override;
    void HandleExcludedField(ZoPrimitives::TZoClassField* field, ZoPrimitives::TBinInStream* stream) override;

    std::string Kind() const override { return Words("section"); }
    ZoPrimitives::ZoObject* CreateBusinessObject() override;
    void FillBusinessObject(ZoPrimitives::ZoObject* object, ToBusiness* helper) override;
    void FillFromBusinessObject(ZoPrimitives::ZoObject* object, FromBusiness* helper) override;
    /// The weight of its steel per length.
    GForcaLinear LineWeight() const;
};

/// How a section is drawn; its name tells the section's use.
class LegendEntry : public Entity {
    REGISTER_ZO_BEGIN(LegendEntry, Entity)
    DECLARE_ZO_FIELD(int, grey)
    REGISTER_ZO_END

    void Write(ZoPrimitives::OutputStreamer& text) override;
    bool ReadData(int code, ZoPrimitives::InputStreamer& text) override;

    std::string Kind() const override { return Words("legend entry"); }
};

/// The building's location.
class Site : public Entity {
    REGISTER_ZO_BEGIN(Site, Entity)
    DECLARE_ZO_FIELD(bool, seismic)
    REGISTER_ZO_END

    void Write(ZoPrimitives::OutputStreamer& text) override;
    bool ReadData(int code, ZoPrimitives::InputStreamer& text) override;

    std::string Kind() const override { return Words("site"); }
};

class Node : public Entity {
    REGISTER_ZO_BEGIN(Node, Entity)
    DECLARE_ZO_FIELD_CHILD_VALUE(Point3D, place)
    DECLARE_ZO_FIELD(bool, support)
    REGISTER_ZO_END

    void Write(ZoPrimitives::OutputStreamer& text) override;
    bool ReadData(int code, ZoPrimitives::InputStreamer& text) override;
    void HandleExcludedField(ZoPrimitives::TZoClassField* field, ZoPrimitives::TBinInStream* stream) override;

    std::string Kind() const override { return Words("node"); }
};

/// A straight bar between two nodes. The building owns nodes and section.
class Member : public Entity {
    REGISTER_ZO_BEGIN(Member, Entity)
    DECLARE_ZO_FIELD_REFERENCE(Section, section)
    DECLARE_ZO_FIELD_REFERENCE(Node, start)
    DECLARE_ZO_FIELD_REFERENCE(Node, end)
    REGISTER_ZO_END

    void Write(ZoPrimitives::OutputStreamer& text) override;
    bool ReadData(int code, ZoPrimitives::InputStreamer& text) override;

    GComprimento Length() const;
    GForcaConcentrada Weight() const;
};

class Column : public Member {
    REGISTER_ZO_BEGIN(Column, Member)
    DECLARE_ZO_FIELD(bool, exterior)
    REGISTER_ZO_END

    void Write(ZoPrimitives::OutputStreamer& text) override;
    bool ReadData(int code, ZoPrimitives::InputStreamer& text) override;

    std::string Kind() const override { return Words("column"); }
};

class Girder : public Member {
    REGISTER_ZO_BEGIN(Girder, Member)
    DECLARE_ZO_FIELD_CHILD_LIST(GForcaLinear, loads)
    REGISTER_ZO_END

    void Write(ZoPrimitives::OutputStreamer& text) override;
    bool ReadData(int code, ZoPrimitives::InputStreamer& text) override;
    void HandleExcludedField(ZoPrimitives::TZoClassField* field, ZoPrimitives::TBinInStream* stream) override;

    std::string Kind() const override { return Words("girder"); }
    /// The sum of its loads.
    GForcaLinear LineLoad() const;
    GForcaConcentrada TotalLoad() const;
};

/// The columns of a storey and the girders above them.
class Storey : public Entity {
    REGISTER_ZO_BEGIN(Storey, Entity)
    DECLARE_ZO_FIELD(ZoString, mark)
    DECLARE_ZO_FIELD_CHILD_VALUE(GComprimento, level)
    DECLARE_ZO_FIELD_CHILD_VALUE(GComprimento, height)
    DECLARE_ZO_FIELD(bool, underground)
    DECLARE_ZO_FIELD_CHILD_LIST(Member, members)
    DECLARE_ZO_FIELD_REFERENCE(Building, building)
    DECLARE_ZO_FIELD_REFERENCE_LIST(Node, floor)
    REGISTER_ZO_END

    void Write(ZoPrimitives::OutputStreamer& text) override;
    bool ReadData(int code, ZoPrimitives::InputStreamer& text) override;
    void HandleExcludedField(ZoPrimitives::TZoClassField* field, ZoPrimitives::TBinInStream* stream) override;

    std::string Kind() const override { return Words("storey"); }
};

/// The root; owns everything except the catalogue. Storeys are listed from the lowest upward.
class Building : public Entity {
    REGISTER_ZO_BEGIN(Building, Entity)
    DECLARE_ZO_FIELD(ZoString, saved)
    DECLARE_ZO_FIELD(ZoBlob, thumbnail)
    DECLARE_ZO_FIELD_LIST(ZoString, lines)
    DECLARE_ZO_FIELD_CHILD_VALUE(Site, site)
    DECLARE_ZO_FIELD_CHILD_LIST(Material, materials)
    DECLARE_ZO_FIELD_CHILD_LIST(Section, sections)
    DECLARE_ZO_FIELD_CHILD_LIST(Node, nodes)
    DECLARE_ZO_FIELD_CHILD_LIST(Storey, storeys)
    DECLARE_ZO_FIELD_CHILD_MAP(Section, LegendEntry, legend)
    DECLARE_ZO_FIELD_EXTERNAL_REFERENCE(Catalogue, catalogue)
    REGISTER_ZO_END

    void Write(ZoPrimitives::OutputStreamer& text) override;
    bool ReadData(int code, ZoPrimitives::InputStreamer& text) override;

    std::string Kind() const override { return Words("building"); }
    /// The first thing that is missing from the building, such as "column A3 has no section"; empty if it is
    /// complete.
    ZoString FindFault() const;
    /// The time of the last save; the start of 1970 if there was none.
    ZoPrimitives::TTimestamp SavedAt() const;
    /// Stores the time, exact to the tick, as a text in UTC.
    void SavedAt(const ZoPrimitives::TTimestamp& when);
    /// Draws the elevation as a PGM image, each member in its section's grey.
    void DrawThumbnail();
};

/// A building with everything that it refers to, owned or not.
struct Model {
    ZoPrimitives::TIVector<ZoPrimitives::ZoStreamableBase> objects; ///< keeps them alive
    Building* building = nullptr;
};

/// The application's schema.
ZoPrimitives::TZoMetaData& Schema();

} // namespace Frame
