#include "model.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace Frame {

namespace {

constexpr double CM_PER_METRE = 100;

ZoString Lacks(const Entity& entity, const char* what) {
    return ZoString(entity.Kind()) + " " + entity.name + " has no " + what;
}

/// An image of grey dots; rows run downward.
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

double Member::Length() const { return std::hypot(end->x - start->x, end->y - start->y); }

double Member::Mass() const { return section->MassPerMetre() * Length() / CM_PER_METRE; }

double Girder::TotalLoad() const {
    double load = 0;
    for (double part : loads) load += part;
    return load * Length() / CM_PER_METRE;
}

ZoString Building::FindFault() const {
    for (const auto& section : sections) {
        if (!section) return Lacks(*this, "section where one should be");
        if (!section->material) return Lacks(*section, "material");
    }
    if (storeys.NItems() == 0) return Lacks(*this, "storeys");
    for (const auto& storey : storeys) {
        if (!storey) return Lacks(*this, "storey where one should be");
        if (storey->building.get() != this) return Lacks(*storey, "way back to its building");
        for (const auto& member : storey->members) {
            if (!member) return Lacks(*storey, "member where one should be");
            if (!member->section) return Lacks(*member, "section");
            if (!member->section->material) return Lacks(*member->section, "material");
            if (!member->start || !member->end) return Lacks(*member, "node at one of its ends");
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
        right = std::max(right, node->x);
        bottom = std::min(bottom, node->y);
        top = std::max(top, node->y);
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
                const double x = member->start->x + along * (member->end->x - member->start->x);
                const double y = member->start->y + along * (member->end->y - member->start->y);
                picture.Dot(dots(x), dots(top - y), entry == nullptr ? 0 : entry->grey);
            }
        }
    }
    thumbnail = picture.Bytes();
}

ZoPrimitives::TZoMetaData& Schema() {
    // A class is registered after its parents; the order of the others is free.
    struct Classes : ZoPrimitives::TZoMetaData {
        Classes() {
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
        }
    };
    static Classes classes;
    return classes;
}

} // namespace Frame
