#pragma once

#include "Persistence/instances/KeptParts.h"
#include "ZoPrimitives/ZoMetaData.h"

#include <map>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

namespace ZoPrimitives {

/// The schema of a file that holds what an application knows and what was kept of opened files beyond that:
/// the application's classes, which get the fields and parents that those files have besides, and the files'
/// other classes. Classes and fields that the application has are linked to it (`GetOriginal`).
class MergedSchema {
public:
    using Files = std::vector<std::shared_ptr<const KeptFile>>;

    /// `used`: the application's classes, with all ancestors. Throws `XCannotKeep` if a class would be its
    /// own ancestor or have too many levels.
    MergedSchema(const TZoMetaData& application, const std::vector<TZoClass*>& used, const Files& files);

    void Save(TBinOutStream* stream) { schema.SaveToStream(stream); }
    /// For a class of the application or of one of the files. Its own name stands for it; null if it is not
    /// in the schema.
    const TZoClass* Find(const TZoClass& someClass) const;
    /// For a field of one of the files.
    const TZoClassField* Find(const TZoClassField& fileField) const;
    /// Whether objects of the application's class are written as ever.
    bool IsPlain(const TZoClass& applicationClass) const;

    /// Whether values of both stand alike in a record.
    static bool IsAlike(const TZoClassField& a, const TZoClassField& b);
    /// The application's field for a field of a file; null if there is none.
    static TZoClassField* ApplicationsField(const TZoMetaData& application, const TZoClassField& fileField);

private:
    struct Node {
        pointer<TZoClass> merged;
        TZoClass* application = nullptr;
        std::vector<std::pair<TZoClass*, const KeptFile*>> files; // the class in each
        enum class State { New, Open, Done } state = State::New;
        unsigned levels = 1;
        bool plain = true;
    };

    Node& Enter(const ZoString& name, TZoClass* application);
    Node& NodeOf(const TZoClass& someClass) { return nodes.find(NameOf(someClass))->second; }
    const ZoString& NameOf(const TZoClass& someClass) const;
    void EnterFile(const KeptFile& file);
    void Number();
    [[noreturn]] static void Refuse(const Node& node);
    void LinkParents(Node& node);
    void AddParents(Node& node, const TZoClass& from);
    void AddFields(Node& node);
    TZoClassField* AddField(Node& node, const TZoClassField& like);
    void LinkFieldClasses(Node& node);

    const TZoMetaData& application;
    TZoMetaData schema;
    std::map<ZoString, Node> nodes; // by the application's name, or else the file's
    std::vector<Node*> order;       // as entered
    std::unordered_map<const TZoClassField*, const TZoClassField*> fields; // the application's and the files'
};

} // namespace ZoPrimitives
