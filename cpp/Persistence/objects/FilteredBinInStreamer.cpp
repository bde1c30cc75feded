#include "ZoPrimitives/FilteredBinInStreamer.h"

#include "Persistence/records/NamingFile.h"
#include "ZoPrimitives/AnsiLiteral.h"
#include "ZoPrimitives/BinInStream.h"
#include "ZoPrimitives/TTranslatedString.h"
#include "ZoPrimitives/WholeText.h"
#include "ZoPrimitives/XStream.h"

#include <algorithm>
#include <new>
#include <vector>

namespace ZoPrimitives {

TFilteredBinInStreamer::TFilteredBinInStreamer(TBinInStream* stream, TZoMetaData* schema,
                                               const TDList<ZoString>* classNames)
    : reader(stream, schema) {
    if (classNames == nullptr) return;
    for (const ZoString& name : *classNames) AddWhole(names, name);
}

TFilteredBinInStreamer::~TFilteredBinInStreamer() = default;

bool TFilteredBinInStreamer::Read() {
    objects.RemoveAll();
    NamingFile(*reader.stream, [this] { ReadNamed(); });
    return objects.NItems() != 0;
}

void TFilteredBinInStreamer::ReadNamed() {
    reader.LoadSchema("TFilteredBinInStreamer::Read #1", "TFilteredBinInStreamer::Read #2");
    std::vector<int> ids;
    for (const ZoString& name : names) {
        if (const TZoClass* fileClass = reader.fileSchema.FindClass(name)) {
            ids.push_back(fileClass->GetClassId());
        }
    }
    if (ids.empty()) {
        throw XStream(
            TTranslatedString("Não existem classes com os nomes da filtragem no metadado"_ansi).Text(),
            "TFilteredBinInStreamer::Read #3");
    }
    std::sort(ids.begin(), ids.end());
    try {
        reader.ReadRecords(&ids);
        reader.RefuseFaults("TFilteredBinInStreamer::Read");
    } catch (...) {
        try {
            TakeObjects();
        } catch (const std::bad_alloc&) {
            // The stream still lists them.
        }
        throw;
    }
    TakeObjects();
}

/// All of them or none.
void TFilteredBinInStreamer::TakeObjects() {
    const TDVector<ZoStreamableBase*>& read = reader.stream->Objects();
    objects.Reserve(read.NItems());
    for (ZoStreamableBase* object : read) objects.Add(object);
}

bool TFilteredBinInStreamer::ReadFromStream(TBinInStream* stream, TZoMetaData* schema,
                                            const TDList<ZoString>* classNames) {
    return TFilteredBinInStreamer(stream, schema, classNames).Read();
}

} // namespace ZoPrimitives
