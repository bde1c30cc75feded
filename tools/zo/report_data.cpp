#include "report_data.h"

#include "diagram.h"
#include "fields.h"
#include "markup.h"
#include "page_json.h"
#include "text.h"
#include "tool.h"
#include "words.h"

#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoRecords.h"
#include "ZoPrimitives/ZoVersion.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <unordered_map>

namespace ZoTool {

using namespace ZoPrimitives;

namespace {

constexpr std::size_t MOST_CLASSES_DRAWN = 400;

/// Texts of files, each once.
class Texts {
public:
    int IndexOf(std::string_view windows1252) {
        const auto [place, isNew] =
            indices.try_emplace(std::string(windows1252), static_cast<int>(indices.size()));
        if (isNew) all.push_back(place->first);
        return place->second;
    }
    void Put(Json& json) const {
        json.List(all, [&](std::string_view one) { json.PutText(Utf8(one)); });
    }

private:
    std::unordered_map<std::string, int> indices;
    std::vector<std::string_view> all; // keys of a map stay where they are
};

/// Stretches of the file, from its beginning to its end.
class ByteMap {
public:
    // Besides the places of classes.
    enum Part : int { Header = -1, Schema = -2, Damaged = -3, Stray = -4, Unknown = -5, Several = -6 };

    void Add(int what, unsigned long long length) {
        if (length == 0) return;
        if (!parts.empty() && parts.back() == what) {
            lengths.back() += length;
        } else {
            parts.push_back(what);
            lengths.push_back(length);
        }
    }
    /// Where there are too many stretches, neighbours become one; damage stays by
    /// itself.
    void Put(Json& json, std::size_t most) {
        const auto isDamage = [](int part) { return part <= Damaged && part >= Unknown; };
        for (unsigned long long width = 256; parts.size() > most && width < (1ULL << 60); width *= 2) {
            ByteMap coarse;
            for (std::size_t i = 0; i < parts.size(); ++i) {
                const bool joins = !coarse.parts.empty() && coarse.lengths.back() + lengths[i] <= width &&
                                   !isDamage(parts[i]) && !isDamage(coarse.parts.back()) &&
                                   parts[i] != Header && parts[i] != Schema &&
                                   coarse.parts.back() != Header && coarse.parts.back() != Schema;
                if (joins) {
                    coarse.lengths.back() += lengths[i];
                    if (coarse.parts.back() != parts[i]) coarse.parts.back() = Several;
                } else {
                    coarse.Add(parts[i], lengths[i]);
                }
            }
            *this = std::move(coarse);
        }
        json.Raw("{\"lengths\":");
        json.Numbers(lengths);
        json.Raw(",\"what\":");
        json.Numbers(parts);
        json.Raw("}");
    }

private:
    std::vector<int> parts;
    std::vector<unsigned long long> lengths;
};

std::string NameOf(FaultKind kind) {
    switch (kind) {
    case FaultKind::Header:
        return Words("Header");
    case FaultKind::Schema:
        return Words("Schema");
    case FaultKind::Garbage:
        return Words("Bytes of no record");
    case FaultKind::Checksum:
        return Words("Wrong checksum");
    case FaultKind::Marker:
        return Words("Wrong marker");
    case FaultKind::Size:
        return Words("Wrong size");
    case FaultKind::Torn:
        return Words("Torn record");
    case FaultKind::Digest:
        return Words("Wrong digest");
    case FaultKind::Uid:
        return Words("Wrong uid");
    case FaultKind::Class:
        return Words("Unknown class");
    case FaultKind::Payload:
        return Words("Values that do not fit");
    case FaultKind::Dangling:
        return Words("Pointer to nothing");
    case FaultKind::WrongClass:
        return Words("Pointer to another class");
    case FaultKind::Unreachable:
        return Words("Unreachable object");
    case FaultKind::Order:
        return Words("Uids out of order");
    case FaultKind::Count:
        return Words("Count of records");
    case FaultKind::Undecided:
        return Words("Undecided field");
    case FaultKind::Extra:
        return Words("Extra block");
    }
    return Words("Finding");
}

class Report {
public:
    Report(TZoBytes& bytes, const ReportLimits& limits) : bytes(bytes), limits(limits) {
        try {
            records = std::make_unique<TZoRecordReader>(bytes);
            classes = ClassesOf(records->GetSchema());
        } catch (const XReadStream&) { // without a schema, too, there is something to show
            records = std::make_unique<TZoRecordReader>(bytes, std::make_shared<TZoMetaData>());
        }
        for (std::size_t i = 0; i < classes.size(); ++i) places[classes[i]] = static_cast<int>(i);
        sums.resize(classes.size());
    }

