#include "storage.h"

#include "compare.h"
#include "failure.h"

#include "ZoPrimitives/BinInStreamer.h"
#include "ZoPrimitives/BinOutStreamer.h"
#include "ZoPrimitives/FileBinInStream.h"
#include "ZoPrimitives/FileBinOutStream.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoUtf8.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <system_error>

namespace Frame {

using namespace ZoPrimitives;

namespace {

/// Of the files that this application writes, and the newest that it reads.
constexpr unsigned VERSION = 3;
constexpr unsigned RELEASE = 2026;

std::string Quoted(const std::string& path) { return '"' + path + '"'; }

bool Exists(const std::string& path) {
    std::error_code ignored;
    return std::filesystem::exists(path, ignored);
}

/// For those who look after the program.
std::string Detail(const XStream& error) {
    return ZoToUtf8(error.Location()) + ": " + ZoToUtf8(error.Message());
}

Failure Damaged(const std::string& path, const std::string& why) {
    const std::string backup = path + "-bak";
    return Failure(Quoted(path) + " is damaged: " +
                   (Exists(backup) ? "open the version before it, " + Quoted(backup) : "use a copy of it") +
                   ". (" + why + ")");
}

/// Counts the objects of a file, also those that do not stay.
class CountingStreamer : public TBinInStreamer {
public:
    using TBinInStreamer::TBinInStreamer;
    void OnAfterLoadInstance(ZoStreamableBase*) override { ++count; }
    unsigned Count() const { return count; }

private:
    unsigned count = 0;
};

void OpenStream(TFileBinInStream& file, const std::string& path) {
    std::error_code ignored;
    if (!Exists(path)) throw Failure("There is no file " + Quoted(path) + ".");
    if (std::filesystem::is_directory(path, ignored)) {
        throw Failure(Quoted(path) + " is a folder: name a file in it.");
    }
    try {
        file.OpenFile();
    } catch (const XReadStream&) {
        throw Failure(
            Quoted(path) +
            " cannot be opened: look whether you may read it, and whether another program has it open.");
    }
    try {
        file.InitializeKeepingLocked();
    } catch (const XNewerVersion&) {
        throw Failure(Quoted(path) +
                      " was saved by a newer version of this program: update the program to open it.");
    } catch (const XReadStream&) {
        throw Failure(Quoted(path) + " is not a file of this program.");
    }
}

/// Objects that were read are the caller's, also when reading failed.
void Keep(const TFileBinInStream& file, Model& model) {
    for (ZoStreamableBase* object : file.Objects()) model.objects.Add(object);
}

void ReadObjects(TFileBinInStream& file, const std::string& path, Model& model) {
    CountingStreamer streamer(&file, &Schema());
    ZoStreamableBase* root = nullptr;
    try {
        root = streamer.ReadObjects();
    } catch (const XStream& error) {
        Keep(file, model);
        throw Damaged(path, Detail(error));
    } catch (...) {
        Keep(file, model);
        throw;
    }
    Keep(file, model);

    // Records that are not whole are passed over in silence. The first record holds the classes.
    const bool allKnown = streamer.GetUnknowObjects()->NItems() == 0;
    const unsigned saved = std::max(file.GetNInstances(), 1u) - 1;
    if (file.GetSkipped() != 0 || (allKnown && streamer.Count() != saved)) {
        throw Damaged(path, std::to_string(saved) + " objects were saved, " +
                                std::to_string(streamer.Count()) + " can be read");
    }
    model.building = dynamic_cast<Building*>(root);
    if (model.building == nullptr) throw Failure(Quoted(path) + " holds no building.");
    const ZoString fault = model.building->FindFault();
    if (!fault.IsNull()) throw Damaged(path, ZoToUtf8(fault));
    if (allKnown && CountObjects(*model.building) != streamer.Count()) {
        throw Damaged(path, "some objects have lost their place");
    }
}

} // namespace

void Save(const Model& model, const std::string& path) {
    const std::unique_ptr<TFileBinOutStream> file(
        TFileBinOutStream::Create(path.c_str(), VERSION, RELEASE, true));
    bool complete = false;
    try {
        file->Initialize();
        TBinOutStreamer streamer(file.get(), &Schema());
        streamer.WriteObjectMetaData(model.building);
        streamer.WriteObject(model.building);
        complete = true;
        file->Finalize();
    } catch (const XStream& error) {
        const std::string detail = " (" + Detail(error) + ")";
        const std::string written = file->GetWrittenPath().c_str();
        if (complete && written != path && Exists(written)) {
            throw Failure(Quoted(path) + " cannot be replaced: what was to be saved is in " +
                          Quoted(written) + "." + detail);
        }
        file->FreeResourses();
        std::error_code ignored;
        if (written != path) std::filesystem::remove(written, ignored);
        const bool full = dynamic_cast<const XWriteStreamOutOfSpace*>(&error) != nullptr;
        throw Failure(Quoted(path) + " cannot be saved and is as it was: " +
                      (full ? "the disk is full." : "look whether you may write to its folder.") + detail);
    }
}

Model Open(const std::string& path) {
    Model model;
    TFileBinInStream file(path.c_str(), VERSION);
    OpenStream(file, path);
    ReadObjects(file, path, model);
    return model;
}

} // namespace Frame
