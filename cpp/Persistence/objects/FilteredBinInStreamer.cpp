#include "ZoPrimitives/FilteredBinInStreamer.h"

#include "Persistence/records/NamingFile.h"
#include "ZoPrimitives/BinInStream.h"
#include "ZoPrimitives/UserText.h"
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
    for (int i = 1; i <= reader.fileSchema->GetClassCount(); ++i) {
        const TZoClass& fileClass = *reader.fileSchema->GetClass(i);
        const TZoClass* original = fileClass.GetOriginal();
        for (const ZoString& name : names) {
            // Its own name, or that of the application's class that had this one.
            if (fileClass.GetName() != name && (original == nullptr || original->GetName() != name)) continue;
            ids.push_back(fileClass.GetClassId());
            break;
        }
    }
    if (ids.empty()) {
        throw XStream(Translated("Não existem classes com os nomes da filtragem no metadado"),
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
