#include "ZoPrimitives/ConvertionHelper.h"

#include "Persistence/instances/ClassNames.h"
#include "ZoPrimitives/ZoAssert.h"
#include "ZoPrimitives/ZoSources.h"

#include <cstddef>
#include <typeindex>
#include <typeinfo>
#include <unordered_map>
#include <utility>
#include <vector>

namespace ZoPrimitives {

namespace {

/// Objects with their counterparts. How those are made and filled is the derived class's.
template <class From, class To>
class GraphConversion {
public:
    To* Convert(From* object) {
        if (object == nullptr) return nullptr;
        if (const auto known = counterparts.find(object); known != counterparts.end()) return known->second;
        return depth == 0 ? ConvertGraph(object) : ConvertOne(object);
    }

protected:
    ~GraphConversion() = default;

private:
    struct Pair {
        From* object;
        To* counterpart;
    };
    /// One conversion under way.
    class Level {
    public:
        explicit Level(int& conversions) : level(conversions) { ++level; }
        ~Level() { --level; }
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;

    private:
        int& level;
    };

    virtual To* Make(From& object) = 0;
    virtual void Fill(From& object, To& counterpart) = 0;

    To* ConvertGraph(From* object) {
        const Level level(depth);
        To* counterpart = nullptr;
        try {
            counterpart = ConvertOne(object);
            for (std::size_t i = 0; i < unfilled.size(); ++i) FillOne(Pair(unfilled[i])); // the list grows
        } catch (...) {
            unfilled.clear();
            for (const Pair& pair : made) counterparts.erase(pair.object);
            for (const Pair& pair : std::exchange(made, {})) ZoReferenceCount::Release(pair.counterpart);
            throw;
        }
        unfilled.clear();
        for (const Pair& pair : std::exchange(made, {})) ZoReferenceCount::Surrender(pair.counterpart);
        return counterpart;
    }

    To* ConvertOne(From* object) {
        made.push_back({object, nullptr});
        const std::size_t index = made.size() - 1;
        To* counterpart = Make(*object);
        // From here on it is held, so that nobody ends it until the graph is converted.
        ZoReferenceCount::Add(counterpart);
        made[index].counterpart = counterpart;
        counterparts[object] = counterpart;
        if (counterpart == nullptr) return nullptr;
        if (depth <= ZO_CONVERTION_DEPTH) {
            FillOne(made[index]);
        } else {
            unfilled.push_back(made[index]);
        }
        return counterpart;
    }

    void FillOne(Pair pair) {
        const Level level(depth);
        Fill(*pair.object, *pair.counterpart);
    }

    std::unordered_map<From*, To*> counterparts;
    // Of the outermost conversion:
    std::vector<Pair> made;
    std::vector<Pair> unfilled;
    int depth = 0;
};

} // namespace

IStreamableConvertionFactory::~IStreamableConvertionFactory() = default;

class TBusinessToStreamableObjectConvertionHelper::Conversion final
    : public GraphConversion<ZoObject, ZoObjectStreamable> {
public:
    Conversion(TBusinessToStreamableObjectConvertionHelper& owner, IStreamableConvertionFactory* streamables)
        : helper(owner), factory(streamables) {}

private:
    ZoObjectStreamable* Make(ZoObject& object) override {
        const std::type_info& type = typeid(object);
        auto known = names.find(type);
        if (known == names.end()) known = names.emplace(type, ClassText(type)).first;
        return factory->CreateStreamable(known->second);
    }
    void Fill(ZoObject& object, ZoObjectStreamable& counterpart) override {
        counterpart.FillFromBusinessObject(&object, &helper);
    }

    TBusinessToStreamableObjectConvertionHelper& helper;
    IStreamableConvertionFactory* factory;
    std::unordered_map<std::type_index, ZoString> names;
};

class TStreamableToBusinessObjectConvertionHelper::Conversion final
    : public GraphConversion<ZoObjectStreamable, ZoObject> {
public:
    explicit Conversion(TStreamableToBusinessObjectConvertionHelper& owner) : helper(owner) {}

private:
    ZoObject* Make(ZoObjectStreamable& object) override { return object.CreateBusinessObject(); }
    void Fill(ZoObjectStreamable& object, ZoObject& counterpart) override {
        object.FillBusinessObject(&counterpart, &helper);
    }

    TStreamableToBusinessObjectConvertionHelper& helper;
};

TBusinessToStreamableObjectConvertionHelper::TBusinessToStreamableObjectConvertionHelper(
    IStreamableConvertionFactory* factory)
    : conversion(new Conversion(*this, factory)) {
    ZO_ASSERT(factory, "factory", ZoSources::CONVERTION_HELPER);
}
TBusinessToStreamableObjectConvertionHelper::~TBusinessToStreamableObjectConvertionHelper() = default;

ZoObjectStreamable* TBusinessToStreamableObjectConvertionHelper::Convert(ZoObject* business) {
    return conversion->Convert(business);
}

TStreamableToBusinessObjectConvertionHelper::TStreamableToBusinessObjectConvertionHelper()
    : conversion(new Conversion(*this)) {}
TStreamableToBusinessObjectConvertionHelper::~TStreamableToBusinessObjectConvertionHelper() = default;

ZoObject* TStreamableToBusinessObjectConvertionHelper::Convert(ZoObjectStreamable* streamable) {
    return conversion->Convert(streamable);
}

} // namespace ZoPrimitives
