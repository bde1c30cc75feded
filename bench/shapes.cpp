// The cost of members that are objects: 100,000 objects hold the same two numbers as quantities by value, as
// owned quantities and as plain numbers; also the cost of texts.

#include "measure.h"
#include "zo_model.h"

#include "ZoPrimitives/BinInStreamer.h"
#include "ZoPrimitives/BinOutStreamer.h"
#include "ZoPrimitives/MemoryBinInStream.h"
#include "ZoPrimitives/MemoryBinOutStream.h"
#include "ZoPrimitives/grandeza.h"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace bench::zo {

using namespace ZoPrimitives;

class ByValue : public ZoStreamableBase {
    REGISTER_ZO_BEGIN(ByValue)
    DECLARE_ZO_FIELD_CHILD_VALUE(GComprimento, length)
    DECLARE_ZO_FIELD_CHILD_VALUE(GArea, area)
    REGISTER_ZO_END

    void Set(int i) {
        length = GComprimento(i, TComprimento::m);
        area = GArea(i, TArea::m2);
    }
    double Sum() const { return length.m() + area.m2(); }
};

class Owned : public ZoStreamableBase {
    REGISTER_ZO_BEGIN(Owned)
    DECLARE_ZO_FIELD_CHILD(GComprimento, length)
    DECLARE_ZO_FIELD_CHILD(GArea, area)
    REGISTER_ZO_END

    void Set(int i) {
        length = new GComprimento(i, TComprimento::m);
        area = new GArea(i, TArea::m2);
    }
    double Sum() const { return length->m() + area->m2(); }
};

class Plain : public ZoStreamableBase {
    REGISTER_ZO_BEGIN(Plain)
    DECLARE_ZO_FIELD(double, length)
    DECLARE_ZO_FIELD(double, area)
    REGISTER_ZO_END

    void Set(int i) { length = area = i; }
    double Sum() const { return length + area; }
};

class Texts : public ZoStreamableBase {
    REGISTER_ZO_BEGIN(Texts)
    DECLARE_ZO_FIELD(ZoString, name)
    DECLARE_ZO_FIELD(ZoString, layer)
    DECLARE_ZO_FIELD(ZoString, material)
    DECLARE_ZO_FIELD(ZoString, remark)
    REGISTER_ZO_END

    void Set(int i) {
        name = ZoString("Beam ") + i;
        layer = "Structure";
        material = "Concrete C30/37";
        remark = "checked against the drawings of the second revision";
    }
    double Sum() const { return name.length() + layer.length() + material.length() + remark.length(); }
};

namespace {

constexpr int OBJECTS = 100'000;

/// 100,000 objects of one class, each a root.
template <class T>
class ShapeContender : public Contender {
public:
    ShapeContender() {
        ZoRegisterGrandezas(&schema);
        T::Register(&schema);
    }
    void BuildFrame(std::size_t objects) override {
        for (std::size_t i = 0; i < objects; ++i) {
            auto* object = new T;
            object->Set(static_cast<int>(i));
            built.Add(object);
        }
    }
    void BuildChain(std::size_t) override {}
    Bytes SaveMemory() override {
        TMemoryBinOutStream stream(VERSION, RELEASE);
        stream.Initialize();
        TBinOutStreamer streamer(&stream, &schema);
        TDList<ZoStreamableBase*> roots;
        for (const auto& object : built) roots.Add(object.get());
        streamer.WriteObjectsMetaData(&roots);
        streamer.WriteObjects(&roots);
        unsigned long long size = 0;
        unsigned char* block = stream.Detach(size);
        return Bytes(block, static_cast<std::size_t>(size));
    }
    void SaveFile(const std::string&) override {}
    void OpenMemory(const Bytes& bytes) override {
        const auto stream = CreateMemoryBinInStream(bytes.data(), bytes.size(), VERSION);
        TBinInStreamer(stream.get(), &schema).ReadObjects();
        stream->TakeObjects(&opened);
    }
    void OpenFile(const std::string&) override {}
    Digest Built() const override { return Of(built); }
    Digest Opened() const override { return Of(opened); }
    void DropOpened() override { opened.RemoveAll(); }

private:
    template <class List>
    static Digest Of(const List& list) {
        Digest digest;
        for (const auto& object : list) {
            const auto* typed = dynamic_cast<const T*>(object.get());
            if (typed == nullptr) continue;
            ++digest.objects;
            digest.values += static_cast<std::uint64_t>(typed->Sum());
        }
        return digest;
    }

    TZoMetaData schema;
    TIVector<ZoStreamableBase> built;
    TIVector<ZoStreamableBase> opened;
};

template <class T>
void Run(const char* title, int runs) {
    const std::string path = std::string(ZO_BENCH_FILES) + "/shape";
    const Result save = InChild([&](Result& result) {
        ShapeContender<T> contender;
        contender.BuildFrame(OBJECTS);
        TimeSaves(contender, MEMORY, path, runs, result);
    });
    const Result open = InChild([&](Result& result) {
        ShapeContender<T> contender;
        TimeOpens(contender, MEMORY, path, runs, result);
    });
    if (!save.done || !open.done || save.digest != open.digest || open.digest.objects != OBJECTS)
        throw std::runtime_error(std::string(title) + " failed");
    std::printf("  %-28s %7.1f / %7.1f   %7.1f / %7.1f   %7.1f\n", title, save.fresh / 1e6, save.Time() / 1e6,
                open.fresh / 1e6, open.Time() / 1e6, static_cast<double>(save.bytes) / 1e6);
}

} // namespace

} // namespace bench::zo

void bench::RunShapes(int runs) {
    std::printf("\n100,000 objects, memory: ms, fresh / warm\n  %-28s %17s   %17s   %7s\n", "", "save",
                "open", "MB");
    zo::Run<zo::Plain>("two numbers", runs);
    zo::Run<zo::ByValue>("two quantities, by value", runs);
    zo::Run<zo::Owned>("two quantities, owned", runs);
    zo::Run<zo::Texts>("four texts", runs);
}
