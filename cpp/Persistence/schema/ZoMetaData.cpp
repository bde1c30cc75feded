#include "ZoPrimitives/ZoMetaData.h"

#include "Persistence/records/RecordFormat.h"
#include "Persistence/schema/ReadPlan.h"
#include "Persistence/schema/RecordOrder.h"
#include "Persistence/schema/SchemaCheck.h"
#include "Persistence/schema/SchemaReader.h"
#include "ZoPrimitives/BinInStream.h"
#include "ZoPrimitives/BinOutStream.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoSources.h"

#include <algorithm>
#include <atomic>
#include <climits>
#include <cstring>
#include <mutex>
#include <string_view>
#include <unordered_set>

namespace ZoPrimitives {

namespace {

std::atomic<bool> writingGenericFile{false};

std::string_view View(const ZoString& text) { return {text.c_str(), text.length()}; }

/// The classes that are in schemas now: by the number of their C++ class, in the order of registration, and
/// by the number of their registration.
class StandingClasses {
public:
    /// Returns a number that no other class gets; 0 when none is left.
    unsigned Enter(TZoClass* registered) {
        const std::lock_guard<std::mutex> lock(guard);
        if (byNumber.size() > ZoMadeFor::MOST) return 0;
        byNumber.push_back(registered);
        return static_cast<unsigned>(byNumber.size() - 1);
    }
    void Leave(unsigned number) {
        const std::lock_guard<std::mutex> lock(guard);
        byNumber[number] = nullptr;
    }
    TZoClass* Registered(unsigned number) {
        const std::lock_guard<std::mutex> lock(guard);
        return byNumber[number];
    }
    void Add(unsigned slot, TZoClass* latest) {
        const std::lock_guard<std::mutex> lock(guard);
        if (slot >= classes.size()) classes.resize(slot + 1);
        classes[slot].push_back(latest);
    }
    void Forget(unsigned slot, const TZoClass* ended) {
        const std::lock_guard<std::mutex> lock(guard);
        if (slot >= classes.size()) return;
        auto& same = classes[slot];
        same.erase(std::remove(same.begin(), same.end(), ended), same.end());
    }
    TZoClass* Get(unsigned slot) {
        const std::lock_guard<std::mutex> lock(guard);
        return slot < classes.size() && !classes[slot].empty() ? classes[slot].back() : nullptr;
    }

private:
    std::mutex guard;
    std::vector<std::vector<TZoClass*>> classes;
    std::vector<TZoClass*> byNumber{nullptr};
};

StandingClasses& Standing() {
    static StandingClasses* standing = new StandingClasses; // outlives every class
    return *standing;
}

[[noreturn]] void FailTaken(const TZoClass& added, const TZoClass& present) {
    const ZoString message = ZoString::FormatString(
        "[zoerror] class %s has the id %d, as %s has in this schema. See TZoMetaData::AddClass",
        added.GetName().c_str(), added.GetClassId(), present.GetName().c_str());
    AssertWithFunctor("FindClass(newClass->GetClassId()) == nullptr", message.c_str(), ZoSources::ZOMETADATA,
                      __LINE__);
}

} // namespace

unsigned ZoNewClassSlot() {
    static std::atomic<unsigned> last{0};
    return ++last;
}

/// Classes by name and by id; of equal ones the first is found. The lists are sorted because a file's names
/// and ids could be chosen to collide in a hash.
class TZoMetaData::TClassNameAndIdMap {
public:
    void Add(TZoClass* added) {
        // Room first: the class goes into both lists or into neither.
        if (byId.size() == byId.capacity()) byId.reserve(2 * byId.size() + 8);
        byName.insert(std::upper_bound(byName.begin(), byName.end(), added, NameIsLess), added);
        byId.insert(std::upper_bound(byId.begin(), byId.end(), added, IdIsLess), added);
    }
    /// Replaces the contents.
    void SetAll(const TIVector<TZoClass, pointer<TZoClass>>& all) {
        Clear();
        byName.reserve(all.NItems());
        for (const auto& one : all) byName.push_back(one.get());
        byId = byName;
        std::stable_sort(byName.begin(), byName.end(), NameIsLess);
        std::stable_sort(byId.begin(), byId.end(), IdIsLess);
    }
    void Clear() {
        byName.clear();
        byId.clear();
    }
    TZoClass* Find(std::string_view name) const {
        const auto found = std::lower_bound(
            byName.begin(), byName.end(), name,
            [](const TZoClass* one, std::string_view wanted) { return View(one->GetName()) < wanted; });
        return found == byName.end() || View((*found)->GetName()) != name ? nullptr : *found;
    }
    TZoClass* Find(int id) const {
        const auto found =
            std::lower_bound(byId.begin(), byId.end(), id,
                             [](const TZoClass* one, int wanted) { return one->GetClassId() < wanted; });
        return found == byId.end() || (*found)->GetClassId() != id ? nullptr : *found;
    }

private:
    static bool NameIsLess(const TZoClass* a, const TZoClass* b) {
        return View(a->GetName()) < View(b->GetName());
    }
    static bool IdIsLess(const TZoClass* a, const TZoClass* b) { return a->GetClassId() < b->GetClassId(); }

