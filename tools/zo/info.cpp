#include "commands.h"
#include "fields.h"
#include "input.h"
#include "table.h"
#include "text.h"
#include "tool.h"
#include "words.h"

#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoRecords.h"

#include <CLI/CLI.hpp>

#include <map>

namespace ZoTool {

using namespace ZoPrimitives;

namespace {

/// What the heads of a file's records tell.
struct Counts {
    struct Sum {
        unsigned long long objects = 0;
        unsigned long long bytes = 0;
    };
    std::map<int, Sum> classes; // by id
    Sum all;
    unsigned long long records = 0;
    unsigned long long scrambled = 0; // records
    unsigned long long damaged = 0;   // records
    unsigned long long strayed = 0;   // bytes
    unsigned schemaSize = 0;
};

Counts Count(TZoFrameReader& frames) {
    Counts counts;
    frames.SetHeadsOnly(true);
    TZoFrame frame;
    while (frames.Next(frame)) {
        ++counts.records;
        counts.strayed += frame.gap;
        if (frame.key != 0) ++counts.scrambled;
        if (frame.state != TZoFrameState::Whole) {
            ++counts.damaged;
        } else if (frame.classId == 0 && frame.uid == 0) {
            counts.schemaSize = frame.size;
        } else {
            for (Counts::Sum* const sum : {&counts.classes[frame.classId], &counts.all}) {
                ++sum->objects;
                sum->bytes += frame.size;
            }
        }
    }
    counts.strayed += frame.gap;
    return counts;
}

std::string DigestText(TZoFrameReader& frames) {
    switch (frames.GetDigestState()) {
    case TZoDigestState::None:
        return Words("none");
    case TZoDigestState::Unknown:
        return Words("of a later layout");
    case TZoDigestState::Open:
        return Words("not read to its end");
    case TZoDigestState::Right:
        return Words("{:08X}, right", frames.GetWantedDigest());
    case TZoDigestState::Wrong:
        return Words("{:08X}, wrong: the records give {:08X}", frames.GetWantedDigest(),
                     frames.GetFoundDigest());
    }
    return "";
}

std::shared_ptr<TZoMetaData> SchemaOf(Tool& tool, const Input& input) {
    try {
        return TZoRecordReader(input.Bytes()).ShareSchema();
    } catch (const XStream&) {
        tool.Warn(input.Name(), Words("its schema cannot be read; \"zo verify\" tells why"));
        return std::make_shared<TZoMetaData>();
    }
}

std::string CountedClasses(int count) {
    return count == 1 ? Words("{} class", count) : Words("{} classes", count);
}

void PrintClasses(Output& out, const TZoMetaData& schema, Counts& counts) {
    Table table(
        {{Words("class"), Align::Left}, {Words("objects"), Align::Right}, {Words("bytes"), Align::Right}});
    const auto add = [&](const std::string& name, const Counts::Sum& sum) {
        table.Add({name, std::to_string(sum.objects), std::to_string(sum.bytes)});
    };
    for (const TZoClass* const type : ClassesOf(schema)) {
        const auto sum = counts.classes.extract(type->GetClassId());
        if (sum) {
            add(ClassName(*type), sum.mapped());
        } else if (!type->GetAbstract()) {
            add(ClassName(*type), {});
        }
    }
    for (const auto& [id, sum] : counts.classes) add(Words("(unknown class {})", id), sum);
    table.Print(out, "  ");
}

Exit Info(Tool& tool, const Input& input) {
    TZoFrameReader frames(input.Bytes());
    if (frames.GetHeaderState() != TZoHeaderState::Right)
        throw Trouble(Words("it is no object file, or its header is damaged; \"zo verify\" tells more"));
    Counts counts = Count(frames);
    const std::shared_ptr<TZoMetaData> schema = SchemaOf(tool, input);

    Output& out = tool.out;
    const TBinHeader& header = frames.GetHeader();
    const auto line = [&](std::string_view what, const std::string& text) {
        out.Print("  {}{}\n", out.Paint(Style::Faint, fmt::format("{:<11}", what)), text);
    };
    out.Print("{}\n", out.Paint(Style::Heading, input.Name()));
    line(Words("size"), Counted(input.Bytes().GetSize(), "byte"));
    line(Words("version"), Words("{}, release {}", header.version, header.release));
    line(Words("records"), Words("{}, {} by the header", counts.records, header.recordCount));
    line(Words("schema"),
         fmt::format("{}, {}", CountedClasses(schema->GetClassCount()), Counted(counts.schemaSize, "byte")));
    line(Words("objects"), fmt::format("{}, {}", counts.all.objects, Counted(counts.all.bytes, "byte")));
    line(Words("digest"), DigestText(frames));
    line(Words("scrambled"), counts.scrambled == 0 ? Words("no") : Words("{} records", counts.scrambled));
    if (counts.damaged + counts.strayed != 0) {
        line(Words("damage"), Words("{}, {} that belong to none: \"zo verify\" tells more",
                                    Counted(counts.damaged, "record"), Counted(counts.strayed, "byte")));
    }
    out.Write("\n");
    PrintClasses(out, *schema, counts);
    return Exit::Good;
}

} // namespace

void AddInfo(CLI::App& zo, Tool& tool) {
    CLI::App* const command =
        zo.add_subcommand("info", "what a file holds: header, sizes, objects and bytes per class");
    const auto files = std::make_shared<std::vector<std::string>>();
    command->add_option("FILE", *files, "object files, folders of them, or - for standard input")->required();
    command->footer("Only the heads of records are read: \"zo verify\" checks what is in them.\n\n"
                    "Examples:\n  zo info model.zo\n  zo info models/");
    command->callback([&tool, files] {
        tool.command = [&tool, files] {
            return ForEach(tool, FilesOf(*files), [&](const Input& input) { return Info(tool, input); });
        };
    });
}

} // namespace ZoTool
