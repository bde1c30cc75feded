#pragma once

#include "ZoPrimitives/BinInStreamer.h"
#include "ZoPrimitives/BinOutStreamer.h"
#include "ZoPrimitives/MemoryBinInStream.h"
#include "ZoPrimitives/MemoryBinOutStream.h"
#include "support/Assertions.h"
#include "support/Records.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

// Files put together and taken apart by hand, and graphs saved and opened in memory.

/// The values of a record, in the format's encodings.
class Payload {
public:
    Payload() = default;
    explicit Payload(std::string raw) : bytes(std::move(raw)) {}

    Payload& Int(long long value) { return Raw(static_cast<std::uint32_t>(value)); }
    Payload& Ints(std::initializer_list<int> values) {
        for (const int value : values) Int(value);
        return *this;
    }
    Payload& Bool(bool value) { return bytes += static_cast<char>(value), *this; }
    Payload& Float(float value) { return Raw(value); }
    Payload& Double(double value) { return Raw(value); }
    Payload& Text(const std::string& value) {
        Int(static_cast<long long>(value.size()));
        bytes += value;
        return *this;
    }
    Payload& Add(const Payload& other) { return bytes += other.bytes, *this; }
    operator const std::string&() const { return bytes; }

private:
    template <class T>
    Payload& Raw(T value) {
        char raw[sizeof value];
        std::memcpy(raw, &value, sizeof value);
        bytes.append(raw, sizeof raw);
        return *this;
    }
    std::string bytes;
};

/// One record, plain.
struct Row {
    int uid = 0;
    int classId = 0;
    std::string payload;

    bool operator==(const Row&) const = default;
    friend std::ostream& operator<<(std::ostream& out, const Row& row) {
        out << "uid " << row.uid << " class " << row.classId << ':';
        for (const char byte : row.payload) out << ' ' << static_cast<int>(static_cast<unsigned char>(byte));
        return out;
    }
};

/// A file of these records, with right sums.
inline std::string FileOf(const std::vector<Row>& rows) {
    std::string file = HeaderBytes(0, 0);
    for (const Row& row : rows) file += RecordBytes(row.uid, row.classId, row.payload);
    return file;
}

/// Writes a record of a text, and how it stands in a file.
inline void PutText(ZoPrimitives::TBinOutStream& out, int uid, const std::string& text) {
    out << text.c_str();
    out.FlushRecord(uid, 7);
}
inline std::string TextRecord(int uid, const std::string& text) {
    return RecordBytes(uid, 7, Payload().Text(text));
}

/// The records of a sound file.
inline std::vector<Row> RowsOf(const std::string& file) {
    std::vector<Row> rows;
    for (std::size_t at = 28; at < file.size();) {
        const std::size_t size = Word(file, at + 4);
        rows.push_back({static_cast<int>(Word(file, at + 16)), static_cast<int>(Word(file, at + 12)),
                        file.substr(at + 24, size)});
        at += 24 + size;
    }
    return rows;
}

struct FieldEntry {
    int classId;
    int kind;
    std::string name;
};

/// A class as the schema record holds it.
struct ClassEntry {
    int id = 1;
    std::string name = "X";
    bool abstract = false;
    std::vector<int> parents{};
    std::vector<FieldEntry> maps{};
    std::vector<FieldEntry> values{};
    std::vector<FieldEntry> children{};
    std::vector<FieldEntry> childLists{};
    std::vector<FieldEntry> references{};
    std::vector<FieldEntry> referenceLists{};

    /// Where fields of a kind stand.
    std::vector<FieldEntry>& BlockOf(int kind) {
        if (kind == -19) return maps;
        if (kind == -6 || kind == -18) return children;
        if (kind == -7) return childLists;
        if (kind == -8 || kind == -15) return references;
        return kind == -9 || kind == -16 ? referenceLists : values;
    }
    static Payload Block(const std::vector<FieldEntry>& fields) {
        Payload block;
        block.Int(static_cast<long long>(fields.size()));
        for (const FieldEntry& field : fields) block.Int(field.classId).Int(field.kind).Text(field.name);
        return block;
    }
    Payload Blocks() const {
        Payload bytes;
        if (!maps.empty()) bytes.Add(Block(maps));
        for (const auto* block : {&values, &children, &childLists, &references, &referenceLists})
            bytes.Add(Block(*block));
        return bytes;
    }
    Payload Bytes() const {
        Payload bytes;
        bytes.Int(id).Text(name).Bool(abstract).Int(-1).Int(static_cast<long long>(parents.size()));
        for (const int parent : parents) bytes.Int(parent);
        return bytes.Add(Blocks());
    }
};

inline Payload SchemaOf(const std::vector<ClassEntry>& classes) {
    Payload schema;
    schema.Int(static_cast<long long>(classes.size()));
    for (const ClassEntry& entry : classes) schema.Add(entry.Bytes());
    return schema;
}

