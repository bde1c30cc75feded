#include "compare.h"
#include "grammar.h"
#include "report.h"
#include "tables.h"
#include "text.h"

#include "public/frame/FailureOf.h"

#include "support/TemporaryFolder.h"

#include "ZoPrimitives/ZoUtf8.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>

namespace {

using namespace Frame;
using testing::HasSubstr;
using ZoPrimitives::pointer;

/// The text of a building of one column, as docs/text-format.md shows it: a line holds tokens with ends
/// between them, and an explanation.
std::string ShownText() {
    std::ifstream document(FRAME_DOCS "/text-format.md");
    std::string shown;
    bool inside = false;
    for (std::string line; std::getline(document, line);) {
        if (line == "```") inside = false;
        if (inside) {
            line = line.substr(0, line.find('|'));
            line.erase(line.find_last_not_of(' ') + 1);
            shown += (shown.empty() ? "" : "\r\n") + line;
        }
        if (line == "```text") inside = true;
    }
    return ZoPrimitives::ZoFromUtf8(ZoString(shown.c_str()).ReplaceString(" ↵ ", "\r\n", true).c_str())
        .c_str();
}

struct TextTests : testing::Test {
    std::string TextOf(const Model& model) const {
        WriteText(model, folder.Path("out.txt"));
        return folder.Read("out.txt");
    }
    Model ModelOf(const std::string& text) const {
        const std::string name = std::to_string(++count); // to write over a file takes longer
        folder.Write(name, text);
        return ReadText(folder.Path(name));
    }
    Model Shed() const { return ModelOf(ShownText()); }
    std::string FailureOf(const std::string& text) const {
        return ::FailureOf([&] { ModelOf(text); });
    }

    ZoPrimitives::Testing::TemporaryFolder folder;
    mutable int count = 0;
};

std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text + "\n");
    for (std::string line; std::getline(in, line);) lines.push_back(line.substr(0, line.find('\r')));
    return lines;
}

std::string Joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text += (text.empty() ? "" : "\r\n") + line;
    return text;
}

TEST_F(TextTests, HoldsTheWholeGraph) {
    const Model model = ReadTables(FRAME_TABLES);
    const pointer<Node> node = model.building->nodes[2];
    for (Node* each : {static_cast<Node*>(nullptr), node.get(), node.get()})
        model.building->storeys[1]->floor.Add(each);
    const std::string text = TextOf(model);
    const Model read = ModelOf(text), again = ModelOf(TextOf(read));
    EXPECT_EQ(TextOf(read), text);
    const Comparison comparison = Compare(*read.building, *again.building);
    EXPECT_EQ(comparison.difference, "");
    EXPECT_EQ(comparison.objects, 212u);
}

TEST_F(TextTests, IsTheOneInTheDocument) {
    const Model model = Shed();
    const Building& shed = *model.building;
    const auto& column = dynamic_cast<const Column&>(*shed.storeys[1]->members[1]);
    EXPECT_EQ(shed.name, "Galp\xE3o\nde teste");
    EXPECT_EQ(shed.lines[1] + shed.site.name + column.name + column.section->name, "AS\xE3o PauloP1W 150");
    EXPECT_EQ(shed.materials[1]->density, GPeso(7850, ZoPrimitives::TPeso::kgf_m3));
    EXPECT_TRUE(column.section->depth == 15.3 && column.section->area == 16.6 &&
                column.section->inertia == 685.0);
    EXPECT_TRUE(column.exterior && column.start == shed.nodes[1] && column.end->place.Y() == 365.76);
    EXPECT_TRUE(shed.nodes[1]->support && shed.storeys[1]->floor[1] == shed.nodes[1].get());
    EXPECT_EQ(TextOf(model), ShownText());
}

