#include "Persistence/objects/MadeObjects.h"

#include "Persistence/instances/InstanceTables.h"
#include "ZoPrimitives/BinInStream.h"

#include <algorithm>
#include <utility>

namespace ZoPrimitives {

MadeObjects::MadeObjects(TBinInStream& stream) : stream(stream), hold(*this) {}

MadeObjects::~MadeObjects() {
    hold.End();
    InstanceTables::Of(stream).EndReading();
    delete current;
    for (const ZoStreamableBase* object : consumed) delete object;
    if (!owned) return;
    ReleaseAll(stream);
}

void MadeObjects::ReleaseAll(TBinInStream& stream) noexcept {
    const TDVector<ZoStreamableBase*> objects = InstanceTables::Of(stream).Take();
    // What another one owns ends with its owner.
    for (const ZoStreamableBase* object : objects) ZoReferenceCount::Add(object);
    for (const ZoStreamableBase* object : objects) ZoReferenceCount::Release(object);
}

void MadeObjects::Drop() { delete std::exchange(current, nullptr); }

void MadeObjects::Finish() {
    InstanceTables::Of(stream).Add(current, stream.GetCurrentUID());
    current = nullptr;
}

void MadeObjects::Consume(std::vector<const ZoStreamableBase*>&& objects) noexcept {
    consumed = std::move(objects);
    InstanceTables::Of(stream).RemoveIf([this](const ZoStreamableBase* object) {
        return std::binary_search(consumed.begin(), consumed.end(), object);
    });
}

void MadeObjects::ForEach(Action& action) const {
    for (const ZoStreamableBase* object : stream.Objects()) action(object);
    for (const ZoStreamableBase* object : consumed) action(object);
    action(current);
}

} // namespace ZoPrimitives
