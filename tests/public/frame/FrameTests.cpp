#include "compare.h"
#include "extract.h"
#include "failure.h"
#include "report.h"
#include "storage.h"
#include "tables.h"
#include "text.h"

#include "public/frame/FailureOf.h"

#include "support/CommaLocale.h"
#include "support/PrivateClipboard.h"
#include "support/TemporaryFolder.h"

#include "ZoPrimitives/ClipboardBinOutStream.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace {

using namespace Frame;
using testing::HasSubstr;
using testing::Not;
using ZoPrimitives::TComprimento;
using ZoPrimitives::TPeso;
using ZoPrimitives::TTimestamp;

/// Where the head of each record begins: marker, size, sum, class, uid, key, of four bytes each.
std::vector<std::size_t> Records(const std::string& bytes) {
    std::vector<std::size_t> heads;
    unsigned size = 0;
    std::memcpy(&size, bytes.data() + 24, sizeof size); // of the extra block
    for (std::size_t at = 28 + size; at < bytes.size();) {
        heads.push_back(at);
        std::memcpy(&size, bytes.data() + at + 4, sizeof size);
        at += 24 + size;
    }
    return heads;
}

std::string Report(const Building& building) {
    std::ostringstream out;
    Print(building, Units::Named("metric", "."), out);
    return out.str();
}

struct FrameTests : testing::Test {
    std::string Path(const char* name) const { return folder.Path(name); }
    /// The whole frame, from its tables.
    const Model model = ReadTables(FRAME_TABLES);
    const Building& building = *model.building;
    ZoPrimitives::Testing::TemporaryFolder folder;
};

