#include "storage.h"

#include "compare.h"
#include "failure.h"

#include "ZoPrimitives/BinInStreamer.h"
#include "ZoPrimitives/BinOutStreamer.h"
#include "ZoPrimitives/ClipboardBinInStream.h"
#include "ZoPrimitives/ClipboardBinOutStream.h"
#include "ZoPrimitives/FileBinInStream.h"
#include "ZoPrimitives/FileBinOutStream.h"
#include "ZoPrimitives/FilteredBinInStreamer.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoUtf8.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <memory>
#include <system_error>

namespace Frame {

using namespace ZoPrimitives;

namespace {

/// The version of the files that this application writes, and the newest that it reads.
constexpr unsigned VERSION = 4;
constexpr unsigned VERSION_WITHOUT_VALUES = 3; // had plain numbers instead of quantities: version3.cpp
constexpr unsigned RELEASE = 2026;

std::string Quoted(const std::string& path) { return '"' + path + '"'; }

bool Exists(const std::string& path) {
    std::error_code ignored;
    return std::filesystem::exists(path, ignored);
}

/// Details for support.
std::string Detail(const XStream& error) {
    return ZoToUtf8(error.Location()) + ": " + ZoToUtf8(error.Message());
}

/// Where a building is read from, and what to do if it is damaged there.
struct Source {
    std::string name;
    std::string remedy;
};

Source FileSource(const std::string& path) {
    const std::string backup = path + "-bak";
    return {Quoted(path),
            Exists(backup) ? "open the version before it, " + Quoted(backup) : "use a copy of it"};
}

Failure Damaged(const Source& source, const std::string& why) {
    return Failure(source.name + " is damaged: " + source.remedy + ". (" + why + ")");
}

/// Counts the objects of a file, including those that are dropped later.
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

void ReadObjects(TBinInStream& stream, const Source& source, Model& model) {
    CountingStreamer streamer(&stream, &Schema());
    ZoStreamableBase* root = nullptr;
    try {
        root = streamer.ReadObjects();
    } catch (const XStream& error) {
        stream.TakeObjects(&model.objects); // they belong to the caller even if reading failed
        throw Damaged(source, Detail(error));
    } catch (...) {
        stream.TakeObjects(&model.objects);
        throw;
    }
    stream.TakeObjects(&model.objects);

    // Damaged records are skipped silently. The first record holds the classes.
    const bool allKnown = streamer.GetUnknowObjects()->NItems() == 0;
    const unsigned saved = std::max(stream.GetNInstances(), 1u) - 1;
    if (stream.GetSkipped() != 0 || (allKnown && streamer.Count() != saved)) {
        throw Damaged(source, std::to_string(saved) + " objects were saved, " +
                                  std::to_string(streamer.Count()) + " can be read");
    }
    model.building = dynamic_cast<Building*>(root);
    if (model.building == nullptr) throw Failure(source.name + " holds no building.");
    const ZoString fault = model.building->FindFault();
    if (!fault.IsNull()) throw Damaged(source, ZoToUtf8(fault));
    // Objects that have lost their owner are extra. Members (the site, most values) are not in the list: they
    // are part of their owners.
    const Comparison count = Count(*model.building);
    unsigned long long held = count.objects - 1;
    if (stream.GetVersion() > VERSION_WITHOUT_VALUES) held += count.listed;
    if (allKnown && model.objects.NItems() != held) {
        throw Damaged(source, "some objects have lost their place");
    }
}

void Write(TBinOutStream& stream, const Model& model) {
    stream.Initialize();
    TBinOutStreamer(&stream, &Schema()).WriteObjectWithMetaData(model.building);
}

} // namespace

void Save(const Model& model, const std::string& path, const TTimestamp& now) {
    const ZoString before = model.building->saved;
    model.building->SavedAt(now);
    const std::unique_ptr<TFileBinOutStream> file(
        TFileBinOutStream::Create(path.c_str(), VERSION, RELEASE, true));
    bool complete = false;
    try {
        Write(*file, model);
        complete = true;
        file->Finalize();
    } catch (const XStream& error) {
        const std::string detail = " (" + Detail(error) + ")";
        const std::string written = file->GetWrittenPath().c_str();
        if (complete && written != path && Exists(written)) {
            throw Failure(Quoted(path) + " cannot be replaced: what was to be saved is in " +
                          Quoted(written) + "." + detail);
        }
        model.building->saved = before;
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
    ReadObjects(file, FileSource(path), model);
    return model;
}

Profiles OpenProfiles(const std::string& path) {
    TFileBinInStream file(path.c_str(), VERSION);
    OpenStream(file, path);
    TDList<ZoString> names;
    for (const char* name : {"Section", "Material", "GComprimento", "GArea", "GInercia", "GPeso"})
        names.Add(name);
    TIVector<ZoStreamableBase> objects;
    try {
        TFilteredBinInStreamer(&file, &Schema(), &names).Read();
    } catch (const XStream& error) {
        file.TakeObjects(&objects);
        throw Damaged(FileSource(path), Detail(error));
    }
    file.TakeObjects(&objects);

    Profiles profiles;
    ToBusiness helper;
    for (const auto& object : objects) {
        if (auto* section = dynamic_cast<Section*>(object.get())) {
            profiles.Add(dynamic_cast<Profile*>(helper.Convert(section)));
        }
    }
    std::sort(profiles.begin(), profiles.end(),
              [](const auto& a, const auto& b) { return std::strcmp(a->name.c_str(), b->name.c_str()) < 0; });
    return profiles;
}

void Copy(const Model& model) {
    TClipboardBinOutStream clipboard(VERSION, RELEASE);
    Write(clipboard, model);
    try {
        clipboard.Finalize();
    } catch (const XWriteStream& error) {
        throw Failure("Nothing can be put on the clipboard. (" + Detail(error) + ")");
    }
}

Model Paste() {
    Model model;
    TClipboardBinInStream clipboard(VERSION);
    try {
        clipboard.Initialize();
    } catch (const XNewerVersion&) {
        throw Failure("What is on the clipboard was copied by a newer version of this program: update the "
                      "program to paste it.");
    } catch (const XReadStream& error) {
        throw Failure("There is no building on the clipboard: copy one first. (" + Detail(error) + ")");
    }
    ReadObjects(clipboard, {"What is on the clipboard", "copy it again"}, model);
    return model;
}

} // namespace Frame
