#pragma once

namespace CLI {
class App;
}

namespace ZoTool {

class Tool;

// Each adds one subcommand to the command line and sets `Tool::command` when it is chosen.
void AddInfo(CLI::App& zo, Tool& tool);
void AddLs(CLI::App& zo, Tool& tool);
void AddSchema(CLI::App& zo, Tool& tool);
void AddDump(CLI::App& zo, Tool& tool);
void AddSql(CLI::App& zo, Tool& tool);
void AddExport(CLI::App& zo, Tool& tool);
void AddDiff(CLI::App& zo, Tool& tool);
void AddReport(CLI::App& zo, Tool& tool);
void AddVerify(CLI::App& zo, Tool& tool);
void AddSalvage(CLI::App& zo, Tool& tool);

} // namespace ZoTool