    std::vector<TZoClass*> byName;
    std::vector<TZoClass*> byId;
};

void TZoMetaData::IndexClasses() { index->SetAll(classes); }

TZoClass::~TZoClass() {
    Standing().Forget(slot, this);
    Standing().Leave(registration);
}

void TZoClass::SetType(const std::type_info& newType, unsigned newSlot) {
    type = &newType;
    slot = newSlot;
}

TZoMetaData::TZoMetaData() : index(new TClassNameAndIdMap) {}

TZoMetaData::~TZoMetaData() { Clear(); }

/// Returns an id that no class of the schema has: the next one or, once the greatest is taken, the lowest
/// free.
int TZoMetaData::NewId() const {
    if (nextId <= INT_MAX) return static_cast<int>(nextId);
    int id = 1;
    while (FindClass(id) != nullptr) ++id;
    return id;
}

void TZoMetaData::NoteId(int id) { nextId = std::max(nextId, id + 1LL); }

TZoClass* TZoMetaData::AddClass(TZoClass* newClass) {
    const pointer<TZoClass> holder(newClass);
    if (TZoClass* present = FindClass(newClass->GetName())) {
        if (present != newClass) ForgetUnresolved(newClass);
        NoteRival(*present, *newClass);
        return present;
    }
    if (newClass->classId == 0) newClass->classId = NewId();
    if (const TZoClass* other = FindClass(newClass->classId)) {
        ForgetUnresolved(newClass);
        FailTaken(*newClass, *other);
    }
    NoteId(newClass->classId);
    classes.Add(newClass);
    ++changes;
    index->Add(newClass);
    if (newClass->slot != 0 && newClass->schema == this) {
        if (newClass->slot >= slots.size()) slots.resize(newClass->slot + 1ULL);
        slots[newClass->slot] = newClass;
        Standing().Add(newClass->slot, newClass);
    }
    if (newClass->registration == 0 && !newClass->BelongsElsewhere(this))
        newClass->registration = Standing().Enter(newClass);
    return newClass;
}

void TZoMetaData::NoteRival(const TZoClass& present, const TZoClass& rival) {
    if (present.type == nullptr || rival.type == nullptr || *present.type == *rival.type) return;
    if (rivals.Contains(present.name)) return;
    rivals.Add(present.name);
    ++changes;
}

TZoClass* TZoMetaData::FindClass(const ZoString& name) const { return index->Find(View(name)); }

TZoClass* TZoMetaData::FindFormerClass(const ZoString& name) const {
    for (const auto& known : classes) {
        if (known->HadName(name)) return known.get();
    }
    return nullptr;
}

TZoClass* TZoMetaData::FindClass(int id) const { return index->Find(id); }

TZoClass* TZoMetaData::FindUnbound(const char* name, const std::type_info& type) const {
    TZoClass* found = index->Find(std::string_view(name));
    // Accessors of another type must not get objects of this one.
    return found == nullptr || found->type == nullptr || *found->type == type ? found : nullptr;
}

TZoClass* TZoMetaData::FindLatestClass(unsigned slot) { return Standing().Get(slot); }

TZoClass* TZoMetaData::FindClassOf(const ZoStreamableBase& object, unsigned slot) {
    const unsigned number = ZoMadeFor::Get(object);
    TZoClass* registered = number == 0 ? nullptr : Standing().Registered(number);
    return registered != nullptr ? registered : FindLatestClass(slot);
}

TZoClass* TZoMetaData::GetClass(int position) const {
    return classes[static_cast<unsigned long long>(position)].get();
}

int TZoMetaData::GetClassCount() const { return static_cast<int>(classes.NItems()); }

TZoClass* TZoMetaData::FindInherited(const ZoString& ancestorName) const {
    for (const auto& candidate : classes) {
        if (candidate->GetName() != ancestorName && candidate->IsInherited(ancestorName))
            return candidate.get();
    }
    return nullptr;
}

bool TZoMetaData::IsClassInherited(const ZoString& name, const ZoString& ancestorName) const {
    const TZoClass* found = FindClass(name);
    return found != nullptr && found->IsInherited(ancestorName);
}

void TZoMetaData::Unbind(TZoClass* leaving) {
    if (leaving->slot < slots.size() && slots[leaving->slot] == leaving) {
        slots[leaving->slot] = nullptr;
        Standing().Forget(leaving->slot, leaving);
    }
    ForgetUnresolved(leaving);
    if (leaving->BelongsElsewhere(this)) return;
    leaving->schema = nullptr;
    Standing().Leave(leaving->registration);
    leaving->registration = 0;
}

void TZoMetaData::ForgetUnresolved(const TZoClass* leaving) {
    for (unsigned long long i = unresolved.NItems(); i >= 1; --i) {
        if (unresolved[i]->owner == leaving) unresolved.RemoveAt(i);
    }
}

void TZoMetaData::ExcludeClass(const ZoString& name) {
    const pointer<TZoClass> leaving(FindClass(name));
    if (!leaving) return;
    changes += leaving->changes + 1ULL;
    classes.Remove(leaving.get());
    Unbind(leaving.get());
    index->Clear();
    for (const auto& left : classes) index->Add(left.get());
    for (const auto& left : classes) {
        if (left->BelongsElsewhere(this)) continue; // its own schema may still have the class
        while (left->parents.Remove(leaving.get())) left->NoteMissingParent();
        left->ForEachPointerField([&](TZoClassField& field) {
            RecordOrder::ForEachTarget(field, [&](TZoClassField& target) {
                if (target.fieldClass == leaving.get()) target.SetFieldClass(nullptr);
            });
            AddToResolveCrossRefs(&field);
        });
    }
}

void TZoMetaData::Clear() {
    changes = ChangeCount() + 1;
    unresolved.RemoveAll();
    index->Clear();
    for (const auto& leaving : classes) Unbind(leaving.get());
    classes.RemoveAll();
    cadastres.RemoveAll();
    registers.RemoveAll();
    rivals.RemoveAll();
}

void TZoMetaData::Register(ZoStreamableRegister* newRegister) {
    ZO_ASSERT(newRegister, "newRegister", ZoSources::ZOMETADATA);
    const pointer<ZoStreamableRegister> holder(newRegister);
    for (const auto& kept : registers) {
        if (kept->GetName() == newRegister->GetName()) return;
    }
    registers.Add(newRegister);
    ++changes;
}

void TZoMetaData::ClassesRegister() {
    if (registersClasses) return; // a class that registers calls this: the passes go on anyway
    struct Mark {
        explicit Mark(bool& schemaRegisters) : registers(schemaRegisters) { registers = true; }
        ~Mark() { registers = false; }
        bool& registers;
    };
    const Mark mark(registersClasses);
    TIVector<ZoStreamableRegister, pointer<ZoStreamableRegister>> called;
    unsigned long long before = 0;
    do {
        before = called.NItems();
        for (unsigned long long i = 1; i <= registers.NItems(); ++i) { // the list may change meanwhile
            const pointer<ZoStreamableRegister> next = registers[i];
            if (DoesClassExist(next->GetName()) || !next->ReadyToRegister(this)) continue;
            if (called.Contains(next.get())) continue; // it registered another class than it names
            called.Add(next.get());
            next->Register(this);
        }
    } while (called.NItems() != before);
}

void TZoMetaData::AddCadastre(TZoCadastre* cadastre) { cadastres.Add(cadastre); }

TZoCadastre* TZoMetaData::FindCadastre(const ZoString& className) const {
    for (const auto& cadastre : cadastres) {
        if (cadastre->GetName() == className) return cadastre.get();
    }
    return nullptr;
}

void TZoMetaData::AddToResolveCrossRefs(TZoClassField* field) {
    if (field == nullptr || !field->IsPointerKind()) return;
    if (field->owner != nullptr && field->owner->BelongsElsewhere(this)) return;
    bool known = true;
    RecordOrder::ForEachTarget(*field,
                               [&](TZoClassField& target) { known = known && target.fieldClass != nullptr; });
    if (!known) unresolved.AddUnique(field);
}

void TZoMetaData::ResolveCrossRefs() {
    TDVector<TZoClassField*> left;
    for (TZoClassField* field : unresolved) {
        bool known = true;
        RecordOrder::ForEachTarget(*field, [&](TZoClassField& target) {
            if (target.fieldClass == nullptr) target.SetFieldClass(FindClass(target.WantedClass(*field)));
            known = known && target.fieldClass != nullptr;
        });
        if (!known) left.Add(field);
    }
    unresolved = left;
}

bool TZoMetaData::IsGenericBase(const ZoString& className) {
    return className == "ZoStreamableBase" || className == "ZoObjectStreamable" || className == "Streamable";
}

bool TZoMetaData::Check(ZoString* report) const { return Check(report, nullptr); }

bool TZoMetaData::Check(ZoString* report, ZoString* warnings) const {
    SchemaCheck check(*this);
    const std::vector<ZoString> missing = check.Missing();
    if (report != nullptr) SchemaCheck::Append(*report, missing);
    if (warnings != nullptr) SchemaCheck::Append(*warnings, check.Warnings());
    return missing.empty();
}

void TZoMetaData::CheckOrThrow() const {
    ZoString lines;
    Check(&lines, &lines);
    if (lines.length() != 0) throw XStream(lines, "TZoMetaData::CheckOrThrow");
}

unsigned long long TZoMetaData::ChangeCount() const {
    unsigned long long count = changes;
    for (const auto& counted : classes) count += counted->changes;
    return count;
}

void TZoMetaData::CheckChangesOrThrow() const {
    // Several threads may use one schema: a check that is made twice does no harm.
    const unsigned long long now = ChangeCount();
    if (checkedAt.load(std::memory_order_relaxed) == now) return;
    CheckOrThrow();
    checkedAt.store(now, std::memory_order_relaxed);
}

bool TZoMetaData::WritingGenericFile() { return writingGenericFile.load(std::memory_order_relaxed); }

void TZoMetaData::WritingGenericFile(bool writing) {
    writingGenericFile.store(writing, std::memory_order_relaxed);
}

// The schema record

void TZoMetaData::SaveToStream(TBinOutStream* stream) {
    std::vector<TZoClass*> all;
    for (const auto& written : classes) all.push_back(written.get());
    SaveClasses(stream, all);
}

void TZoMetaData::SaveClasses(TBinOutStream* stream, const std::vector<TZoClass*>& written) {
    ZO_ASSERT(written.size() <= RecordFormat::MAX_INT_SIZE, "classes->NItems() <= MAX_INT_SIZE",
              ZoSources::ZOMETADATA);
    TZoClass::Listed listed(written.begin(), written.end());
    std::sort(listed.begin(), listed.end());
    *stream << static_cast<int>(written.size());
    for (TZoClass* one : written) one->SaveMetaToStream(stream, &listed);
    stream->FlushRecord(0, 0);
}

bool TZoMetaData::LoadFromStream(TBinInStream* stream, TZoMetaData* application) {
    Clear();
    return SchemaReader(*this, application).Read(*stream);
}

void TZoMetaData::FillObjectsCascade(TDVector<ZoStreamableBase*>* objects) {
    std::unordered_set<const ZoStreamableBase*> known(objects->begin(), objects->end());
    ZoItemAction owned([&](ZoStreamableBase* item) {
        if (item != nullptr && known.insert(item).second) objects->Add(item);
    });
    for (unsigned long long i = 1; i <= objects->NItems(); ++i) {
        ZoStreamableBase* object = (*objects)[i];
        if (TZoClass* objectClass = object->GetOriginalClass(this))
            objectClass->ChildsReferences(object, owned);
    }
}

} // namespace ZoPrimitives