    ReportData Read(const std::string& name, const ReportFindings& findings) {
        ReadFrames();
        ReportData data;
        Json json;
        json.Raw("{\"layout\":1");
        json.Key("tool");
        json.PutText("zo " ZO_VERSION);
        PutFile(json, name);
        PutClasses(json);
        json.Key("strings");
        texts.Put(json);
        PutObjects(json);
        json.Key("map");
        map.Put(json, limits.stretches);
        PutUndecided(json);
        PutFindings(json, findings);
        json.Raw("}");
        data.json = json.Take();
        data.diagram = Diagram();
        if (objects > uids.size()) {
            data.cuts.push_back(Words("the page lists the first {} of {} objects", uids.size(), objects));
        }
        const unsigned long long found = Total(findings, false) + Total(findings, true);
        if (findings.first.size() < found) {
            data.cuts.push_back(Words("the page lists {} of {} findings", findings.first.size(), found));
        }
        return data;
    }

private:
    struct Sum {
        unsigned long long objects = 0, bytes = 0;
    };

    int PlaceOf(const TZoClass* type) const {
        const auto found = places.find(type);
        return found == places.end() ? -1 : found->second;
    }

    // -------------------------------------------------------------------------------------
    // the file, once

    void ReadFrames() {
        TZoFrameReader& frames = records->GetFrames();
        const unsigned long long begin = std::min(frames.GetFirstOffset(), bytes.GetSize());
        map.Add(ByteMap::Header, begin);
        frames.Restart();
        TZoFrame frame;
        while (frames.Next(frame)) {
            ++frameCount;
            if (frame.state == TZoFrameState::Whole) ++wholeFrames;
            if (frame.key != 0) ++scrambled;
            map.Add(ByteMap::Stray, frame.gap);
            AddFrame(frame);
        }
        map.Add(ByteMap::Stray, frame.gap);
        if (frames.GetHeaderState() != TZoHeaderState::Right && wholeFrames == 0) {
            throw Trouble(Words("it is no object file, and no record of one is in it"));
        }
    }

    void AddFrame(const TZoFrame& frame) {
        TZoFrameReader& frames = records->GetFrames();
        const bool whole = frame.state == TZoFrameState::Whole;
        if (frame.classId == 0 && frame.uid == 0) {
            map.Add(whole ? ByteMap::Schema : ByteMap::Damaged, frame.length);
            if (schemaSize == 0) schemaSize = frame.size;
            return;
        }
        if (frames.GetPayload() == nullptr) {
            map.Add(ByteMap::Damaged, frame.length);
            return;
        }
        TZoRecord record;
        records->Read(frame, frames.GetPayload(), frames.GetPayloadSize(), record);
        const int place = PlaceOf(record.GetClass());
        map.Add(!whole ? ByteMap::Damaged : place < 0 ? ByteMap::Unknown : place, frame.length);
        ++objects;
        if (place >= 0) {
            ++sums[static_cast<std::size_t>(place)].objects;
            sums[static_cast<std::size_t>(place)].bytes += frame.length;
        }
        if (uids.size() < limits.objects && values.Size() < limits.bytes && uids.size() == objects - 1) {
            AddObject(record, place);
        }
    }

    void AddObject(const TZoRecord& record, int place) {
        const TZoFrame& frame = record.GetFrame();
        uids.push_back(frame.uid);
        ofClasses.push_back(place);
        sizes.push_back(frame.length - std::min(frame.length, 24ULL));
        gaps.push_back(frame.offset - end);
        end = frame.offset + std::max(frame.length, 24ULL);
        steps.push_back(frame.number - number);
        number = frame.number;
        values.Comma();
        if (place < 0 || record.NValues() == 0) {
            values.Raw(place >= 0 && record.GetState() == TZoRecordState::Whole ? "[]" : "null");
            return;
        }
        values.Raw("[");
        for (int i = 1; i <= record.NValues(); ++i) {
            if (i > 1) values.Raw(",");
            PutValue(record.Value(i));
        }
        values.Raw("]");
    }

    // ---------------------------------------------------------------------------------------------
    // values

