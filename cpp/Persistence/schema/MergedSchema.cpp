#include "Persistence/schema/MergedSchema.h"

#include "Persistence/schema/FieldKinds.h"
#include "Persistence/schema/RecordOrder.h"
#include "Persistence/schema/SchemaReader.h"
#include "ZoPrimitives/WholeText.h"
#include "ZoPrimitives/XStream.h"

#include <algorithm>
#include <climits>

namespace ZoPrimitives {

MergedSchema::MergedSchema(const TZoMetaData& itsApplication, const std::vector<TZoClass*>& used,
                           const Files& files)
    : application(itsApplication) {
    for (TZoClass* one : used) Enter(one->GetName(), one);
    for (const auto& file : files) EnterFile(*file);
    Number();
    for (Node* node : order) AddFields(*node);
    for (Node* node : order) LinkFieldClasses(*node);
    for (Node* node : order) LinkParents(*node);
    schema.IndexClasses();
}

MergedSchema::Node& MergedSchema::Enter(const ZoString& name, TZoClass* known) {
    Node& node = nodes[WholeText(name)];
    if (node.merged) return node;
    node.merged =
        new TZoClass(&schema, nullptr, name, nullptr, known != nullptr && known->GetAbstract(), nullptr);
    node.application = known;
    node.merged->original = known;
    order.push_back(&node);
    if (known != nullptr) {
        for (const auto& parent : known->parents) Enter(parent->GetName(), parent.get());
    }
    return node;
}

void MergedSchema::EnterFile(const KeptFile& file) {
    for (int i = 1; i <= file.schema->GetClassCount(); ++i) {
        TZoClass* fileClass = file.schema->GetClass(i);
        TZoClass* known = SchemaReader::ApplicationsClass(application, fileClass->GetName());
        Node& node = Enter(known != nullptr ? known->GetName() : fileClass->GetName(), known);
        node.files.emplace_back(fileClass, &file);
        if (known == nullptr) node.merged->abstract = fileClass->GetAbstract();
    }
}

/// The application's classes keep their order and ids, others follow.
void MergedSchema::Number() {
    const auto add = [this](Node& node, int id) {
        node.merged->classId = id;
        schema.classes.Add(node.merged.get());
    };
    int last = 0;
    for (int i = 1; i <= application.GetClassCount(); ++i) {
        const TZoClass& known = *application.GetClass(i);
        last = std::max(last, known.GetClassId());
        const auto found = nodes.find(known.GetName());
        if (found != nodes.end()) add(found->second, known.GetClassId());
    }
    for (Node* node : order) {
        if (node->application != nullptr) continue;
        if (last == INT_MAX) Refuse(*node);
        add(*node, ++last);
    }
}

void MergedSchema::Refuse(const Node& node) {
    throw XCannotKeep(node.merged->GetName(), "", "MergedSchema::MergedSchema");
}

const ZoString& MergedSchema::NameOf(const TZoClass& someClass) const {
    if (someClass.GetMetaData() == &application) return someClass.GetName();
    const TZoClass* known = SchemaReader::ApplicationsClass(application, someClass.GetName());
    return (known != nullptr ? *known : someClass).GetName();
}

const TZoClass* MergedSchema::Find(const TZoClass& someClass) const {
    const auto found = nodes.find(NameOf(someClass));
    return found == nodes.end() ? nullptr : found->second.merged.get();
}

const TZoClassField* MergedSchema::Find(const TZoClassField& fileField) const {
    const auto found = fields.find(&fileField);
    return found == fields.end() ? nullptr : found->second;
}

bool MergedSchema::IsPlain(const TZoClass& applicationClass) const {
    const auto found = nodes.find(applicationClass.GetName());
    return found == nodes.end() || found->second.plain;
}

/// The files' parents come first: the application's may be among their ancestors.
void MergedSchema::LinkParents(Node& node) {
    if (node.state == Node::State::Done) return;
    if (node.state == Node::State::Open) Refuse(node);
    node.state = Node::State::Open;
    for (const auto& [fileClass, file] : node.files) AddParents(node, *fileClass);
    if (node.application != nullptr) {
        AddParents(node, *node.application);
        node.plain = node.plain && node.merged->parents.NItems() == node.application->parents.NItems();
    }
    if (node.levels > SchemaReader::MAX_LEVELS) Refuse(node);
    node.state = Node::State::Done;
}

void MergedSchema::AddParents(Node& node, const TZoClass& from) {
    for (const auto& parent : from.parents) {
        Node& above = NodeOf(*parent);
        LinkParents(above);
        if (node.merged->IsInherited(above.merged.get())) continue;
        node.merged->parents.Add(above.merged.get());
        node.levels += above.levels;
        node.plain = node.plain && above.plain;
    }
}

bool MergedSchema::IsAlike(const TZoClassField& a, const TZoClassField& b) {
    return FieldKindOf(a.GetFieldType()).encoding == FieldKindOf(b.GetFieldType()).encoding;
}

TZoClassField* MergedSchema::ApplicationsField(const TZoMetaData& application,
                                               const TZoClassField& fileField) {
    TZoClass& owner = *fileField.GetOwnerClass();
    TZoClass* known = SchemaReader::ApplicationsClass(application, owner.GetName());
    TZoClassField* found = known == nullptr ? nullptr : owner.FieldFor(fileField, *known);
    return found != nullptr && IsAlike(*found, fileField) ? found : nullptr;
}

TZoClassField* MergedSchema::AddField(Node& node, const TZoClassField& like) {
    return node.merged->AddField(0, like.GetFieldType(), like.GetFieldName());
}

void MergedSchema::AddFields(Node& node) {
    TZoClass& merged = *node.merged;
    merged.loading = true;
    if (node.application != nullptr) {
        for (TZoClassField* field : RecordOrder::FieldsOf(*node.application)) {
            TZoClassField* copy = AddField(node, *field);
            copy->original = field;
            fields[field] = copy;
        }
    }
    std::map<std::pair<ZoString, int>, const TZoClassField*> more; // by name and encoding
    for (const auto& [fileClass, file] : node.files) {
        for (const TZoClassField* field : RecordOrder::FieldsOf(*fileClass)) {
            if (ApplicationsField(application, *field) != nullptr || file->handled.count(field) != 0)
                continue;
            const int encoding = FieldKindOf(field->GetFieldType()).encoding;
            const TZoClassField*& its = more[{WholeText(field->GetFieldName()), encoding}];
            if (its == nullptr) its = AddField(node, *field);
            fields[field] = its;
        }
    }
    merged.loading = false;
    merged.PutInOrder();
    node.plain = node.application != nullptr && more.empty();
}

/// Also maps the files' fields that the application has, perhaps in an ancestor.
void MergedSchema::LinkFieldClasses(Node& node) {
    const auto link = [&](const TZoClassField& field, const TZoClassField* to) {
        const TZoClass* target = field.GetFieldClass();
        const TZoClass* its = target == nullptr ? nullptr : Find(*target);
        auto* linked = const_cast<TZoClassField*>(to);
        if (its != nullptr && linked->GetFieldClass() == nullptr)
            linked->fieldClass = const_cast<TZoClass*>(its);
    };
    if (node.application != nullptr) {
        for (const TZoClassField* field : RecordOrder::FieldsOf(*node.application))
            link(*field, fields[field]);
    }
    for (const auto& [fileClass, file] : node.files) {
        for (const TZoClassField* field : RecordOrder::FieldsOf(*fileClass)) {
            if (file->handled.count(field) != 0) continue;
            if (const TZoClassField* known = ApplicationsField(application, *field)) {
                fields[field] = fields[known];
            } else {
                link(*field, fields[field]);
            }
        }
    }
}

} // namespace ZoPrimitives