inline std::string FileOf(const std::vector<ClassEntry>& classes, std::vector<Row> rows) {
    rows.insert(rows.begin(), Row{0, 0, SchemaOf(classes)});
    return FileOf(rows);
}

inline std::string BytesOf(ZoPrimitives::TMemoryBinOutStream& stream) {
    return {reinterpret_cast<const char*>(stream.GetData()), static_cast<std::size_t>(stream.GetSize())};
}

template <class Streamer = ZoPrimitives::TBinOutStreamer>
std::string Save(ZoPrimitives::TZoMetaData& schema, ZoPrimitives::ZoStreamableBase* root) {
    ZoPrimitives::TMemoryBinOutStream stream;
    stream.Initialize();
    Streamer streamer(&stream, &schema);
    streamer.WriteObjectMetaData(root);
    streamer.WriteObject(root);
    return BytesOf(stream);
}

/// The same in one call.
inline std::string SaveAtOnce(ZoPrimitives::TZoMetaData& schema, ZoPrimitives::ZoStreamableBase* root) {
    ZoPrimitives::TMemoryBinOutStream stream;
    stream.Initialize();
    ZoPrimitives::TBinOutStreamer(&stream, &schema).WriteObjectWithMetaData(root);
    return BytesOf(stream);
}

inline std::string Text(const ZoPrimitives::ZoString& text) { return {text.c_str(), text.length()}; }

using Names = std::vector<std::string>;

/// Of a class's own fields, in the order of a record.
inline Names FieldNames(ZoPrimitives::TZoClass& of) {
    Names names;
    for (int i = 1; i <= of.GetFieldCount(); ++i) names.push_back(Text(of.GetField(i)->GetFieldName()));
    return names;
}

inline Names ParentNames(ZoPrimitives::TZoClass& of) {
    Names names;
    for (const auto& parent : *of.GetParentClasses()) names.push_back(Text(parent->GetName()));
    return names;
}

/// Ends the objects that were read, those that own each other in circles too.
inline void EndObjects(ZoPrimitives::TBinInStream& stream, ZoPrimitives::TZoMetaData& schema) {
    using namespace ZoPrimitives;
    const auto all = [](const void*, const ZoStreamableBase*) { return true; };
    const std::vector<pointer<ZoStreamableBase>> objects(stream.Objects().begin(), stream.Objects().end());
    TDVector<ZoStreamableBase*> holders = stream.Objects();
    TBinInStreamer streamer(&stream, &schema);
    for (unsigned long long i = 1; i <= holders.NItems(); ++i) {
        holders.Append(streamer.ChildsByValueOfInstance(holders[i]));
        if (auto* objectClass = holders[i]->GetOriginalClass(&schema))
            objectClass->DeleteReferences(holders[i], all, nullptr);
    }
}

/// An opened file; its objects end with it, those that own each other in circles too.
class Opened {
public:
    enum Reading { AtOnce, Later };
    Opened(std::string file, ZoPrimitives::TZoMetaData& appSchema, Reading reading = AtOnce)
        : bytes(std::move(file)), schema(appSchema), stream(bytes.data(), bytes.size(), 0),
          streamer(&stream, &schema) {
        stream.Initialize();
        try {
            if (reading == AtOnce) Read();
        } catch (...) {
            EndObjects(stream, schema);
            throw;
        }
    }
    void Read() { root = streamer.ReadObjects(); }
    ~Opened() { EndObjects(stream, schema); }
    Opened(const Opened&) = delete;
    Opened& operator=(const Opened&) = delete;

    /// The object read under a uid; it must be of the class.
    template <class T>
    T& At(int uid) {
        auto* object = dynamic_cast<T*>(stream.GetInstance(uid));
        if (object == nullptr) throw std::runtime_error("no such object: " + std::to_string(uid));
        return *object;
    }
    template <class T>
    T& Root() {
        return dynamic_cast<T&>(*root);
    }
    std::size_t Count() const { return static_cast<std::size_t>(stream.Objects().NItems()); }
    std::vector<std::string> Unknown() {
        std::vector<std::string> names;
        for (const auto& unknown : *streamer.GetUnknowObjects()) names.push_back(Text(unknown->GetName()));
        return names;
    }

private:
    std::string bytes;
    ZoPrimitives::TZoMetaData& schema;

public:
    ZoPrimitives::TMemoryBinInStream stream;
    ZoPrimitives::TBinInStreamer streamer;
    ZoPrimitives::ZoStreamableBase* root = nullptr;
};

/// Counts the objects of which it is a member.
struct Alive {
    Alive() { ++Count(); }
    Alive(const Alive&) { ++Count(); }
    Alive& operator=(const Alive&) = default;
    ~Alive() { --Count(); }
    static int& Count() {
        static int count = 0;
        return count;
    }
};