    void PutValue(const TZoValue& value) {
        switch (value.GetKind()) {
        case ftInt:
            return values.Put(value.AsInt());
        case ftUnsigned:
            return values.Put(value.AsUnsigned());
        case ftBool:
            return values.Put(value.AsBool() ? 1 : 0);
        case ftFloat:
            return values.PutFloat(value.AsFloat());
        case ftDouble:
            return values.PutFloat(value.AsDouble());
        case ftString:
            return PutString(value.AsBytes());
        case ftBlob:
            return PutBlob(value.AsBytes());
        case ftChildPointer:
        case ftPointer:
        case ftPointerEx:
        case ftChildValue:
            return values.Put(value.Uid());
        case ftChildPointerList:
        case ftPointerList:
        case ftPointerListEx:
            return PutList(value, 1, value.NItems(), [&](int i) { values.Put(value.Uid(i)); });
        case ftListInt:
            return PutCutList(value, [&](int i) { values.Put(value.IntItem(i)); });
        case ftListFloat:
            return PutCutList(value, [&](int i) { values.PutFloat(value.FloatItem(i)); });
        case ftListDouble:
            return PutCutList(value, [&](int i) { values.PutFloat(value.DoubleItem(i)); });
        case ftListString:
            return PutCutList(value, [&](int i) { PutString(value.StringItemBytes(i)); });
        case ftChildPointerMap:
            values.Raw("[");
            for (const int half : {1, 2}) {
                if (half == 2) values.Raw(",");
                PutList(value, half, value.NItems(half), [&](int i) { values.Put(value.Uid(i, half)); });
            }
            values.Raw("]");
            return;
        }
        values.Raw("null");
    }

    /// The text's place among the texts; of a text that is cut, that and its
    /// length.
    void PutString(std::string_view text) {
        const int index = texts.IndexOf(text.substr(0, limits.characters));
        if (text.size() <= limits.characters) {
            values.Put(index);
        } else {
            values.Raw(fmt::format("[{},{}]", index, text.size()));
        }
    }

    /// The size, and the first bytes in hexadecimal.
    void PutBlob(std::string_view blob) {
        values.Raw(fmt::format("[{},\"", blob.size()));
        for (const char c : blob.substr(0, limits.blob)) {
            values.Raw(fmt::format("{:02x}", static_cast<unsigned>(static_cast<unsigned char>(c))));
        }
        values.Raw("\"]");
    }

    template <class Action>
    void PutCutList(const TZoValue& value, Action item) {
        const int most =
            static_cast<int>(std::min<std::size_t>(limits.items, std::numeric_limits<int>::max()));
        PutList(value, 1, std::min(value.NItems(), most), item);
    }
    /// The items alone; with the number of all, or the application's integers,
    /// where there is more to tell.
    template <class Action>
    void PutList(const TZoValue& value, int half, int count, Action item) {
        const int integers = value.NIntegers(half);
        const bool plain = integers <= 0 && count == value.NItems(half);
        if (!plain) values.Raw(fmt::format("{{\"n\":{},", value.NItems(half)));
        if (integers > 0) {
            values.Raw("\"i\":[");
            for (int i = 1; i <= integers; ++i)
                values.Raw(fmt::format("{}{}", i > 1 ? "," : "", value.Integer(i, half)));
            values.Raw("],");
        }
        values.Raw(plain ? "[" : "\"v\":[");
        for (int i = 1; i <= count; ++i) {
            if (i > 1) values.Raw(",");
            item(i);
        }
        values.Raw(plain ? "]" : "]}");
    }

    // -------------------------------------------------------------------------------------
    // parts of the page

    /// As the page's script knows it.
    const char* DigestName() const {
        switch (records->GetFrames().GetDigestState()) {
        case TZoDigestState::None:
            return "none";
        case TZoDigestState::Unknown:
            return "later";
        case TZoDigestState::Open:
            return "open";
        case TZoDigestState::Right:
            return "right";
        case TZoDigestState::Wrong:
            break;
        }
        return "wrong";
    }

    void PutFile(Json& json, const std::string& name) {
        const TBinHeader& header = records->GetFrames().GetHeader();
        json.Key("file");
        json.Raw("{");
        json.Key("name");
        json.PutText(name);
        json.Key("digest");
        json.PutText(DigestName());
        const auto put = [&](std::string_view key, unsigned long long value) {
            json.Key(key);
            json.Put(value);
        };
        put("bytes", bytes.GetSize());
        put("version", header.version);
        put("release", header.release);
        put("records", frameCount);
        put("counted", header.recordCount);
        put("scrambled", scrambled);
        put("schema", schemaSize);
        put("objects", objects);
        json.Raw("}");
    }

