#include "Persistence/objects/OwnerWalk.h"

#include "Persistence/instances/ClassNames.h"
#include "Persistence/schema/FieldKinds.h"
#include "ZoPrimitives/ZoAssert.h"
#include "ZoPrimitives/ZoSources.h"

#include <typeinfo>

namespace ZoPrimitives {

namespace {

/// A subclass that did not register answers with its base's class and would be saved as that.
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
        message.c_str(), ZoSources::ZOMETADATA, __LINE__);
}

TZoClass* ClassToSave(TZoMetaData* schema, const ZoStreamableBase* object) {
    TZoClass* objectClass = object->GetOriginalClass(schema);
    if (objectClass == nullptr) {
        AssertWithFunctor("instance_pointer->GetOriginalClass(streamer->GetMetaData())",
                          "[zoerror] class not registered. See class::Register", ZoSources::ZOMETADATA,
                          __LINE__);
    }
    if (objectClass->GetType() != &typeid(*object)) CheckRegisteredType(*objectClass, *object);
    return objectClass;
}

} // namespace

OwnerWalk::OwnerWalk(ObjectWriter& itsWriter, TBinOutStream& target, Mode itsMode)
    : writer(itsWriter), stream(target), schema(itsWriter.streamer.GetMetaData()),
      direct(target.PutsDirectly()), ownStreamer(typeid(itsWriter.streamer) == typeid(TBinOutStreamer)),
      mode(itsMode) {}

bool OwnerWalk::IsDue(ZoStreamableBase* object) {
    if (object == nullptr) return false;
    const bool hasUid = HandleAccess::Get(stream, object) != 0;
    if (mode == Mode::NumberedAgain) return hasUid && met.insert(object).second;
    if (hasUid) return !writer.IsSaved(stream, object);
    // An object that came into the graph after uids were given gets no record.
    return mode == Mode::ByHand && met.insert(object).second;
}

void OwnerWalk::Run(ZoStreamableBase* object, TZoClass* objectClass) {
    if (!IsDue(object)) return;
    const bool asOwn = objectClass == nullptr || objectClass == object->GetOriginalClass(schema);
    Visit(object, asOwn ? ClassToSave(schema, object) : objectClass);
    Finish();
}

void OwnerWalk::RunOwned(ZoStreamableBase* object, const std::vector<WritePlan::Target>& targets) {
    Push(object, Hold(object), targets);
    Finish();
}

void OwnerWalk::RunExternals() {
    for (std::size_t i = 0; i < externals.size(); ++i) {
        ZoStreamableBase* object = externals[i].object;
        const bool held = !externals[i].hold.IsLast();
        externals[i].hold.Release();
        if (held) Run(object, nullptr);
    }
}

void OwnerWalk::Visit(ZoStreamableBase* object, TZoClass* objectClass) {
    const Hold hold(object); // its own hook may take it from its owner
    if (!writer.IsSaved(stream, object) && writer.SaveRecord(stream, direct, object, objectClass)) ++changes;
    if (!ownStreamer) ++changes;
    if (mode != Mode::ByHand && KeptParts::Has(*object)) {
        ZoItemAction collect([this](ZoStreamableBase* item) { Collect(item); });
        KeptReferences::ForEachSaved(*object, *schema, collect);
    }
    const WritePlan& plan = writer.plans.Of(*objectClass);
    if (!plan.targets.empty()) Push(object, hold, plan.targets);
}

void OwnerWalk::Push(ZoStreamableBase* object, const Hold& hold,
                     const std::vector<WritePlan::Target>& targets) {
    frames.push_back({object, hold, &targets, 0, items.size(), items.size(), changes});
}

void OwnerWalk::Finish() {
    while (!frames.empty()) {
        if (ZoStreamableBase* next = Next(frames.back())) {
            Visit(next, ClassToSave(schema, next));
        } else {
            items.resize(frames.back().begin);
            frames.pop_back();
        }
    }
}

/// The next object to save of those that the frame's object owns; null if there is none.
ZoStreamableBase* OwnerWalk::Next(Frame& frame) {
    if (frame.hold.IsLast()) return nullptr;
    for (;;) {
        if (frame.next == items.size()) {
            if (frame.target == frame.targets->size()) return nullptr;
            ++frame.target;
            Ask(frame);
        } else if (frame.asked != changes && !StillHolds(frame)) {
            Ask(frame);
        } else {
            ZoStreamableBase* item = items[frame.next++];
            if (IsDue(item)) return item;
        }
    }
}

void OwnerWalk::Ask(Frame& frame) {
    items.resize(frame.begin);
    frame.next = frame.begin;
    const WritePlan::Target& target = (*frame.targets)[frame.target - 1];
    if (target.externalsOf != nullptr) {
        if (mode != Mode::ByHand) CollectExternals(*target.externalsOf, frame.object);
    } else {
        ZoItemAction append([this](ZoStreamableBase* item) { items.push_back(item); });
        target.field->GetFieldMetaData(frame.object, append);
        if (!target.field->IsPlain()) ++changes;
    }
    frame.asked = changes;
}

/// Whether the next item of a list is still where it was: a long list need not be asked again for each item.
/// What a single pointer holds is visited as soon as it is asked.
bool OwnerWalk::StillHolds(const Frame& frame) const {
    auto* list = static_cast<TZoClassFieldPointerList*>((*frame.targets)[frame.target - 1].field);
    return list->ElementAt(frame.object, frame.next - frame.begin + 1) == items[frame.next];
}

void OwnerWalk::CollectExternals(const TZoClass& level, ZoStreamableBase* object) {
    ZoItemAction collect([this](ZoStreamableBase* item) { Collect(item); });
    ForEachExternal(level, object, collect);
}

void OwnerWalk::Collect(ZoStreamableBase* item) {
    if (item != nullptr && knownExternals.insert(item).second) externals.push_back({item, Hold(item)});
}

} // namespace ZoPrimitives
