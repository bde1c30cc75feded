#include "table.h"

#include <charconv>
#include <cmath>
#include <filesystem>
#include <fstream>

namespace Frame {

namespace {

std::vector<std::string> Split(const std::string& text) {
    std::vector<std::string> fields(1);
    for (char c : text) {
        if (c == ',') {
            fields.emplace_back();
        } else {
            fields.back() += c;
        }
    }
    return fields;
}

std::string Join(const std::vector<std::string>& fields) {
    std::string text;
    for (const std::string& field : fields) text += (text.empty() ? "" : ",") + field;
    return text;
}

} // namespace

Table::Table(const std::string& folder, const char* fileName, const std::vector<std::string>& headings)
    : name(fileName) {
    std::ifstream file(std::filesystem::u8path(folder) / fileName, std::ios::binary);
    std::string text;
    int line = 0;
    while (std::getline(file, text)) {
        ++line;
        if (!text.empty() && text.back() == '\r') text.pop_back();
        if (text.empty()) continue;
        Row row{line, Split(text)};
        if (row.fields.size() != headings.size()) {
            Fail(row, Words("{1} fields are expected, {2} are there",
                            {std::to_string(headings.size()), std::to_string(row.fields.size())}));
        }
        if (hasHeadings) {
            rows.push_back(row);
        } else if (row.fields != headings) {
            Fail(row, Words("the headings must be \"{1}\"", {Join(headings)}));
        }
        hasHeadings = true;
    }
    if (line == 0) {
        throw Failure(
            Words("The table {1} cannot be read: look whether it is in the folder \"{2}\".", {name, folder}));
    }
    if (rows.empty()) throw Failure(Words("The table {1} holds nothing below its headings.", {name}));
}

void Table::Fail(const Row& row, const std::string& what) const {
    throw Failure(Words("{1}, line {2}: {3}.", {name, std::to_string(row.line), what}));
}

double Table::Number(const Row& row, std::size_t field) const {
    const std::string& text = row.fields[field];
    double number = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    if (read.ec != std::errc() || read.ptr != text.data() + text.size() || !std::isfinite(number))
        Fail(row, Words("\"{1}\" is not a number", {text}));
    return number;
}

} // namespace Frame
