// This library, through its public headers.

#include "zo_model.h"

#include "ZoPrimitives/BinInStreamer.h"
#include "ZoPrimitives/BinOutStreamer.h"
#include "ZoPrimitives/FileBinInStream.h"
#include "ZoPrimitives/FileBinOutStream.h"
#include "ZoPrimitives/MemoryBinInStream.h"
#include "ZoPrimitives/MemoryBinOutStream.h"
#include "ZoPrimitives/ZoMetaData.h"

#include <stdexcept>

namespace bench::zo {

using namespace ZoPrimitives;

TZoMetaData& Schema() {
    static TZoMetaData schema;
    if (schema.GetClassCount() == 0) {
        Entity::Register(&schema);
        Material::Register(&schema);
        Section::Register(&schema);
        Node::Register(&schema);
        Member::Register(&schema);
        Column::Register(&schema);
        Girder::Register(&schema);
        Storey::Register(&schema);
        Building::Register(&schema);
        Link::Register(&schema);
        Pin::Register(&schema);
        ZoString report;
        if (!schema.Check(&report)) throw std::runtime_error(report.c_str());
    }
    return schema;
}

ZoStreamableBase* ZoContender::Root() const {
    return frame != nullptr ? static_cast<ZoStreamableBase*>(frame.get()) : chain.get();
}

void ZoContender::TakeRoot(ZoStreamableBase* root) {
    openedFrame = dynamic_cast<Building*>(root);
    openedChain = dynamic_cast<Link*>(root);
}

namespace {

void Save(TBinOutStream& stream, ZoStreamableBase* root) {
    stream.Initialize();
    TBinOutStreamer(&stream, &Schema()).WriteObjectWithMetaData(root);
}

} // namespace

Bytes ZoContender::SaveMemory() {
    TMemoryBinOutStream stream(VERSION, RELEASE);
    Save(stream, Root());
    unsigned long long size = 0;
    unsigned char* block = stream.Detach(size);
    return Bytes(block, static_cast<std::size_t>(size));
}

void ZoContender::OpenMemory(const Bytes& bytes) {
    const auto stream = CreateMemoryBinInStream(bytes.data(), bytes.size(), VERSION);
    TBinInStreamer streamer(stream.get(), &Schema());
    TakeRoot(streamer.ReadObjects());
}

void ZoContender::SaveFile(const std::string& path) {
    const pointer<TFileBinOutStream> stream(TFileBinOutStream::Create(path.c_str(), VERSION, RELEASE, false));
    Save(*stream, Root());
    stream->Finalize();
}

void ZoContender::OpenFile(const std::string& path) {
    TFileBinInStream stream(path.c_str(), VERSION);
    stream.Initialize();
    TBinInStreamer streamer(&stream, &Schema());
    TakeRoot(streamer.ReadObjects());
}

void ZoContender::DropOpened() {
    openedFrame = nullptr;
    openedChain = nullptr;
}

} // namespace bench::zo

std::unique_ptr<bench::Contender> bench::MakeZo() { return std::make_unique<zo::ZoContender>(); }
