#include "compare.h"
#include "console.h"
#include "extract.h"
#include "failure.h"
#include "options.h"
#include "pictures.h"
#include "plan.h"
#include "report.h"
#include "storage.h"
#include "tables.h"
#include "text.h"
#include "words.h"

#include "ZoPrimitives/ZoExplain.h"
#include "ZoPrimitives/ZoLanguage.h"
#include "ZoPrimitives/ZoUtf8.h"

#include "messages/frame.h"

#include <algorithm>
#include <chrono>
#include <clocale>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

using namespace Frame;

namespace {

std::string Usage() {
    return Words(
        "usage: frame FILE                      open a building and print it\n"
        "       frame demo TABLES FOLDER        build one from tables, save it in the folder as\n"
        "                                       frame9.zo, and check it in a second process\n"
        "       frame check TABLES FILE         open a building, compare it with the tables and\n"
        "                                       print it\n"
        "       frame sections FILE             print its sections and read nothing else\n"
        "       frame copy FILE STOREY          put a storey on the clipboard, as a frame of its own\n"
        "       frame paste                     print the building that is on the clipboard\n"
        "       frame text FILE OUT             open a building and write it as text\n"
        "       frame read-text IN              read a text and print its building\n"
        "       frame picture FILE OUT.svg      open a building and draw its elevation\n"
        "       frame plan TABLE OUT.svg        find the panels of a plan and what its girders carry,\n"
        "                                       print and draw them\n"
        "       frame pictures FOLDER           draw what the library's geometry is, family by family\n"
        "\n"
        "options: --units metric|technical|imperial   what is printed and drawn is in these units\n"
        "         --separator .|,                     stands before their decimals\n"
        "         --by load|area                      what the colours of a picture tell\n"
        "         --language pt-BR|en-US|es-MX        what is printed and drawn is in this language\n");
}

constexpr int OK = 0;
constexpr int DIFFERENT = 1;
constexpr int BAD_INPUT = 2;

std::string Milliseconds(std::chrono::steady_clock::time_point since) {
    const std::chrono::duration<double, std::milli> passed = std::chrono::steady_clock::now() - since;
    return ZoString::FormatString("%.2f ms", passed.count()).c_str();
}

std::filesystem::path PathOf(const std::string& utf8) { return std::filesystem::u8path(utf8); }
std::string NameOf(const std::string& path) { return PathOf(path).filename().u8string(); }
std::string SizeOf(const std::string& path) {
    return Words("{1} bytes", {std::to_string(std::filesystem::file_size(PathOf(path)))});
}

std::string TimedFile(const std::string& path, const std::string& time) {
    return Words("{1}, {2}, in {3}", {NameOf(path), SizeOf(path), time});
}

/// Opens and prints a building; given tables, compares it with them first.
int Show(const std::string& path, const std::string* tables, const Units& units) {
    const auto start = std::chrono::steady_clock::now();
    const Model model = Open(path);
    const std::string time = Milliseconds(start);
    Comparison comparison;
    if (tables != nullptr) {
        const Model expected = ReadTables(*tables);
        comparison = Compare(*expected.building, *model.building);
        if (!comparison.difference.empty()) {
            std::cerr << "frame: "
                      << Words("what was opened is not what was saved: {1}.", {comparison.difference})
                      << '\n';
            return DIFFERENT;
        }
    }
    Print(*model.building, units, std::cout);
    std::cout << '\n' << Label(Words("Opened:")) << TimedFile(path, time) << '\n';
    if (tables != nullptr) {
        std::cout << Label(Words("Compared:"))
                  << Words("{1} objects, {2} values and every pointer between them are as they were saved",
                           {std::to_string(comparison.objects), std::to_string(comparison.values)})
                  << '\n';
    }
    return OK;
}

int ShowSections(const std::string& path, const Units& units) {
    Print(OpenProfiles(path), units, std::cout);
    return OK;
}

int CopyStorey(const std::string& path, const std::string& mark) {
    const Model part = ExtractStorey(*Open(path).building, mark);
    Copy(part);
    std::cout << Label(Words("On the clipboard:"))
              << Words("storey {1}, {2} objects", {mark, std::to_string(Count(*part.building).objects)})
              << '\n';
    return OK;
}

int PrintPasted(const Units& units) {
    const Model model = Paste();
    Print(*model.building, units, std::cout);
    std::cout << '\n'
              << Label(Words("Pasted:"))
              << Words("{1} objects", {std::to_string(Count(*model.building).objects)}) << '\n';
    return OK;
}

/// An output file must not replace its own input.
void RefuseOverItself(const std::string& from, const std::string& to) {
    std::error_code none;
    if (std::filesystem::equivalent(PathOf(from), PathOf(to), none))
        throw Failure(Words("\"{1}\" is the building itself: name another file.", {to}));
}

int WriteAsText(const std::string& path, const std::string& out) {
    RefuseOverItself(path, out);
    WriteText(Open(path), out);
    std::cout << Label(Words("Written:")) << NameOf(out) << ", " << SizeOf(out) << '\n';
    return OK;
}

int ShowText(const std::string& path, const Units& units) {
    const auto start = std::chrono::steady_clock::now();
    const Model model = ReadText(path);
    const std::string time = Milliseconds(start);
    Print(*model.building, units, std::cout);
    std::cout << '\n' << Label(Words("Read:")) << TimedFile(path, time) << '\n';
    return OK;
}

/// An argument quoted for the shell of any system. Refuses characters that a shell would interpret.
std::string Argument(const std::string& text) {
    if (text.find_first_of("\"$`%\r\n") != std::string::npos) {
        throw Failure(Words(
            "The path {1} holds a character that a second process cannot be told: use another one.", {text}));
    }
    return " \"" + text + '"';
}

/// A folder as an argument, without trailing separators, which could escape the quote.
std::string Folder(std::string path) {
    while (path.size() > 1 && (path.back() == '/' || path.back() == '\\')) path.pop_back();
    return path;
}

void MakeFolder(const std::string& path) {
    std::error_code error;
    std::filesystem::create_directories(PathOf(path), error);
    if (!std::filesystem::is_directory(PathOf(path), error))
        throw Failure(Words("The folder \"{1}\" cannot be made.", {path}));
}

int Demo(const std::string& program, const Options& options) {
    const std::string tables = Folder(options.words[1]);
    const std::string folder = Folder(options.words[2]);
    const std::string path = (PathOf(folder) / "frame9.zo").u8string();
    // Without a command before it, one of the shells strips the first and the last quote.
    std::string command = "cd . &&" + Argument(program) + " check" + Argument(tables) + Argument(path);
    for (const std::string& word : options.given) command += Argument(word);

    const Model model = ReadTables(tables);
    MakeFolder(folder);
    std::error_code error;
    for (const std::string& word : {Words("Saved:"), Words("Saved again:")}) {
        const bool hadFile = std::filesystem::exists(PathOf(path), error);
        const auto start = std::chrono::steady_clock::now();
        Save(model, path);
        std::cout << Label(word) << TimedFile(path, Milliseconds(start));
        if (hadFile) std::cout << Words("; the version before it is {1}", {NameOf(path) + "-bak"});
        std::cout << '\n';
    }
    std::cout << "\n  " << Words("A second process opens it:") << "\n\n" << std::flush;
    return RunCommand(command) ? OK : DIFFERENT;
}

void WritePicture(const std::string& picture, const std::string& path) {
    std::ofstream file(PathOf(path), std::ios::binary);
    file << picture;
    file.close();
    if (!file)
        throw Failure(Words("\"{1}\" cannot be written: look whether you may write to its folder.", {path}));
    std::cout << Label(Words("Drawn:")) << NameOf(path) << ", " << SizeOf(path) << '\n';
}

int Draw(const Options& options) {
    const std::string& path = options.words[2];
    RefuseOverItself(options.words[1], path);
    const Model model = Open(options.words[1]);
    WritePicture(DrawElevation(*model.building, options.property, options.units), path);
    return OK;
}

int ShowPlan(const Options& options) {
    const std::string& path = options.words[2];
    if (std::error_code none; std::filesystem::equivalent(PathOf(options.words[1]), PathOf(path), none))
        throw Failure(Words("\"{1}\" is the plan itself: name another file.", {path}));
    const Plan plan = ReadPlan(options.words[1]);
    Print(plan, options.units, std::cout);
    WritePicture(DrawPlan(plan, options.units), path);
    return OK;
}

int DrawGeometry(const std::string& folder, const Units& units) {
    MakeFolder(folder);
    for (const FamilyPicture& picture : DrawFamilies(units))
        WritePicture(picture.svg, (PathOf(folder) / picture.file).u8string());
    return OK;
}

int Run(const std::string& program, const Options& options) {
    const auto& words = options.words;
    const Units& units = options.units;
    const std::string command = words.empty() ? "" : words[0];
    if (command == "--help" || command == "-h") {
        std::cout << Usage();
        return OK;
    }
    const struct {
        const char* name;
        std::size_t count; // words in the command, its name included
        std::function<int()> run;
    } commands[] = {
        {"demo", 3, [&] { return Demo(program, options); }},
        {"check", 3, [&] { return Show(words[2], &words[1], units); }},
        {"sections", 2, [&] { return ShowSections(words[1], units); }},
        {"copy", 3, [&] { return CopyStorey(words[1], words[2]); }},
        {"paste", 1, [&] { return PrintPasted(units); }},
        {"text", 3, [&] { return WriteAsText(words[1], words[2]); }},
        {"read-text", 2, [&] { return ShowText(words[1], units); }},
        {"picture", 3, [&] { return Draw(options); }},
        {"plan", 3, [&] { return ShowPlan(options); }},
        {"pictures", 2, [&] { return DrawGeometry(words[1], units); }},
    };
    const auto named = std::find_if(std::begin(commands), std::end(commands),
                                    [&](const auto& c) { return command == c.name; });
    if (named != std::end(commands) && named->count == words.size()) return named->run();
    if (named == std::end(commands) && words.size() == 1) return Show(command, nullptr, units);
    std::cerr << Usage();
    return BAD_INPUT;
}

int Fail(const std::string& sentence) {
    std::cout << std::flush;
    std::cerr << "frame: " << sentence << '\n';
    return BAD_INPUT;
}

} // namespace

int main(int count, char** arguments) {
    // Most applications do this. The library's files and texts are the same in every locale.
    std::setlocale(LC_ALL, "");
    const std::shared_ptr<void> utf8 = ShowUtf8();
    ZoPrimitives::ZoAddTexts(TEXTS);
    try {
        ZoPrimitives::ZoSetLanguage("en-US");
        ZoPrimitives::ZoLoadLanguage();
        const std::vector<std::string> words = Arguments(count, arguments);
        return Run(words.at(0), ReadOptions({words.begin() + 1, words.end()}));
    } catch (const Failure& error) {
        return Fail(error.what());
    } catch (...) {
        return Fail(ZoPrimitives::ZoToUtf8(ZoPrimitives::ZoExplain()));
    }
}