    void PutClasses(Json& json) {
        json.Key("classes");
        json.List(classes, [&](TZoClass* type) {
            const Sum& sum = sums[static_cast<std::size_t>(PlaceOf(type))];
            json.Raw("{");
            json.Key("name");
            json.PutText(Utf8(type->GetName()));
            json.Key("abstract");
            json.Raw(type->GetAbstract() ? "true" : "false");
            json.Key("parents");
            json.List(ParentsOf(*type), [&](const TZoClass* parent) { json.Put(PlaceOf(parent)); });
            json.Key("fields");
            json.List(OwnFields(*type), [&](const TZoClassField* field) {
                json.Raw("[");
                json.PutText(Utf8(field->GetFieldName()));
                json.Raw(fmt::format(",{},{}]", static_cast<int>(field->GetFieldType()),
                                     PlaceOf(field->GetFieldClass())));
            });
            json.Key("objects");
            json.Put(sum.objects);
            json.Key("bytes");
            json.Put(sum.bytes);
            json.Raw("}");
        });
    }

    void PutObjects(Json& json) {
        json.Key("objects");
        json.Raw("{\"uid\":");
        json.Numbers(uids);
        json.Raw(",\"class\":");
        json.Numbers(ofClasses);
        json.Raw(",\"size\":");
        json.Numbers(sizes);
        json.Raw(",\"gap\":");
        json.Numbers(gaps);
        json.Raw(",\"step\":");
        json.Numbers(steps);
        json.Raw(",\"values\":[");
        json.Raw(values.Take());
        json.Raw("]}");
    }

    void PutUndecided(Json& json) {
        json.Key("undecided");
        json.Raw("[");
        const TDVector<TZoRecordReader::Undecided>& all = records->GetUndecided();
        for (unsigned long long i = 1; i <= all.NItems(); ++i) {
            json.Comma();
            json.PutText(Utf8(all[i].recordClass->GetName()) + '.' + Utf8(all[i].field->GetFieldName()));
        }
        json.Raw("]");
    }

    /// How many of the findings are notes, or how many are not.
    static unsigned long long Total(const ReportFindings& findings, bool notes) {
        unsigned long long sum = 0;
        for (const auto& [kind, count] : findings.counts) sum += IsNote(kind) == notes ? count : 0;
        return sum;
    }

    void PutFindings(Json& json, const ReportFindings& findings) {
        json.Key("findings");
        json.Raw(fmt::format("{{\"faults\":{},\"notes\":{}", Total(findings, false), Total(findings, true)));
        json.Key("kinds"); // by number: name, count and whether it is a fault
        json.Raw("{");
        for (const auto& [kind, count] : findings.counts) {
            json.Key(std::to_string(static_cast<int>(kind)));
            json.Raw("[");
            json.PutText(NameOf(kind));
            json.Raw(fmt::format(",{},{}]", count, IsNote(kind) ? 0 : 1));
        }
        json.Raw("}");
        json.Key("rows");
        json.List(findings.first, [&](const Fault& one) {
            json.Raw(fmt::format("[{},{},{},{},{},", IsNote(one.kind) ? 0 : 1, static_cast<int>(one.kind),
                                 one.offset, one.number, one.uid));
            json.PutText(one.className);
            json.Raw(",");
            json.PutText(one.text);
            json.Raw("]");
        });
        json.Raw("}");
    }

    std::string Diagram() const {
        if (classes.empty()) return "";
        if (classes.size() > MOST_CLASSES_DRAWN) {
            return Escaped(
                Words("The {} classes of this file are too many for a page; zo schema --svg draws them.",
                      classes.size()));
        }
        DiagramStyle style;
        style.inPage = true;
        for (const Sum& sum : sums) style.objects.push_back(sum.objects);
        return ClassDiagram(records->GetSchema(), style);
    }

    TZoBytes& bytes;
    const ReportLimits& limits;
    std::unique_ptr<TZoRecordReader> records;
    std::vector<TZoClass*> classes;
    std::unordered_map<const TZoClass*, int> places;
    std::vector<Sum> sums; // by place
    ByteMap map;
    Texts texts;
    Json values;
    unsigned long long frameCount = 0, wholeFrames = 0, objects = 0, scrambled = 0, schemaSize = 0;

    // The objects that are listed: what differs from the one before takes few
    // digits.
    std::vector<int> uids, ofClasses;
    std::vector<unsigned long long> sizes, gaps, steps;
    unsigned long long end = 0, number = 0;
};

} // namespace

ReportData ReadReport(TZoBytes& bytes, const std::string& name, const ReportFindings& findings,
                      const ReportLimits& limits) {
    return Report(bytes, limits).Read(name, findings);
}

} // namespace ZoTool