TEST_F(TextTests, KeepsTextsOfSeveralLines) {
    Model model = Shed();
    for (const char* name : {"", "a", "a\nb", "a\n", "\n", "\na", "\n\n", "\r\nENDGROUP\n7"}) {
        model.building->name = name;
        model.building->storeys[1]->mark = name;
        model.building->lines.RemoveAll();
        for (const char* line : {name, "", name, "x"}) model.building->lines.Add(line);
        const Model read = ModelOf(TextOf(model));
        EXPECT_EQ(Compare(*model.building, *read.building).difference, "") << name;
    }
}

TEST_F(TextTests, PassesOverWhatItDoesNotKnow) {
    const Model model = Shed();
    const std::vector<std::string> lines = LinesOf(TextOf(model));
    const std::vector<std::vector<std::string>> unknown = {
        {"99", "x"},
        {"8", "ENDGROUP"},
        {"180", "5", "1"},
        {"180", "5", "999"},
        {"180", "0", "ENDGROUPELEMENTOS"},
        {"180", "0", "class Frame::Wall", "3",  "77", "1", "w", "110",      "0",  "class X", "7", "210", "5",
         "1",   "0", "class Y",           "10", "0",  "7", "0", "ENDGROUP", "10", "7",       "7"},
        {"280", "0", "ENDGROUP"},
        {"280", "0", "class Frame::Node", "10", "7", "7", "5", "1", "0", "ENDGROUPELEMENTOS", "0",
         "ENDGROUP"},
    };
    for (const auto& value : unknown) {
        std::vector<std::string> extended = lines;
        extended.insert(extended.begin() + 6, value.begin(), value.end()); // behind the building's handle
        const Model read = ModelOf(Joined(extended));
        EXPECT_EQ(Compare(*model.building, *read.building).difference, "") << value[1];
    }
    // Of no class that is known, or of the wrong one: not in the list.
    for (const char* name : {"class Frame::Wall", "class Frame::Site"}) {
        std::vector<std::string> other = lines;
        const auto node = std::find(other.begin(), other.end(), "class Frame::Node");
        *std::find(node + 1, other.end(), "class Frame::Node") = name;
        EXPECT_THAT(FailureOf(Joined(other)), HasSubstr("P1 has no node")) << name;
    }
}

TEST_F(TextTests, DamageIsToldInASentence) {
    const std::vector<std::string> lines = LinesOf(TextOf(Shed()));
    const std::size_t closed = lines.size() - 1; // EOF is not needed
    std::string prefix;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        EXPECT_EQ(FailureOf(prefix).empty(), i == closed) << i;
        EXPECT_EQ(FailureOf(prefix + lines[i]).empty(), i + 1 >= closed) << i;
        prefix += lines[i] + "\n";
        for (const char* other : {"0", "5", "7", "class Frame::Node", "ENDGROUP", "200"}) {
            std::vector<std::string> changed = lines;
            changed[i] = other;
            FailureOf(Joined(changed)); // read or told: anything else comes through
        }
    }
    std::string deep[] = {"0\nclass Frame::Wall\n100\n", "0\nclass Frame::Building\n203\n"};
    for (std::string& levels : deep)
        for (int doubled = 0; doubled < 17; ++doubled) levels += levels;
    const std::pair<std::string, const char*> rows[] = {
        {"x", "is not a text of this program"},
        {"FRAME\n2\n", "newer version"},
        {"FRAME\n1\n0\nENDGROUPELEMENTOS\nENDSEC", "holds no building"},
        {"FRAME\n1\n0\nclass Frame::Site\n7\nENDSEC", "holds no building"},
        {"FRAME\n1\n" + deep[0], "Objetos aninhados demais"},
        {"FRAME\n1\n" + deep[1], "Objetos aninhados demais"},
    };
    for (const auto& [text, sentence] : rows) EXPECT_THAT(FailureOf(text), HasSubstr(sentence));
    EXPECT_THROW(ReadText(folder.Path("none.txt")), Failure);
    EXPECT_THROW(WriteText(Shed(), folder.Path("none/a.txt")), Failure);
}

} // namespace
