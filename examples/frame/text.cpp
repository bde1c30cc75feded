#include "text.h"

#include "failure.h"
#include "grammar.h"
#include "words.h"

#include "ZoPrimitives/FileInputStream.h"
#include "ZoPrimitives/FileOutputStream.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoUtf8.h"
#include "ZoPrimitives/xContainer.h"

namespace Frame {

using namespace ZoPrimitives;

namespace {

// A text is: FRAME version pointer ENDSEC EOF.
constexpr const char* KEYWORD = "FRAME";
constexpr int VERSION = 1;
constexpr const char* END_OF_SECTION = "ENDSEC";
constexpr const char* END_OF_FILE = "EOF";

/// The building in a text; null if there is none.
Building* ReadBuilding(TextReader& reader) {
    ZoPrimitives::pointer<Building> building;
    reader.TakePointer(building);
    reader.FinishText();
    // The end of the section, where another object could follow.
    TIList<ZoString> ends;
    ends.Add(new ZoString(END_OF_SECTION));
    try {
        ZoStreamableBase* more = nullptr;
        reader.Read(more, TIContainerIterator<ZoString>(ends));
    } catch (const XEndSection&) {
        return building.get(); // held by the reader
    }
    return nullptr;
}

Model ReadModel(const std::string& path, InputStream* stream) {
    const std::string quoted = '"' + path + '"';
    TextReader reader(stream, new StreamableFactory(&Schema()));
    ZoString keyword;
    int version = 0;
    Model model;
    try {
        reader >> keyword >> version;
        if (keyword == KEYWORD && version == VERSION) model.building = ReadBuilding(reader);
    } catch (const XEndOfStream&) {
        if (keyword == KEYWORD) throw Failure(Words("{1} is damaged: it ends too early.", {quoted}));
    } catch (const XStream& error) {
        throw Failure(Words("{1} is damaged. ({2})", {quoted, Detail(error)}));
    } catch (const XStreamer&) {
        throw Failure(Words("{1} is damaged: a section ends too early.", {quoted}));
    } catch (const xInvalidConversion&) {
        throw Failure(Words("{1} is damaged: there is no handle where one should be.", {quoted}));
    }
    if (keyword != KEYWORD) throw Failure(Words("{1} is not a text of this program.", {quoted}));
    if (version > VERSION) {
        throw Failure(Words(
            "{1} was written by a newer version of this program: update the program to read it.", {quoted}));
    }
    if (model.building == nullptr) throw Failure(Words("{1} holds no building.", {quoted}));
    const ZoString fault = model.building->FindFault();
    if (!fault.IsNull()) throw Failure(Words("{1} is damaged. ({2})", {quoted, ZoToUtf8(fault)}));
    // From here on the model keeps the reader's objects alive.
    for (ZoStreamableBase* object : reader.Objects()) model.objects.Add(object);
    return model;
}

} // namespace

void WriteText(const Model& model, const std::string& path) {
    try {
        const ZoPrimitives::pointer<FileOutputStream> file(
            new FileOutputStream(TZoPath::FromUtf8(path.c_str()), false));
        OutputStreamer text(file.get());
        text << KEYWORD << VERSION;
        PutPointer(text, model.building);
        text << END_OF_SECTION << END_OF_FILE;
        file->Finalize();
    } catch (const XStream& error) {
        throw Failure(
            Words("{1} cannot be written: {2} ({3})", {'"' + path + '"', Remedy(error), Detail(error)}));
    }
}

Model ReadText(const std::string& path) {
    ZoPrimitives::pointer<FileInputStream> file;
    try {
        file = new FileInputStream(TZoPath::FromUtf8(path.c_str()));
    } catch (const XReadStream& error) {
        throw Failure(Words("{1} cannot be opened: {2}", {'"' + path + '"', Remedy(error)}));
    }
    if (!file->GetIsWhole()) throw Failure(Words("{1} cannot be read to its end.", {'"' + path + '"'}));
    return ReadModel(path, file.get());
}

} // namespace Frame
