#include "model.h"

#include "ZoPrimitives/BinInStream.h"
#include "ZoPrimitives/ZoUtf8.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace Frame {

using namespace ZoPrimitives;

namespace {

constexpr const char* TIME_FORMAT = "%Y-%m-%dT%H:%M:%E7SZ";

/// `sentence` has the entity's kind and name as {1}.
ZoString Lacks(const Entity& entity, const char* sentence) {
    return ZoFromUtf8(Words(sentence, {entity.Kind() + " " + ZoToUtf8(entity.name)}).c_str());
}

/// A greyscale image; rows run downward.
class Picture {
public:
    Picture(int columns, int rows)
        : width(columns), height(rows), head("P5\n" + Number(width) + " " + Number(height) + "\n255\n"),
          bytes(head + std::string(static_cast<std::size_t>(width * height), '\xFF')) {}

    void Dot(int column, int row, int grey) {
        const int place = std::clamp(row, 0, height - 1) * width + std::clamp(column, 0, width - 1);
        bytes[head.size() + static_cast<std::size_t>(place)] = static_cast<char>(grey);
    }
    ZoBlob Bytes() const { return ZoBlob(bytes.data(), bytes.size()); }

private:
    static std::string Number(int value) { return ZoString(value).c_str(); }

    int width;
    int height;
    std::string head;
    std::string bytes;
};

} // namespace

GComprimento Member::Length() const { return GComprimento(start->place.Distance(end->place)); }

GForcaConcentrada Member::Weight() const { return GForcaConcentrada(section->LineWeight() * Length()); }

GForcaLinear Girder::LineLoad() const {
    GForcaLinear load(0.0);
    for (const auto& part : loads) load += *part;
    return load;
}

GForcaConcentrada Girder::TotalLoad() const { return GForcaConcentrada(LineLoad() * Length()); }

TTimestamp Building::SavedAt() const {
    return TTimestamp::IsValid(saved, TIME_FORMAT) ? TTimestamp(saved, TIME_FORMAT) : TTimestamp::MinValue();
}

void Building::SavedAt(const TTimestamp& when) { saved = when.InUTCTime(TIME_FORMAT); }

ZoString Building::FindFault() const {
    for (const auto& section : sections) {
        if (!section) return Lacks(*this, "{1} has no section where one should be");
        if (!section->material) return Lacks(*section, "{1} has no material");
    }
    if (storeys.NItems() == 0) return Lacks(*this, "{1} has no storeys");
    for (const auto& storey : storeys) {
        if (!storey) return Lacks(*this, "{1} has no storey where one should be");
        if (storey->building.get() != this) return Lacks(*storey, "{1} has no way back to its building");
        for (const auto& member : storey->members) {
            if (!member) return Lacks(*storey, "{1} has no member where one should be");
            if (!member->section) return Lacks(*member, "{1} has no section");
            if (!member->section->material) return Lacks(*member->section, "{1} has no material");
            if (!member->start || !member->end) return Lacks(*member, "{1} has no node at one of its ends");
            const auto* girder = dynamic_cast<const Girder*>(member.get());
            if (girder == nullptr) continue;
            for (const auto& load : girder->loads) {
                if (!load) return Lacks(*girder, "{1} has no load where one should be");
            }
        }
    }
    return ZoString();
}

void Building::DrawThumbnail() {
    constexpr int width = 64;
    double right = 0;
    double bottom = 0;
    double top = 0;
    for (const auto& node : nodes) {
        right = std::max(right, node->place.X());
        bottom = std::min(bottom, node->place.Y());
        top = std::max(top, node->place.Y());
    }
    const double scale = (width - 1) / right;
    const auto dots = [scale](double length) { return static_cast<int>(std::lround(length * scale)); };
    Picture picture(width, dots(top - bottom) + 1);
    for (const auto& storey : storeys) {
        for (const auto& member : storey->members) {
            const LegendEntry* entry = legend.Find(member->section.get());
            const int steps = std::max(dots(member->Length()), 1);
            for (int i = 0; i <= steps; ++i) {
                const double along = static_cast<double>(i) / steps;
                const Point3D point =
                    member->start->place.InterpolaPontoComPercentual(member->end->place, along);
                picture.Dot(dots(point.X()), dots(top - point.Y()), entry == nullptr ? 0 : entry->grey);
            }
        }
    }
    thumbnail = picture.Bytes();
}

TZoMetaData& Schema() {
    // Register a class after its parents; otherwise the order is free.
    struct Classes : TZoMetaData {
        Classes() {
            Grandeza::Register(this);
            GArea::Register(this);
            GComprimento::Register(this);
            GForcaLinear::Register(this);
            GInercia::Register(this);
            GPeso::Register(this);
            Point3D::Register(this);
            Entity::Register(this);
            Catalogue::Register(this);
            Material::Register(this);
            Section::Register(this);
            LegendEntry::Register(this);
            Site::Register(this);
            Node::Register(this);
            Member::Register(this);
            Column::Register(this);
            Girder::Register(this);
            Storey::Register(this);
            Building::Register(this);
            CheckOrThrow();
        }
    };
    static Classes classes;
    return classes;
}

} // namespace Frame
