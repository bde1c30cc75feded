#include "commands.h"
#include "input.h"
#include "paths.h"
#include "salvaging.h"
#include "text.h"
#include "tool.h"
#include "words.h"

#include "ZoPrimitives/FileBinOutStream.h"
#include "ZoPrimitives/pointer.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace ZoTool {

using namespace ZoPrimitives;

namespace {

struct Salvaging {
    std::string file;
    std::string target;
    std::string good;
};

/// Reads back what was written: all of it, and nothing that a reader would stumble over.
void CheckWritten(const TZoPath& path, unsigned long long objects) {
    TZoFileBytes written(path);
    std::string faults;
    FaultFinder(written, false).Find([&](const Fault& fault) {
        // What was so in the source stays so.
        if (!IsNote(fault.kind) && fault.kind != FaultKind::WrongClass && fault.kind != FaultKind::Schema)
            faults = PlaceOf(fault) + ": " + fault.text;
    });
    TZoRecordReader reader(written);
    if (faults.empty() && reader.NObjects() != objects)
        faults = Words("{} objects were written and {} are there", objects, reader.NObjects());
    if (!faults.empty()) throw Trouble(Words("what was written cannot be read back: {}", faults));
}

/// Writes beside the target, reads that back, and then replaces the target.
void WriteTo(const TZoPath& path, Salvage& salvage) {
    const pointer<TFileBinOutStream> target(
        TFileBinOutStream::Create(path, salvage.Version(), salvage.Release(), false));
    target->SetThroughTemporary(true);
    target->SetUsesSecurity(salvage.IsScrambled());
    target->SetWritesDigest(true);
    try {
        target->Initialize();
        const unsigned long long objects = salvage.Write(*target);
        target->RewriteHeader();
        target->FlushBuffer();
        CheckWritten(target->GetWrittenFilePath(), objects);
        target->Finalize();
    } catch (...) {
        if (!target->IsComplete()) target->Discard();
        throw;
    }
}

Exit SalvageFile(Tool& tool, const Salvaging& how) {
    const Input source(how.file);
    std::unique_ptr<Input> good;
    if (!how.good.empty()) good = std::make_unique<Input>(how.good);
    RequireAnother(how.target, {how.file, how.good});
    Salvage salvage(source.Bytes(), good == nullptr ? nullptr : &good->Bytes(), [&](const Fault& loss) {
        tool.out.Print("{}: {}: {}\n", tool.out.Paint(Style::Name, source.Name()), PlaceOf(loss), loss.text);
    });
    const std::size_t objects = salvage.Choose();
    if (objects == 0) throw Trouble(Words("no object can be had of it; no file was written"));
    WriteTo(TZoPath::FromUtf8(how.target.c_str()), salvage);
    const bool isWhole = salvage.Losses() == 0;
    const std::string end = isWhole                 ? Words("nothing lost")
                            : salvage.Losses() == 1 ? Words("1 loss")
                                                    : Words("{} losses", salvage.Losses());
    tool.out.Print("{}: {}, {}\n", tool.out.Paint(Style::Name, how.target), Counted(objects, "object"),
                   tool.out.Paint(isWhole ? Style::Good : Style::Note, end));
    return isWhole ? Exit::Good : Exit::Negative;
}

} // namespace

void AddSalvage(CLI::App& zo, Tool& tool) {
    CLI::App* const command =
        zo.add_subcommand("salvage", "a new file of all that can be had of a damaged one");
    const auto how = std::make_shared<Salvaging>();
    command->add_option("FILE", how->file, "an object file, or - for standard input; never changed")
        ->required();
    command->add_option("-o,--output", how->target, "the new file")->type_name("NEW")->required();
    command->add_option("--schema-from", how->good,
                        "a good file of the same version of the application: its schema is used");
    command->footer(
        "Each loss is a line; the exit code is 1 if there are any. Pointers to lost objects become null.\n"
        "The new file is read back before it takes its place.\n\n"
        "Example:\n  zo salvage damaged.zo -o saved.zo --schema-from older.zo");
    command->callback([&tool, how] {
        tool.command = [&tool, how] {
            return tool.Try(NameOf(how->file), [&] { return SalvageFile(tool, *how); });
        };
    });
}

} // namespace ZoTool
