#include "ZoPrimitives/BinOutStreamer.h"

#include "Persistence/ClassNames.h"
#include "Persistence/GraphWalk.h"
#include "Persistence/HandleAccess.h"
#include "Persistence/ItemAction.h"
#include "Persistence/SchemaWalk.h"
#include "Persistence/WritePlan.h"
#include "ZoPrimitives/BinOutStream.h"

#include <algorithm>

namespace ZoPrimitives {

namespace {

constexpr const char* SOURCE = "cpp/Persistence/ZoMetaData";

constexpr std::size_t PREFETCH = 8; // objects ahead

/// A subclass that is not registered itself answers with its base's class, and would be saved as such.
void CheckRegisteredType(const TZoClass& objectClass, const ZoStreamableBase& object) {
    const std::type_info& type = typeid(object);
    if (TZoMetaData::WritingGenericFile()) return;
    const bool same = objectClass.GetType() != nullptr
                          ? *objectClass.GetType() == type
                          : PlainClassName(object.StreamableClassName()) == objectClass.GetName();
    if (same) return;
    const ZoString message =
        ZoString::FormatString("[zoerror] invalid class (%s - %s). See REGISTER_ZO_BEGIN.",
                               ClassText(type).c_str(), objectClass.GetName().c_str());
    AssertWithFunctor(
        "(instance_pointer->GetOriginalClass(streamer->GetMetaData())->GetName() == instanceClassName)",
        message.c_str(), SOURCE, __LINE__);
}

} // namespace

TBinOutStreamer::TBinOutStreamer(TBinOutStream* stream, TZoMetaData* schema)
    : stream(stream), schema(schema) {}
TBinOutStreamer::~TBinOutStreamer() = default;

void TBinOutStreamer::OnAfterSaveInstance(ZoStreamableBase*) {}

void TBinOutStreamer::RewriteHeader() { stream->RewriteHeader(); }

void* TBinOutStreamer::GetFile() const { return stream->GetFile(); }

void TBinOutStreamer::SetFile(void* file) { stream->SetFile(file); }

void TBinOutStreamer::WriteSchemaOf(const SchemaWalk& walk) {
    expected = walk.Met() + 1;
    // Counted references would belong to several threads that save with one schema.
    std::vector<TZoClass*> used;
    for (int i = 1; i <= schema->GetClassCount(); ++i) {
        if (walk.Uses(schema->GetClass(i))) used.push_back(schema->GetClass(i));
    }
    TZoMetaData::SaveClasses(stream, used);
}

void TBinOutStreamer::WriteObjectMetaData(ZoStreamableBase* root) {
    SchemaWalk walk(schema);
    walk.Run(root);
    WriteSchemaOf(walk);
}

void TBinOutStreamer::WriteObjectsMetaData(TDList<ZoStreamableBase*>* roots) {
    SchemaWalk walk(schema);
    for (ZoStreamableBase* root : *roots) walk.Run(root);
    WriteSchemaOf(walk);
}

void TBinOutStreamer::WriteMetaData() { schema->SaveToStream(stream); }

void TBinOutStreamer::WriteObject(ZoStreamableBase* object) {
    TDList<ZoStreamableBase*> one;
    one.Add(object);
    WriteObjects(&one);
}

void TBinOutStreamer::WriteObjects(TDList<ZoStreamableBase*>* objects) {
    try {
        savedUpTo = 0;
        saved.clear();
        plans.clear();
        TDList<ZoStreamableBase*> externals;
        GraphWalk walk(*stream, schema, externals);
        walk.Reserve(expected);
        for (ZoStreamableBase* object : *objects) {
            if (object != nullptr) walk.Run(object);
        }
        for (unsigned long long i = 1; i <= externals.NItems(); ++i) walk.Run(externals[i]);
        const bool direct = stream->PutsDirectly();
        const auto& order = walk.Order();
        for (std::size_t i = 0; i < order.size(); ++i) {
            if (i + PREFETCH < order.size()) __builtin_prefetch(order[i + PREFETCH].object);
            SaveRecord(stream, direct, order[i].object, order[i].objectClass);
        }
        stream->ResetHandles();
        RewriteHeader();
    } catch (...) {
        stream->FreeResourses();
        stream->ResetHandles();
        throw;
    }
}

void TBinOutStreamer::AlocateExternalInstancesHandles([[maybe_unused]] TDList<ZoStreamableBase*>* objects,
                                                      TDList<ZoStreamableBase*>* externals) {
    GraphWalk walk(*stream, schema, *externals);
    for (unsigned long long i = 1; i <= externals->NItems(); ++i) walk.Run((*externals)[i]);
}

bool TBinOutStreamer::InstanceIsAlreadySaved(const ZoStreamableBase* object) const {
    const int uid = stream->GetHandle(object);
    return uid != 0 && (uid <= savedUpTo || saved.count(uid) != 0);
}

WritePlan& TBinOutStreamer::PlanOf(const TZoClass& objectClass) {
    const auto id = static_cast<std::size_t>(objectClass.GetClassId());
    if (id >= plans.size()) plans.resize(id + 1);
    if (plans[id] == nullptr) plans[id] = std::make_unique<WritePlan>();
    return *plans[id];
}

void TBinOutStreamer::SaveRecord(TBinOutStream* target, bool direct, ZoStreamableBase* object,
                                 TZoClass* objectClass) {
    const bool exact = objectClass->GetType() == &typeid(*object);
    if (!exact) CheckRegisteredType(*objectClass, *object);
    if (exact && direct) {
        objectClass->SaveByPlan(*target, PlanOf(*objectClass), object);
    } else {
        objectClass->SaveFields(*target, direct, exact, object);
    }
    const int uid = HandleAccess::Get(*target, object);
    target->FlushRecord(uid, objectClass->GetClassId());
    if (uid == savedUpTo + 1) {
        savedUpTo = uid;
    } else {
        saved.insert(uid);
    }
    OnAfterSaveInstance(object);
}

void TBinOutStreamer::SaveInstance(TBinOutStream* target, ZoStreamableBase* object) {
    std::vector<ZoStreamableBase*> stack{object};
    auto push = Gather(stack);
    while (!stack.empty()) {
        ZoStreamableBase* next = stack.back();
        stack.pop_back();
        if (InstanceIsAlreadySaved(next)) continue;
        TZoClass* nextClass = next->GetOriginalClass(schema);
        if (nextClass == nullptr) {
            AssertWithFunctor("instance_pointer->GetOriginalClass(streamer->GetMetaData())",
                              "[zoerror] class not registered. See class::Register", SOURCE, __LINE__);
        }
        SaveRecord(target, target->PutsDirectly(), next, nextClass);
        const std::size_t first = stack.size();
        nextClass->ChildsReferences(next, push);
        std::reverse(stack.begin() + static_cast<std::ptrdiff_t>(first), stack.end());
    }
}

} // namespace ZoPrimitives
