// The text form of each class, code by code. A class writes after its parent and leaves unknown codes to it.

#include "grammar.h"
#include "model.h"
#include "words.h"

#include "ZoPrimitives/TBase64.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoUtf8.h"

#include <cstdlib>
#include <memory>

namespace Frame {

using namespace ZoPrimitives;

namespace {

/// Codes from 10 upward are the class's own; lower ones are common to all entities.
enum Code { codeName = 1, codeOwn = 10, codePointer = 100, codeGroup = 200 };

double Number(InputStreamer& text) {
    double number = 0;
    text >> number;
    return number;
}

ZoString Encoded(const ZoBlob& blob) {
    ZoBlob copy(blob);
    return TBase64::EncodeBlock(static_cast<unsigned char*>(copy.Data()),
                                static_cast<unsigned long>(copy.Size()));
}

ZoBlob Decoded(ZoString text) {
    unsigned long size = 0;
    const unsigned length = text.length();
    if (length == 0) return ZoBlob();
    const std::unique_ptr<unsigned char, void (*)(void*)> bytes(
        TBase64::DecodeBlock(reinterpret_cast<unsigned char*>(&text[0]), length, size), std::free);
    if (bytes == nullptr)
        throw XReadStream(ZoFromUtf8(Words("The picture is no Base64").c_str()), "Frame::Building");
    return ZoBlob(bytes.get(), size);
}

} // namespace

void Entity::Write(OutputStreamer& text) {
    ZoStreamableBase::Write(text);
    text.MultiLineText(name, codeName);
}

bool Entity::ReadData(int code, InputStreamer& text) {
    if (code == codeName) return TextReader::Of(text).TakeLine(name), true;
    if (!ZoStreamableBase::ReadData(code, text)) TextReader::Of(text).SkipValueOf(code);
    return true;
}

void Catalogue::Write(OutputStreamer& text) {
    Entity::Write(text);
    text << codeOwn << edition;
}

bool Catalogue::ReadData(int code, InputStreamer& text) {
    if (code != codeOwn) return Entity::ReadData(code, text);
    text >> edition;
    return true;
}

void Material::Write(OutputStreamer& text) {
    Entity::Write(text);
    text << codeOwn << density.kgf_m3();
}

bool Material::ReadData(int code, InputStreamer& text) {
    if (code != codeOwn) return Entity::ReadData(code, text);
    density.Valor(Number(text), TPeso::kgf_m3);
    return true;
}

void Section::Write(OutputStreamer& text) {
    Entity::Write(text);
    text << codeOwn << depth.cm() << codeOwn + 1 << area.cm2() << codeOwn + 2 << inertia.cm4() << codePointer;
    PutPointer(text, material.get());
    text << codePointer + 1;
    PutPointer(text, catalogue.get());
}

bool Section::ReadData(int code, InputStreamer& text) {
    switch (code) {
    case codeOwn:
        depth.Valor(Number(text), TComprimento::cm);
        return true;
    case codeOwn + 1:
        area.Valor(Number(text), TArea::cm2);
        return true;
    case codeOwn + 2:
        inertia.Valor(Number(text), TInercia::cm4);
        return true;
    case codePointer:
        TextReader::Of(text).TakePointer(material);
        return true;
    case codePointer + 1:
        TextReader::Of(text).TakePointer(catalogue);
        return true;
    default:
        return Entity::ReadData(code, text);
    }
}

void LegendEntry::Write(OutputStreamer& text) {
    Entity::Write(text);
    text << codeOwn << grey;
}

bool LegendEntry::ReadData(int code, InputStreamer& text) {
    if (code != codeOwn) return Entity::ReadData(code, text);
    text >> grey;
    return true;
}

void Site::Write(OutputStreamer& text) {
    Entity::Write(text);
    text << codeOwn << seismic;
}

bool Site::ReadData(int code, InputStreamer& text) {
    if (code != codeOwn) return Entity::ReadData(code, text);
    text >> seismic;
    return true;
}

void Node::Write(OutputStreamer& text) {
    Entity::Write(text);
    text << codeOwn << place.X() << codeOwn + 1 << place.Y() << codeOwn + 2 << support;
    if (place.Z() != 0) text << codeOwn + 3 << place.Z();
}

bool Node::ReadData(int code, InputStreamer& text) {
    switch (code) {
    case codeOwn:
        place.X(Number(text));
        return true;
    case codeOwn + 1:
        place.Y(Number(text));
        return true;
    case codeOwn + 2:
        text >> support;
        return true;
    case codeOwn + 3:
        place.Z(Number(text));
        return true;
    default:
        return Entity::ReadData(code, text);
    }
}

void Member::Write(OutputStreamer& text) {
    Entity::Write(text);
    text << codePointer;
    PutPointer(text, section.get());
    text << codePointer + 1;
    PutPointer(text, start.get());
    text << codePointer + 2;
    PutPointer(text, end.get());
}

bool Member::ReadData(int code, InputStreamer& text) {
    switch (code) {
    case codePointer:
        TextReader::Of(text).TakePointer(section);
        return true;
    case codePointer + 1:
        TextReader::Of(text).TakePointer(start);
        return true;
    case codePointer + 2:
        TextReader::Of(text).TakePointer(end);
        return true;
    default:
        return Entity::ReadData(code, text);
    }
}

void Column::Write(OutputStreamer& text) {
    Member::Write(text);
    text << codeOwn << exterior;
}

bool Column::ReadData(int code, InputStreamer& text) {
    if (code != codeOwn) return Member::ReadData(code, text);
    text >> exterior;
    return true;
}

void Girder::Write(OutputStreamer& text) {
    Member::Write(text);
    for (const auto& load : loads) text << codeOwn << load->kN_m();
}

bool Girder::ReadData(int code, InputStreamer& text) {
    if (code != codeOwn) return Member::ReadData(code, text);
    loads.Add(new GForcaLinear(Number(text), TForcaLinear::kN_m));
    return true;
}

void Storey::Write(OutputStreamer& text) {
    Entity::Write(text);
    text.MultiLineText(mark, codeOwn);
    text << codeOwn + 1 << level.cm() << codeOwn + 2 << height.cm() << codeOwn + 3 << underground
         << codePointer;
    PutPointer(text, building.get());
    text << codeGroup;
    PutGroup(text, floor);
    text << codeGroup + 1;
    PutGroup(text, members);
}

bool Storey::ReadData(int code, InputStreamer& text) {
    switch (code) {
    case codeOwn:
        TextReader::Of(text).TakeLine(mark);
        return true;
    case codeOwn + 1:
        level.Valor(Number(text), TComprimento::cm);
        return true;
    case codeOwn + 2:
        height.Valor(Number(text), TComprimento::cm);
        return true;
    case codeOwn + 3:
        text >> underground;
        return true;
    case codePointer:
        TextReader::Of(text).TakePointer(building);
        return true;
    case codeGroup:
        TextReader::Of(text).TakeGroup<Node>(floor);
        return true;
    case codeGroup + 1:
        TextReader::Of(text).TakeGroup<Member>(members);
        return true;
    default:
        return Entity::ReadData(code, text);
    }
}

void Building::Write(OutputStreamer& text) {
    Entity::Write(text);
    if (thumbnail.Size() != 0) text << codeOwn << Encoded(thumbnail);
    int number = 0;
    for (const ZoString& line : lines) {
        text << codeOwn + 1 << ++number; // starts a new line, even an empty one
        text.MultiLineText(line, codeOwn + 2);
    }
    text.MultiLineText(saved, codeOwn + 3);
    text << codePointer;
    PutPointer(text, &site);
    text << codePointer + 1;
    PutPointer(text, catalogue.get());
    text << codeGroup;
    PutGroup(text, materials);
    text << codeGroup + 1;
    PutGroup(text, sections);
    text << codeGroup + 2;
    PutGroup(text, nodes);
    text << codeGroup + 3;
    PutGroup(text, storeys);
    text << codeGroup + 4;
    for (unsigned long long i = 1; i <= legend.NItems(); ++i) {
        PutPointer(text, legend.KeyAt(i).get());
        PutPointer(text, legend.ValueAt(i).get());
    }
    EndGroup(text);
}

bool Building::ReadData(int code, InputStreamer& text) {
    TextReader& reader = TextReader::Of(text);
    switch (code) {
    case codeOwn: {
        ZoString encoded;
        text >> encoded;
        thumbnail = Decoded(encoded);
        return true;
    }
    case codeOwn + 1:
        reader.FinishText(); // adding a line moves the list's items
        reader.SkipValue();
        lines.Add(ZoString());
        return true;
    case codeOwn + 2:
        if (lines.NItems() == 0) return false;
        reader.TakeLine(lines.Last());
        return true;
    case codeOwn + 3:
        reader.TakeLine(saved);
        return true;
    case codePointer:
        reader.TakeMember(site);
        return true;
    case codePointer + 1:
        reader.TakePointer(catalogue);
        return true;
    case codeGroup:
        reader.TakeGroup<Material>(materials);
        return true;
    case codeGroup + 1:
        reader.TakeGroup<Section>(sections);
        return true;
    case codeGroup + 2:
        reader.TakeGroup<Node>(nodes);
        return true;
    case codeGroup + 3:
        reader.TakeGroup<Storey>(storeys);
        return true;
    case codeGroup + 4:
        reader.TakeLegend(legend);
        return true;
    default:
        return Entity::ReadData(code, text);
    }
}

} // namespace Frame
