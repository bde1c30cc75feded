#include "storage.h"

#include "failure.h"
#include "progress.h"
#include "words.h"

#include "ZoPrimitives/FileBinInStream.h"
#include "ZoPrimitives/FilteredBinInStreamer.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoOpen.h"
#include "ZoPrimitives/ZoSave.h"
#include "ZoPrimitives/ZoUtf8.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <system_error>

namespace Frame {

using namespace ZoPrimitives;

namespace {

/// The version of the files that this application writes, and the newest that it reads. Files of version 3
/// had plain numbers instead of quantities: version3.cpp.
constexpr unsigned VERSION = 4;
constexpr unsigned RELEASE = 2026;

std::string Quoted(const std::string& path) { return '"' + path + '"'; }

bool Exists(const std::string& path) {
    std::error_code ignored;
    return std::filesystem::exists(std::filesystem::u8path(path), ignored);
}

/// Where a building is read from, and what to do if it is damaged there.
struct Source {
    std::string name;
    std::string remedy;
};

Source FileSource(const std::string& path) {
    const std::string backup = path + "-bak";
    return {Quoted(path), Exists(backup) ? Words("open the version before it, {1}", {Quoted(backup)})
                                         : Words("use a copy of it")};
}

Failure Damaged(const Source& source, const std::string& why) {
    return Failure(Words("{1} is damaged: {2}. ({3})", {source.name, source.remedy, why}));
}

/// Says in a sentence why a building could not be read. Called where the exception is caught.
[[noreturn]] void ThrowUnread(const Source& source, const XStream& error) {
    if (dynamic_cast<const XNewerVersion*>(&error) != nullptr) {
        throw Failure(
            Words("{1} was saved by a newer version of this program: update the program to open it.",
                  {source.name}));
    }
    if (const auto* refused = dynamic_cast<const XRefusedData*>(&error)) {
        std::string found = ZoToUtf8(refused->Report().Text());
        found.pop_back(); // the last line's end
        throw Failure(Words("{1} is damaged: {2}.", {source.name, source.remedy}) + '\n' + found);
    }
    const std::string location = error.Location().c_str();
    if (location == "TFileBinInStream::OpenFile") {
        throw Failure(Words("{1} cannot be opened: {2}", {source.name, Remedy(error)}));
    }
    if (location == "TFileBinInStream::TFileBinInStream" || location == "TBinInStream::LoadHeader")
        throw Failure(Words("{1} is not a file of this program.", {source.name}));
    throw Damaged(source, Detail(error));
}

void CheckFile(const std::string& path) {
    std::error_code ignored;
    if (!Exists(path)) throw Failure(Words("There is no file {1}.", {Quoted(path)}));
    if (std::filesystem::is_directory(std::filesystem::u8path(path), ignored)) {
        throw Failure(Words("{1} is a folder: name a file in it.", {Quoted(path)}));
    }
}

Model ModelOf(const TZoOpened<Building>& opened, const Source& source) {
    if (opened.Report().Faults() != strictNothing)
        std::cerr << "frame: " << Words("of {1}:", {source.name}) << '\n' << ZoToUtf8(opened.Report().Text());
    const ZoString fault = opened->FindFault();
    if (!fault.IsNull()) throw Damaged(source, ZoToUtf8(fault));
    return {opened.GetObjects(), opened.GetRoot().get()};
}

} // namespace

void Save(const Model& model, const std::string& path, const TTimestamp& now) {
    const ZoString before = model.building->saved;
    model.building->SavedAt(now);
    try {
        ZoSave(TZoPath::FromUtf8(path.c_str()), model.building, &Schema(), {VERSION, RELEASE});
    } catch (const XNotReplaced& error) {
        throw Failure(Words("{1} cannot be replaced: what was to be saved is in {2}. ({3})",
                            {Quoted(path), Quoted(error.WrittenFilePath().Utf8().c_str()), Detail(error)}));
    } catch (const XStream& error) {
        model.building->saved = before;
        throw Failure(Words("{1} cannot be saved and is as it was: {2} ({3})",
                            {Quoted(path), Remedy(error), Detail(error)}));
    }
}

Model Open(const std::string& path) {
    CheckFile(path);
    const Source source = FileSource(path);
    ProgressBar bar;
    TZoOpening how{VERSION};
    how.progress = ZoProgress([&bar](unsigned long long done, unsigned long long all) {
        bar.Show(done, all);
        return true; // nobody cancels
    });
    try {
        return ModelOf(ZoOpen<Building>(TZoPath::FromUtf8(path.c_str()), &Schema(), how), source);
    } catch (const XStream& error) {
        ThrowUnread(source, error);
    }
}

Profiles OpenProfiles(const std::string& path) {
    CheckFile(path);
    TFileBinInStream file(TZoPath::FromUtf8(path.c_str()), TFileReading::Locking, VERSION);
    TDList<ZoString> names;
    for (const char* name : {"Section", "Material", "GComprimento", "GArea", "GInercia", "GPeso"})
        names.Add(name);
    TIVector<ZoStreamableBase> objects;
    try {
        file.Initialize();
        TFilteredBinInStreamer(&file, &Schema(), &names).Read();
    } catch (const XStream& error) {
        file.TakeObjects(&objects);
        ThrowUnread(FileSource(path), error);
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
    try {
        ZoSaveOnClipboard(model.building, &Schema(), {VERSION, RELEASE});
    } catch (const XWriteStream& error) {
        throw Failure(Words("Nothing can be put on the clipboard. ({1})", {Detail(error)}));
    }
}

Model Paste() {
    const Source source{Words("What is on the clipboard"), Words("copy it again")};
    try {
        return ModelOf(ZoOpenFromClipboard<Building>(&Schema(), {VERSION}), source);
    } catch (const XNewerVersion&) {
        throw Failure(
            Words("What is on the clipboard was copied by a newer version of this program: update the "
                  "program to paste it."));
    } catch (const XStream& error) {
        const std::string location = error.Location().c_str();
        if (location.rfind("TClipboardBinInStream", 0) != 0 && location != "TBinInStream::LoadHeader")
            throw Damaged(source, Detail(error));
        throw Failure(Words("There is no building on the clipboard: copy one first. ({1})", {Detail(error)}));
    }
}

} // namespace Frame