TEST_F(FrameTests, TablesGiveTheWholeFrame) {
    EXPECT_EQ(building.storeys[1]->level.cm(), -365.76);
    EXPECT_NEAR(building.nodes.Last()->place.X(), 4572.0, 1e-9);
    EXPECT_NEAR(building.nodes.Last()->place.Y(), 3718.56, 1e-9);
    // Summed by hand from the tables, in exact fractions.
    EXPECT_NEAR(TotalSteel(building), 215'542.06276791552, 1e-6);
    const std::string picture(static_cast<const char*>(building.thumbnail.Data()), building.thumbnail.Size());
    EXPECT_EQ(picture.substr(0, 13), "P5\n64 57\n255\n");
    EXPECT_EQ(picture.size(), 13u + 64u * 57u);
    EXPECT_EQ(picture[13 + 64 * 3 + 5], '\xFF'); // between the columns
    EXPECT_NE(picture[13 + 64 * 3], '\xFF');     // on line A
}

TEST_F(FrameTests, EverySystemAndLocaleReadsAndWritesTheSameFile) {
    std::filesystem::copy_file(FRAME_DATA "/frame9-version4.zo", Path("golden.zo"));
    const CommaLocale locale;
    const Model again = ReadTables(FRAME_TABLES);
    Save(again, Path("a.zo"), TTimestamp::MinValue());
    // The older file has no digest behind its header.
    EXPECT_TRUE(folder.Read("a.zo").substr(28 + 12) == folder.Read("golden.zo").substr(28));
    const Model opened = Open(Path("golden.zo"));
    const Comparison comparison = Compare(*again.building, *opened.building);
    EXPECT_EQ(comparison.difference, "");
    // members, nodes, sections and legend entries, storeys, and those that are there once
    EXPECT_EQ(comparison.objects, 110u + 66u + 11u + 11u + 10u + 4u);
    // of nodes, sections, storeys, girders, the material
    EXPECT_EQ(comparison.values, 66u + 33u + 20u + 150u + 1u);
    EXPECT_EQ(Report(*opened.building), Report(*again.building));
    EXPECT_THAT(Report(*again.building), HasSubstr("Total steel: 215.54 t"));
}

TEST_F(FrameTests, SectionsAreReadAlone) {
    Save(model, Path("a.zo"));
    std::string bytes = folder.Read("a.zo");
    bytes[Records(bytes)[1] + 30] ^= 1; // in the building's own record
    folder.Write("a.zo", bytes);
    EXPECT_THAT(FailureOf([&] { Open(Path("a.zo")); }), HasSubstr("is damaged"));
    const Profiles profiles = OpenProfiles(Path("a.zo"));
    ASSERT_EQ(profiles.NItems(), model.building->sections.NItems());
    for (unsigned long long i = 1; i <= profiles.NItems(); ++i) {
        const Section& section = *model.building->sections[i];
        const Profile& profile = *profiles[i];
        EXPECT_STREQ(profile.name.c_str(), section.name.c_str());
        EXPECT_EQ(profile.LineWeight(), section.LineWeight());
        EXPECT_DOUBLE_EQ(profile.Modulus() * section.depth, section.inertia * 2);
        EXPECT_EQ(profile.metal.get(), profiles[1]->metal.get()) << "one metal for all";
    }
    EXPECT_THAT(FailureOf([&] { OpenProfiles(Path("none.zo")); }), HasSubstr("There is no file"));
    folder.Write("a.zo", bytes.substr(0, Records(bytes)[0]));
    EXPECT_THAT(FailureOf([&] { OpenProfiles(Path("a.zo")); }), HasSubstr("Metadado corrompido"));
}

TEST_F(FrameTests, FilesWithPlainNumbersAreConverted) {
    std::filesystem::copy_file(FRAME_DATA "/frame9.zo", Path("old.zo"));
    std::filesystem::copy_file(FRAME_DATA "/frame9.txt", Path("old.txt"));
    const Model model = Open(Path("old.zo"));
    WriteText(model, Path("new.txt")); // has every number, to 15 digits
    EXPECT_TRUE(folder.Read("new.txt") == folder.Read("old.txt"));
    EXPECT_EQ(model.building->SavedAt(), TTimestamp::MinValue());
    EXPECT_EQ(model.building->storeys.Last()->level.Texto(TComprimento::ft, 9, false, '.'), "109 ft");
    EXPECT_EQ(model.building->materials[1]->density, GPeso(7850, TPeso::kgf_m3));

    const Profiles profiles = OpenProfiles(Path("old.zo"));
    ASSERT_EQ(profiles.NItems(), 11u);
    for (unsigned long long i = 1; i <= profiles.NItems(); ++i)
        EXPECT_EQ(profiles[i]->LineWeight(), model.building->sections[i]->LineWeight());

    Save(model, Path("new.zo"));
    EXPECT_EQ(folder.Read("old.zo")[0], 3);
    EXPECT_EQ(folder.Read("new.zo")[0], 4);
    EXPECT_EQ(Compare(*model.building, *Open(Path("new.zo")).building).difference, "");

    std::string bytes = folder.Read("old.zo");
    bytes[Records(bytes)[150] + 18] ^= 1; // of the uid of a column
    folder.Write("bad.zo", bytes);
    EXPECT_THAT(FailureOf([&] { Open(Path("bad.zo")); }), HasSubstr("mais de um objeto principal"));
}

TEST_F(FrameTests, KeepsTheTimeOfSavingToTheTickAndTheVersionBefore) {
    EXPECT_THAT(Report(building), Not(HasSubstr("Saved:")));
    for (const long long ticks : {17'952'344'001'234'567LL, -1LL, 0LL, -621'355'968'000'000'000LL}) {
        const bool first = !folder.Has("a.zo");
        const std::string before = first ? "" : folder.Read("a.zo");
        Save(model, Path("a.zo"), TTimestamp::FromTicks(ticks));
        EXPECT_EQ(Open(Path("a.zo")).building->SavedAt().Ticks(), ticks);
        EXPECT_TRUE(first ? !folder.Has("a.zo-bak") : folder.Read("a.zo-bak") == before);
    }
    const TTimestamp before;
    Save(model, Path("a.zo"));
    EXPECT_GE(building.SavedAt(), before);
    EXPECT_LE(building.SavedAt(), TTimestamp());
    const ZoString saved = building.saved;
    EXPECT_THAT(FailureOf([&] { Save(model, Path("none/a.zo")); }),
                HasSubstr("cannot be saved and is as it was"));
    EXPECT_EQ(building.saved, saved);
    model.building->SavedAt(TTimestamp::FromTicks(17'952'344'001'234'567LL));
    EXPECT_THAT(Report(building), HasSubstr("  Saved:       2026-11-21 04:13:20 UTC\n"));
    model.building->saved = "yesterday";
    EXPECT_EQ(building.SavedAt(), TTimestamp::MinValue());
}

TEST_F(FrameTests, ComparisonFindsEveryKindOfDifference) {
    const ZoPrimitives::pointer<Node> copy(new Node(*building.nodes[2]));
    const ZoPrimitives::pointer<Member> column(new Column);
    column->name = building.storeys[2]->members.Last()->name;
    const std::pair<std::function<void(Building&)>, const char*> cases[] = {
        {[](Building& b) { b.storeys[3]->name += "!"; }, "name"},
        {[](Building& b) { b.sections[2]->area += GArea(1e-9); }, "area"},
        {[](Building& b) { b.nodes[1]->support = false; }, "support"},
        {[](Building& b) { static_cast<char*>(b.thumbnail.Data())[99] ^= 1; }, "thumbnail"},
        {[](Building& b) { b.site.seismic = false; }, "seismic"},
        {[](Building& b) { dynamic_cast<Girder&>(*b.storeys[5]->members.Last()).loads.RemoveLast(); },
         "loads"},
        {[](Building& b) { b.storeys[2]->members[1]->section = b.sections[9]; }, "section"},
        {[&](Building& b) { b.storeys[1]->members[2]->start = copy.get(); },
         "start"}, // alike, but not shared
        {[](Building& b) { b.storeys[2]->building = nullptr; }, "building"},
        {[](Building& b) { b.storeys[6]->members.RemoveFirst(); }, "members"},
        {[](Building& b) { std::swap(b.legend.ValueAt(1), b.legend.ValueAt(2)); }, "grey"},
        {[&](Building& b) { b.storeys[2]->members.Last() = column; }, "class"},
    };
    for (const auto& [change, field] : cases) {
        const Model changed = ReadTables(FRAME_TABLES);
        change(*changed.building);
        EXPECT_THAT(Compare(building, *changed.building).difference,
                    HasSubstr(std::string("\"") + field + "\""));
    }
}

TEST_F(FrameTests, BadFilesAreRefusedWithASentence) {
    Save(model, Path("good.zo"));
    const std::string good = folder.Read("good.zo");
    const std::vector<std::size_t> records = Records(good);
    const auto changed = [&](std::size_t at, char value) {
        std::string bytes = good;
        bytes[at] = value;
        return bytes;
    };
    const std::tuple<const char*, std::string, const char*> cases[] = {
        {"empty", "", "is not a file of this program."},
        {"header cut", good.substr(0, 27), "is not a file of this program."},
        {"header alone", good.substr(0, 28), "is damaged: use a copy of it."},
        {"newer version", changed(0, 5), "was saved by a newer version of this program: update the program"},
        {"byte of the classes", changed(records[0] + 60, '#'), "is damaged"},
        {"byte of an object", changed(records[50] + 25, '#'),
         "is damaged: use a copy of it.\nO conteúdo não é o que foi salvo"},
        {"uid of the site", changed(records[57] + 18, 1), "O conteúdo não é o que foi salvo"},
        {"cut in a record", good.substr(0, records[100] + 30), "is damaged"},
        {"cut between records", good.substr(0, records[100]), "O conteúdo não é o que foi salvo"},
    };
    for (const auto& [name, bytes, sentence] : cases) {
        folder.Write("bad.zo", bytes);
        EXPECT_THAT(FailureOf([&] { Open(Path("bad.zo")); }), HasSubstr(sentence)) << name;
    }
    EXPECT_THAT(FailureOf([&] { Open(Path("none.zo")); }), HasSubstr("There is no file"));
    EXPECT_THAT(FailureOf([&] { Open(folder.Path()); }), HasSubstr("is a folder"));
    folder.Write("bad.zo-bak", good);
    EXPECT_THAT(FailureOf([&] { Open(Path("bad.zo")); }), HasSubstr("open the version before it"));
}

TEST_F(FrameTests, IncompleteBuildingsAreRefused) {
    const std::pair<void (*)(Building&), const char*> cases[] = {
        {[](Building& b) { b.storeys[2]->members[1]->section = nullptr; }, "column A1 has no section"},
        {[](Building& b) { b.storeys[2]->members.Last()->end = nullptr; }, "girder EF1 has no node"},
        {[](Building& b) { b.sections[1]->material = nullptr; }, "section W14x233 has no material"},
        {[](Building& b) { b.storeys[2]->building = nullptr; }, "Térreo has no way back"},
        {[](Building& b) { b.storeys[2]->members[1] = nullptr; }, "Térreo has no member"},
        {[](Building& b) { b.storeys.RemoveAll(); }, "has no storeys"},
    };
    for (const auto& [change, fault] : cases) {
        const Model changed = ReadTables(FRAME_TABLES);
        change(*changed.building);
        Save(changed, Path("a.zo"));
        EXPECT_THAT(FailureOf([&] { Open(Path("a.zo")); }), HasSubstr(fault));
    }
}

TEST_F(FrameTests, AStoreyIsExtractedWithWhatItRefersTo) {
    for (const auto& storey : building.storeys) {
        const Model extracted = ExtractStorey(building, storey->mark.c_str());
        const Building& part = *extracted.building;
        SCOPED_TRACE(storey->mark.c_str());
        EXPECT_TRUE(part.FindFault().IsNull());
        ASSERT_EQ(part.storeys.NItems(), 1u);
        EXPECT_EQ(part.storeys[1]->name, storey->name);
        EXPECT_EQ(part.storeys[1]->floor[1], part.storeys[1]->members[1]->start.get());
        EXPECT_EQ(part.sections[1]->catalogue.get(), part.catalogue.get());
        EXPECT_NE(part.catalogue.get(), building.catalogue.get());
        // members, nodes above and below, sections and legend entries, and those that are there once
        EXPECT_EQ(Count(part).objects, 11u + 12u + 3u + 3u + 5u);
        double steel = 0;
        for (const auto& member : storey->members) steel += member->Weight();
        EXPECT_EQ(TotalSteel(part), steel);
    }
    EXPECT_THAT(FailureOf([&] { ExtractStorey(*model.building, "10"); }),
                HasSubstr("There is no storey \"10\": there are B, 1, 2, 3, 4, 5, 6, 7, 8, 9."));
}

TEST_F(FrameTests, ClipboardPastesWhatThisOrAnotherProcessCopied) {
    const ZoPrimitives::Testing::PrivateClipboard clipboard;
    // Without a display Wine keeps the clipboard as long as some program that has used it runs: this one.
    Copy(model);
    for (int times = 0; times < 2; ++times)
        EXPECT_EQ(Compare(*model.building, *Paste().building).difference, "");
    Save(model, Path("a.zo"));
    const auto run = [&](const std::string& arguments) {
        // Without something before it, one of the shells takes the first quote and the last one away.
        const std::string command =
            "cd . && \"" FRAME_PROGRAM "\" " + arguments + " > \"" + Path("output") + '"';
        EXPECT_EQ(std::system(command.c_str()), 0) << command;
        return folder.Read("output");
    };
    EXPECT_THAT(run("copy \"" + Path("a.zo") + "\" 3"), HasSubstr("On the clipboard: storey 3, 34 objects"));
    EXPECT_THAT(run("paste"),
                testing::AllOf(HasSubstr("3º andar, Los Angeles"), HasSubstr("Total steel: 24.37 t"),
                               HasSubstr("Pasted:      34 objects")));
}

TEST_F(FrameTests, ClipboardWithoutABuildingIsRefusedWithASentence) {
    const ZoPrimitives::Testing::PrivateClipboard clipboard;
    const std::tuple<const char*, unsigned, std::string, const char*> rows[] = {
        {"nothing in it", 4, "", "is damaged: copy it again."},
        {"no records", 4, std::string(100, 'x'), "is damaged: copy it again."},
        {"newer version", 5, "", "was copied by a newer version of this program"},
        {"no version", 10'000, "", "There is no building on the clipboard: copy one first."},
    };
    for (const auto& [name, version, records, sentence] : rows) {
        ZoPrimitives::TClipboardBinOutStream out(version, 2026);
        out.Initialize();
        out.Append(records.data(), records.size());
        out.FlushBuffer();
        out.Finalize();
        EXPECT_THAT(FailureOf(Paste), HasSubstr(sentence)) << name;
    }
}

TEST_F(FrameTests, BadTablesAreRefusedWithFileAndLine) {
    const std::tuple<const char*, const char*, const char*, const char*> cases[] = {
        {"sections", "area_in2", "area", "frame9-sections.csv, line 1: the headings must be \"name,"},
        {"sections", "75.6", "75,6", "frame9-sections.csv, line 3: 4 fields are expected, 5 are there."},
        {"sections", "W14x257", "W14x233", "line 3: W14x233 is there already."},
        {"bays", "B-C", "B", "frame9-bays.csv, line 3: \"B\" does not name two column lines"},
        {"bays", "C-D", "D-E", "line 4: bay D-E does not begin where the one before ends."},
        {"storeys", "W24x68", "W24x69", "frame9-storeys.csv, line 11: section \"W24x69\""},
        {"storeys", "9,13", "B2,13", "line 11: a basement cannot lie above the ground."},
        {"storeys", "", "storey,height,height_unit,girder,exterior_column,interior_column\n",
         "frame9-storeys.csv holds nothing"},
    };
    for (const auto& [table, from, to, sentence] : cases) {
        std::filesystem::copy(FRAME_TABLES, folder.Path(),
                              std::filesystem::copy_options::recursive |
                                  std::filesystem::copy_options::overwrite_existing);
        const std::string path = std::string("frame9-") + table + ".csv";
        std::string text = folder.Read(path);
        text.replace(text.find(from), std::strlen(*from == '\0' ? text.c_str() : from), to);
        folder.Write(path, text);
        EXPECT_THAT(FailureOf([&] { ReadTables(folder.Path()); }), HasSubstr(sentence));
    }
    EXPECT_THAT(FailureOf([&] { ReadTables(Path("none")); }),
                HasSubstr("frame9-sections.csv cannot be read"));
}

TEST_F(FrameTests, ReportIsAlignedAndHarmless) {
    model.building->storeys[4]->name = ZoString("a\x1b[2J\x9d"
                                                "b\xe7"); // would command a terminal
    const std::string report = Report(building);
    EXPECT_THAT(report, HasSubstr("a?[2J?bç"));
    std::istringstream lines(report);
    std::set<std::size_t> widths; // of the lines that end in a column of numbers
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("  Total steel", 0) == 0) break;
        if (line.rfind("  ", 0) != 0) continue;
        const auto isCharacter = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; };
        widths.insert(static_cast<std::size_t>(std::count_if(line.begin(), line.end(), isCharacter)));
    }
    EXPECT_EQ(widths.size(), 2u); // one for each table
}

} // namespace
