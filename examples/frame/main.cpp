#include "compare.h"
#include "extract.h"
#include "failure.h"
#include "report.h"
#include "storage.h"
#include "tables.h"
#include "text.h"

#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoUtf8.h"

#include <chrono>
#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <new>
#include <string>

using namespace Frame;

namespace {

const char* const USAGE =
    "usage: frame FILE                      open a building and print it\n"
    "       frame demo TABLES FOLDER        build one from tables, save it in the folder as\n"
    "                                       frame9.zo, and check it in a second process\n"
    "       frame check TABLES FILE         open a building, compare it with the tables and\n"
    "                                       print it\n"
    "       frame sections FILE             print its sections and read nothing else\n"
    "       frame copy FILE STOREY          put a storey on the clipboard, as a frame of its own\n"
    "       frame paste                     print the building that is on the clipboard\n"
    "       frame text FILE OUT             open a building and write it as text\n"
    "       frame read-text IN              read a text and print its building\n";

constexpr int OK = 0;
constexpr int DIFFERENT = 1;
constexpr int BAD_INPUT = 2;

std::string Milliseconds(std::chrono::steady_clock::time_point since) {
    const std::chrono::duration<double, std::milli> passed = std::chrono::steady_clock::now() - since;
    return ZoString::FormatString("%.2f ms", passed.count()).c_str();
}

std::string NameOf(const std::string& path) { return std::filesystem::path(path).filename().string(); }
std::string SizeOf(const std::string& path) {
    return std::to_string(std::filesystem::file_size(path)) + " bytes";
}

/// Opens and prints; with tables, compares with them in between.
int Show(const std::string& path, const std::string* tables) {
    const auto start = std::chrono::steady_clock::now();
    const Model model = Open(path);
    const std::string time = Milliseconds(start);
    Comparison comparison;
    if (tables != nullptr) {
        const Model expected = ReadTables(*tables);
        comparison = Compare(*expected.building, *model.building);
        if (!comparison.difference.empty()) {
            std::cerr << "frame: what was opened is not what was saved: " << comparison.difference << ".\n";
            return DIFFERENT;
        }
    }
    Print(*model.building, std::cout);
    std::cout << "\n  Opened:      " << NameOf(path) << ", " << SizeOf(path) << ", in " << time << '\n';
    if (tables != nullptr) {
        std::cout << "  Compared:    " << comparison.objects
                  << " objects and every pointer between them are as they were saved\n";
    }
    return OK;
}

int CopyStorey(const std::string& path, const std::string& mark) {
    const Model part = ExtractStorey(*Open(path).building, mark);
    Copy(part);
    std::cout << "  On the clipboard: storey " << mark << ", " << CountObjects(*part.building)
              << " objects\n";
    return OK;
}

int PrintPasted() {
    const Model model = Paste();
    Print(*model.building, std::cout);
    std::cout << "\n  Pasted:      " << CountObjects(*model.building) << " objects\n";
    return OK;
}

int WriteAsText(const std::string& path, const std::string& out) {
    WriteText(Open(path), out);
    std::cout << "  Written:     " << NameOf(out) << ", " << SizeOf(out) << '\n';
    return OK;
}

int ShowText(const std::string& path) {
    const auto start = std::chrono::steady_clock::now();
    const Model model = ReadText(path);
    const std::string time = Milliseconds(start);
    Print(*model.building, std::cout);
    std::cout << "\n  Read:        " << NameOf(path) << ", " << SizeOf(path) << ", in " << time << '\n';
    return OK;
}

/// An argument for the shell of any system. One that a shell would not take as it is, is refused.
std::string Argument(const std::string& text) {
    if (text.find_first_of("\"$`%\r\n") != std::string::npos) {
        throw Failure("The path " + text +
                      " holds a character that a second process cannot be told: use another one.");
    }
    return " \"" + text + '"';
}

/// A folder as an argument: without the separators at its end, one of which could escape the quote.
std::string Folder(std::string path) {
    while (path.size() > 1 && (path.back() == '/' || path.back() == '\\')) path.pop_back();
    return path;
}

int Demo(const std::string& program, const std::string& tables, const std::string& folder) {
    const std::string path = (std::filesystem::path(folder) / "frame9.zo").string();
    // Without something before it, one of the shells takes the first quote and the last one away.
    const std::string command = "cd . &&" + Argument(program) + " check" + Argument(tables) + Argument(path);

    const Model model = ReadTables(tables);
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (!std::filesystem::is_directory(folder, error))
        throw Failure("The folder \"" + folder + "\" cannot be made.");
    for (const char* word : {"Saved:       ", "Saved again: "}) {
        const bool hadFile = std::filesystem::exists(path, error);
        const auto start = std::chrono::steady_clock::now();
        Save(model, path);
        std::cout << "  " << word << NameOf(path) << ", " << SizeOf(path) << ", in " << Milliseconds(start);
        if (hadFile) std::cout << "; the version before it is " << NameOf(path) << "-bak";
        std::cout << '\n';
    }
    std::cout << "\n  A second process opens it:\n\n" << std::flush;
    return std::system(command.c_str()) == 0 ? OK : DIFFERENT;
}

int Run(int count, char** arguments) {
    const std::string command = count > 1 ? arguments[1] : "";
    if (command == "--help" || command == "-h") {
        std::cout << USAGE;
        return OK;
    }
    if (command == "demo" && count == 4)
        return Demo(arguments[0], Folder(arguments[2]), Folder(arguments[3]));
    if (command == "check" && count == 4) {
        const std::string tables = arguments[2];
        return Show(arguments[3], &tables);
    }
    if (command == "sections" && count == 3) {
        Print(OpenProfiles(arguments[2]), std::cout);
        return OK;
    }
    if (command == "copy" && count == 4) return CopyStorey(arguments[2], arguments[3]);
    if (command == "paste" && count == 2) return PrintPasted();
    if (command == "text" && count == 4) return WriteAsText(arguments[2], arguments[3]);
    if (command == "read-text" && count == 3) return ShowText(arguments[2]);
    bool isCommand = false;
    for (const char* name : {"demo", "check", "sections", "copy", "text", "read-text"})
        isCommand = isCommand || command == name;
    if (count == 2 && !isCommand) return Show(command, nullptr);
    std::cerr << USAGE;
    return BAD_INPUT;
}

int Fail(const std::string& sentence) {
    std::cout << std::flush;
    std::cerr << "frame: " << sentence << '\n';
    return BAD_INPUT;
}

} // namespace

int main(int count, char** arguments) {
    // As most applications do. The library's files and texts are the same in every locale.
    std::setlocale(LC_ALL, "");
    try {
        return Run(count, arguments);
    } catch (const ZoPrimitives::XStream& error) {
        return Fail(ZoPrimitives::ZoToUtf8(error.Message()) + " (" +
                    ZoPrimitives::ZoToUtf8(error.Location()) + ")");
    } catch (const ZoPrimitives::XZoAssert& error) {
        return Fail(std::string("This program has a fault: ") + error.Message());
    } catch (const std::bad_alloc&) {
        return Fail("There is not enough memory.");
    } catch (const std::exception& error) {
        return Fail(error.what());
    }
}
