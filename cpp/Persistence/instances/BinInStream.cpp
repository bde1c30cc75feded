#include "ZoPrimitives/BinInStream.h"

#include "Persistence/instances/ClassNames.h"
#include "Persistence/instances/InstanceTables.h"
#include "Persistence/records/RecordFormat.h"
#include "Platform/Memory.h"
#include "ZoPrimitives/ZoStreamable.h"

#include <algorithm>
#include <cstring>
#include <vector>

// The part of a stream that keeps the objects read from it.

namespace ZoPrimitives {

InstanceTables* TBinInStream::NewInstances() { return new InstanceTables; }

void TBinInStream::EndInstances::operator()(InstanceTables* ended) const noexcept { delete ended; }

void TBinInStream::AddInstance(ZoStreamableBase* object) { instances->Add(object, currentUid); }

ZoStreamableBase* TBinInStream::GetInstance(int wanted) const { return instances->Find(wanted); }

const TDVector<ZoStreamableBase*>& TBinInStream::Objects() const { return instances->Objects(); }

ZoStreamableBase* TBinInStream::FirstObject() const {
    return Objects().NItems() == 0 ? nullptr : Objects()[1];
}

ZoStreamableBase* TBinInStream::FindFirstObject(const ZoString& className) const {
    // Registered class names have no namespaces.
    for (ZoStreamableBase* object : Objects()) {
        const ZoString name = PlainClassName(object->StreamableClassName());
        const char* last = std::strrchr(name.c_str(), ':');
        if (name == className || (last != nullptr && className == last + 1)) return object;
    }
    return nullptr;
}

void TBinInStream::FillObjects(TDVector<ZoStreamableBase*>* list) const { list->Append(Objects()); }

void TBinInStream::TakeObjects(TIVector<ZoStreamableBase>* list) {
    list->Reserve(list->NItems() + Objects().NItems());
    for (ZoStreamableBase* object : Objects()) list->Add(object);
    ForgetInstances();
}

void TBinInStream::RemoveInstances(const TDVector<ZoStreamableBase*>& list) {
    std::vector<const ZoStreamableBase*> removed(list.begin(), list.end());
    std::sort(removed.begin(), removed.end());
    instances->RemoveIf([&removed](const ZoStreamableBase* object) {
        return std::binary_search(removed.begin(), removed.end(), object);
    });
}

void TBinInStream::SetHandle(ZoStreamableBase* object, int handle) { instances->handles.Set(handle, object); }

ZoStreamableBase* TBinInStream::GetHandle(int handle) const { return instances->handles.Get(handle); }

void TBinInStream::ResetHandles() { instances->handles.Clear(); }

void TBinInStream::AddUnresolved(ZoStreamableBase* object, int objectUid, TZoClass* fileClass) {
    instances->unresolved.Open(object, objectUid, fileClass);
}

const TBinUnresolved* TBinInStream::GetUnresolved(int objectUid) const {
    return instances->unresolved.Find(objectUid);
}

void TBinInStream::AddExcludedField(TZoClassField* field, unsigned recordPosition) {
    instances->excluded.Add(field, recordPosition);
}

void TBinInStream::RemoveExcludedField(TZoClassField* field) { instances->excluded.Remove(field, position); }

TZoClassField* TBinInStream::GetFirstExcludedField() {
    const ExcludedFields::Entry* first = instances->excluded.First();
    if (first == nullptr) return nullptr;
    position = first->recordPosition;
    return first->field;
}

void TBinInStream::AddAwaited(int wanted, std::unique_ptr<ZoStreamableBaseFunctor> action) {
    instances->awaited.Add(wanted, std::move(action));
}

void TBinInStream::ClearExcludedFields() { instances->excluded.Clear(); }

void TBinInStream::ReserveInstances() {
    if (!HasWindow()) return;
    // Unused room costs only address space. The number of uids is unknown.
    constexpr std::size_t SMALLEST_RECORD = RecordFormat::HEAD_SIZE + 1;
    const auto left = static_cast<std::size_t>(windowEnd - windowCursor);
    Platform::ExpectObjects(left);
    instances->Reserve(std::min<std::size_t>(header.recordCount, left / SMALLEST_RECORD));
}

void TBinInStream::ForgetInstances() noexcept { instances->Forget(); }

} // namespace ZoPrimitives
