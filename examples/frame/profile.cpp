#include "profile.h"

#include "model.h"

namespace Frame {

using namespace ZoPrimitives;

GForcaLinear Profile::LineWeight() const { return GForcaLinear(area * metal->density); }

GForcaLinear Section::LineWeight() const { return GForcaLinear(area * material->density); }

ZoObjectStreamable* SectionFactory::CreateStreamable(const ZoString& businessClassName) {
    if (businessClassName == "class Frame::Metal") return new Material;
    if (businessClassName == "class Frame::Profile") return new Section;
    return nullptr;
}

ZoObject* Material::CreateBusinessObject() { return new Metal; }

void Material::FillBusinessObject(ZoObject* object, TStreamableToBusinessObjectConvertionHelper*) {
    auto& metal = dynamic_cast<Metal&>(*object);
    metal.name = name;
    metal.density = density;
}

void Material::FillFromBusinessObject(ZoObject* object, TBusinessToStreamableObjectConvertionHelper*) {
    const auto& metal = dynamic_cast<const Metal&>(*object);
    name = metal.name;
    density = metal.density;
}

ZoObject* Section::CreateBusinessObject() { return new Profile; }

void Section::FillBusinessObject(ZoObject* object, TStreamableToBusinessObjectConvertionHelper* helper) {
    auto& profile = dynamic_cast<Profile&>(*object);
    profile.name = name;
    profile.depth = depth;
    profile.area = area;
    profile.inertia = inertia;
    profile.metal = dynamic_cast<Metal*>(helper->Convert(material.get()));
}

void Section::FillFromBusinessObject(ZoObject* object, TBusinessToStreamableObjectConvertionHelper* helper) {
    const auto& profile = dynamic_cast<const Profile&>(*object);
    name = profile.name;
    depth = profile.depth;
    area = profile.area;
    inertia = profile.inertia;
    material = dynamic_cast<Material*>(helper->Convert(profile.metal.get()));
}

} // namespace Frame
