#pragma once

#include "input.h"

#include "ZoPrimitives/ZoRecords.h"

#include <functional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace ZoTool {

/// The objects of a file, read by the file's own schema one at a time.
class Model {
public:
    Model(Tool& tool, const Input& input);

    const std::string& Name() const { return input.Name(); }
    const ZoPrimitives::TZoMetaData& Schema() const { return reader.GetSchema(); }
    ZoPrimitives::TZoRecordReader& Reader() { return reader; }

    /// The ids of the named class and of those that derive from it. Throws `Trouble` if there is no such
    /// class.
    std::unordered_set<int> Family(const std::string& className) const;

    using Visit = std::function<void(const ZoPrimitives::TZoRecord&)>;
    /// Each object, in file order. `classes`: of these alone, whose ids they are; others are then passed over
    /// by their heads.
    void Each(const Visit& visit, const std::unordered_set<int>* classes = nullptr);

    /// Ends the pass: its visit was the last.
    void Stop() { stopped = true; }
    /// The head of each object that is whole as far as heads tell, in file order.
    void EachHead(const std::function<void(const ZoPrimitives::TZoFrame&)>& visit);

    /// The object of a uid, wherever it stands; what does not fit its class counts as met by the pass.
    bool Find(int uid, ZoPrimitives::TZoRecord& record);

    /// Tells what the latest pass met that is damaged, unknown or undecided: data is missing then, and the
    /// end is `Exit::Trouble`.
    Exit TellLosses();

    /// "Class.field" names of an object's values, each once.
    const std::vector<std::string>& NamesOf(ZoPrimitives::TZoClass& type);

    /// Shows that an object could not be read as a whole.
    static const char* StateOf(const ZoPrimitives::TZoRecord& record);

private:
    bool NextFrame(ZoPrimitives::TZoFrame& frame);
    void Begin(bool headsOnly);
    void Count(const ZoPrimitives::TZoRecord& record);

    Tool& tool;
    const Input& input;
    ZoPrimitives::TZoRecordReader reader;
    std::unordered_map<const ZoPrimitives::TZoClass*, std::vector<std::string>> names;
    bool stopped = false;
    bool decoded = false;             // a record's values
    unsigned long long damaged = 0;   // records
    unsigned long long strayed = 0;   // bytes
    unsigned long long unknown = 0;   // records of unknown classes
    unsigned long long misshapen = 0; // records that do not fit their class
};

} // namespace ZoTool
