#include "floor.h"
#include "plain_model.h"
#include "zo_model.h"

#include "ZoPrimitives/BinOutStreamer.h"
#include "ZoPrimitives/MemoryBinOutStream.h"

namespace bench {

namespace {

/// The frame by hand. There is no chain: it would differ only in depth.
template <class M, class Base>
class FloorContender : public Base {
public:
    void BuildFrame(std::size_t count) override {
        Base::BuildFrame(count);
        MakePrefix(static_cast<std::uint32_t>(count) + 1);
    }

    Bytes SaveMemory() override {
        Sink sink;
        Save(sink);
        return sink.Take();
    }
    void SaveFile(const std::string& path) override {
        Sink sink(path);
        Save(sink);
        sink.Close();
    }
    void OpenMemory(const Bytes& bytes) override {
        this->openedFrame =
            dynamic_cast<typename M::Building*>(floor::FrameReader<M>().Run(bytes.data(), bytes.size()));
    }
    void OpenFile(const std::string& path) override { OpenMemory(Bytes::Load(path)); }

private:
    void Save(Sink& sink) {
        floor::FrameWriter<M>::Number(*this->frame);
        floor::Writer writer(sink);
        writer.PutRaw(prefix);
        floor::FrameWriter<M>::Write(writer, *this->frame);
        writer.Finish();
    }

    /// Takes the header and the schema record from the library.
    void MakePrefix(std::uint32_t records) {
        ZoPrimitives::TMemoryBinOutStream stream(zo::VERSION, zo::RELEASE);
        stream.Initialize();
        const auto frame = FrameBuilder<zo::Classes>::Build(1000); // has objects of all classes
        ZoPrimitives::TBinOutStreamer(&stream, &zo::Schema()).WriteObjectMetaData(frame.get());
        unsigned long long size = 0;
        unsigned char* block = stream.Detach(size);
        std::memcpy(block + floor::COUNT_OFFSET, &records, sizeof records);
        prefix = Bytes(block, static_cast<std::size_t>(size));
    }

    Bytes prefix;
};

} // namespace

std::unique_ptr<Contender> MakeFloor() {
    return std::make_unique<FloorContender<zo::Classes, zo::ZoContender>>();
}
std::unique_ptr<Contender> MakePlainFloor() {
    return std::make_unique<FloorContender<plain::Classes, plain::PlainContender>>();
}

} // namespace bench
