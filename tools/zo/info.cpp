#include "commands.h"
#include "input.h"
#include "table.h"
#include "text.h"
#include "tool.h"

#include "ZoPrimitives/ZoMetaData.h"

#include <CLI/CLI.hpp>

#include <map>

namespace ZoTool {

using namespace ZoPrimitives;

namespace {

struct Sum {
    unsigned long long objects = 0;
    unsigned long long bytes = 0;
};

Exit Info(Tool& tool, const Input& input) {
    const std::unique_ptr<TBinInStream> stream = input.OpenStream();
    TZoMetaData none, schema;
    std::map<int, Sum> classes;
    int uid = 0;
    int classId = 0;
    Sum all;
    unsigned schemaSize = 0;
    while (stream->LoadRecord(&uid, &classId)) {
        if (uid == 0 && classId == 0) {
            schemaSize = stream->GetRecordSize();
            if (!schema.LoadFromStream(stream.get(), &none))
                throw Trouble("its schema contradicts itself; \"zo verify\" tells more");
            continue;
        }
        for (Sum* sum : {&classes[classId], &all}) {
            ++sum->objects;
            sum->bytes += stream->GetRecordSize();
        }
    }
    Output& out = tool.out;
    out.Print("{}\n", out.Paint(Style::Heading, input.Name()));
    out.Print("  size      {} bytes\n", input.Size());
    out.Print("  version   {}\n  release   {}\n", stream->GetVersion(), stream->GetRelease());
    out.Print("  schema    {} classes, {} bytes\n", schema.GetClassCount(), schemaSize);
    out.Print("  objects   {}, {} bytes\n\n", all.objects, all.bytes);
    Table table({{"class", Align::Left}, {"objects", Align::Right}, {"bytes", Align::Right}});
    for (int i = 1; i <= schema.GetClassCount(); ++i) {
        TZoClass* const type = schema.GetClass(i);
        const Sum& sum = classes[type->GetClassId()];
        table.Add({ClassName(*type), std::to_string(sum.objects), std::to_string(sum.bytes)});
    }
    table.Print(out, "  ");
    return Exit::Good;
}

} // namespace

void AddInfo(CLI::App& zo, Tool& tool) {
    CLI::App* const command =
        zo.add_subcommand("info", "what a file holds: header, sizes, objects and bytes per class");
    const auto files = std::make_shared<std::vector<std::string>>();
    command->add_option("FILE", *files, "object files, or - for standard input")->required();
    command->footer("Example:\n  zo info model.zo");
    command->callback([&tool, files] {
        tool.command = [&tool, files] {
            return ForEach(tool, *files, [&](const Input& input) { return Info(tool, input); });
        };
    });
}

} // namespace ZoTool
