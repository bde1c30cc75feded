// One class of every hundredth object: the cost of opening everything, and of reading only that class.

#include "zo_model.h"

#include "ZoPrimitives/FilteredBinInStreamer.h"
#include "ZoPrimitives/MemoryBinInStream.h"

#include <stdexcept>

namespace bench::zo {

namespace {

using namespace ZoPrimitives;

constexpr std::size_t EACH = 100; // every hundredth object is a pin

/// The frame, with pins among the nodes of its storeys.
class PinnedContender : public ZoContender {
public:
    void BuildFrame(std::size_t objects) override {
        const std::size_t pins = objects / EACH;
        ZoContender::BuildFrame(objects - pins);
        const auto storeys = static_cast<std::size_t>(frame->storeys.NItems());
        std::size_t made = 0;
        for (std::size_t i = 0; i < storeys; ++i) {
            Storey& storey = *frame->storeys[i + 1];
            for (Pin* previous = nullptr; made < pins * (i + 1) / storeys; ++made) {
                auto* pin = new Pin;
                pin->name = "pin";
                pin->number = static_cast<int>(made);
                pin->stiffness = 1e6;
                pin->next = previous;
                storey.nodes.Add(pin);
                previous = pin;
            }
        }
    }
};

class FilteredContender : public ZoContender {
public:
    void OpenMemory(const Bytes& bytes) override {
        TDList<ZoString> names;
        names.Add("Pin");
        const auto stream = CreateMemoryBinInStream(bytes.data(), bytes.size(), VERSION);
        TFilteredBinInStreamer(stream.get(), &Schema(), &names).Read();
        stream->TakeObjects(&pins);
    }
    void DropOpened() override { pins.RemoveAll(); }
    Digest Opened() const override { return {static_cast<std::uint64_t>(pins.NItems()), 0}; }

private:
    TIVector<ZoStreamableBase> pins;
};

} // namespace

} // namespace bench::zo

std::unique_ptr<bench::Contender> bench::MakePinned() { return std::make_unique<zo::PinnedContender>(); }
std::unique_ptr<bench::Contender> bench::MakeFiltered() { return std::make_unique<zo::FilteredContender>(); }
