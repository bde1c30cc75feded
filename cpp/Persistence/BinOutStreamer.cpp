#include "ZoPrimitives/BinOutStreamer.h"

#include "Persistence/ClassNames.h"
#include "Persistence/GraphWalk.h"
#include "Persistence/HandleAccess.h"
#include "Persistence/SchemaWalk.h"
#include "ZoPrimitives/BinOutStream.h"

#include <algorithm>

namespace ZoPrimitives {

namespace {

constexpr const char* SOURCE = "cpp/Persistence/ZoMetaData";

/// A subclass that is not registered itself answers with its base's class, and would be saved as such.
void CheckRegisteredType(const TZoClass& objectClass, const ZoStreamableBase& object) {
    const std::type_info& type = typeid(object);
    if (objectClass.GetType() == &type) return;
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
    TZoMetaData fileSchema;
    for (int i = 1; i <= schema->GetClassCount(); ++i) {
        if (walk.Uses(schema->GetClass(i))) fileSchema.AddClass(schema->GetClass(i));
    }
    fileSchema.SaveToStream(stream);
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
        saved.clear();
        TDList<ZoStreamableBase*> externals;
        GraphWalk walk(*stream, schema, externals);
        for (ZoStreamableBase* object : *objects) {
            if (object != nullptr) walk.Run(object);
        }
        for (unsigned long long i = 1; i <= externals.NItems(); ++i) walk.Run(externals[i]);
        for (const GraphWalk::Entry& entry : walk.Order())
            SaveRecord(stream, entry.object, entry.objectClass);
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
    const auto uid = static_cast<std::size_t>(stream->GetHandle(object));
    return uid < saved.size() && saved[uid];
}

void TBinOutStreamer::SaveRecord(TBinOutStream* target, ZoStreamableBase* object, TZoClass* objectClass) {
    CheckRegisteredType(*objectClass, *object);
    objectClass->SaveToStreamPre(target, this, object);
    const int uid = target->GetHandle(object);
    target->FlushRecord(uid, objectClass->GetClassId());
    const auto index = static_cast<std::size_t>(uid);
    if (index >= saved.size()) saved.resize(std::max(index + 1, saved.size() * 2));
    saved[index] = true;
    OnAfterSaveInstance(object);
}

void TBinOutStreamer::SaveInstance(TBinOutStream* target, ZoStreamableBase* object) {
    class Pusher : public ZoStreamableBaseFunctor {
    public:
        explicit Pusher(std::vector<ZoStreamableBase*>& stack) : stack(stack) {}
        void operator()(ZoStreamableBase* item) override {
            if (item != nullptr) stack.push_back(item);
        }

    private:
        std::vector<ZoStreamableBase*>& stack;
    };

    std::vector<ZoStreamableBase*> stack{object};
    Pusher push(stack);
    while (!stack.empty()) {
        ZoStreamableBase* next = stack.back();
        stack.pop_back();
        if (InstanceIsAlreadySaved(next)) continue;
        TZoClass* nextClass = next->GetOriginalClass(schema);
        if (nextClass == nullptr) {
            AssertWithFunctor("instance_pointer->GetOriginalClass(streamer->GetMetaData())",
                              "[zoerror] class not registered. See class::Register", SOURCE, __LINE__);
        }
        SaveRecord(target, next, nextClass);
        const std::size_t first = stack.size();
        nextClass->ChildsReferences(next, push);
        std::reverse(stack.begin() + static_cast<std::ptrdiff_t>(first), stack.end());
    }
}

} // namespace ZoPrimitives
