#pragma once

#include "ZoPrimitives/ZoRecords.h"
#include "ZoPrimitives/ZoSave.h"
#include "ZoPrimitives/ZoStreamablePrimitives.h"
#include "faults.h"
#include "support/EveryKind.h"

#include <map>
#include <string>
#include <vector>

/// A small file with a digest: objects of three classes that refer to each other, one of which has a whole
/// file of the same classes in its blob.
class SmallFile {
public:
    SmallFile() {
        ZoPrimitives::ZoRegisterPrimitives(&schema);
        app::RegisterEveryKind(schema);
        app::EveryKind inner;
        app::Leaf outside(99);
        inner.Fill(outside);
        ZoPrimitives::StreamableList root;
        auto* first = new app::EveryKind;
        root.GetList().Add(first);
        first->Fill(outside);
        first->aBlob = ZoPrimitives::ZoSaveInMemory(&inner, &schema);
        auto* second = new app::EveryKind;
        root.GetList().Add(second);
        second->reference = first->children[1].get();
        second->child = new app::Leaf(21);
        const ZoPrimitives::ZoBlob saved = ZoPrimitives::ZoSaveInMemory(&root, &schema);
        bytes.assign(static_cast<const char*>(saved.Data()), static_cast<std::size_t>(saved.Size()));
        for (std::size_t at = 40; at < bytes.size(); at = ends.back()) {
            offsets.push_back(at);
            ends.push_back(at + 24 + Word(bytes, at + 4));
        }
    }

    std::string bytes;
    std::vector<std::size_t> offsets; // of the records
    std::vector<std::size_t> ends;

    /// The record that a byte is in, from 0; -1: the header.
    int RecordAt(std::size_t offset) const {
        int record = -1;
        for (const std::size_t begin : offsets) record += begin <= offset ? 1 : 0;
        return record;
    }

private:
    ZoPrimitives::TZoMetaData schema;
};

using Faults = std::vector<ZoTool::Fault>;

inline Faults FaultsOf(const std::string& bytes, bool quick = false) {
    ZoPrimitives::TZoMemoryBytes memory(bytes.data(), bytes.size());
    Faults faults;
    ZoTool::FaultFinder(memory, quick).Find([&](const ZoTool::Fault& fault) { faults.push_back(fault); });
    return faults;
}

inline std::string TextOf(const Faults& faults, bool withNotes = true) {
    std::string text;
    for (const ZoTool::Fault& fault : faults) {
        if (!withNotes && ZoTool::IsNote(fault.kind)) continue;
        text += ZoTool::PlaceOf(fault) + ": " + fault.text + "\n";
    }
    return text;
}
