#pragma once

#include <fmt/format.h>

#include <cmath>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace ZoTool {

/// Text of JSON that can stand in a page: without "<".
class Json {
public:
    void Raw(std::string_view part) { text += part; }
    template <class Number>
    void Put(Number number) {
        fmt::format_to(std::back_inserter(text), "{}", number);
    }
    /// JSON has no numbers for these: they are texts.
    template <class Float>
    void PutFloat(Float number) {
        if (std::isfinite(number)) {
            Put(number);
        } else {
            Raw(std::isnan(number) ? "\"NaN\"" : number < 0 ? "\"-Infinity\"" : "\"Infinity\"");
        }
    }
    void PutText(std::string_view utf8) {
        text += '"';
        for (const char c : utf8) {
            if (c == '"' || c == '\\') {
                text += '\\';
                text += c;
            } else if (static_cast<unsigned char>(c) < 0x20 || c == '<') {
                fmt::format_to(std::back_inserter(text), "\\u{:04x}", static_cast<unsigned>(c));
            } else {
                text += c;
            }
        }
        text += '"';
    }
    void Key(std::string_view name) {
        Comma();
        PutText(name);
        text += ':';
    }
    /// Between items: none after an opening bracket, or a key.
    void Comma() {
        if (!text.empty() && text.back() != '[' && text.back() != '{' && text.back() != ':') text += ',';
    }
    template <class Item, class Action>
    void List(const std::vector<Item>& items, Action action) {
        text += '[';
        for (const Item& item : items) {
            Comma();
            action(item);
        }
        text += ']';
    }
    template <class Number>
    void Numbers(const std::vector<Number>& items) {
        List(items, [this](Number item) { Put(item); });
    }
    std::size_t Size() const { return text.size(); }
    std::string Take() { return std::move(text); }

private:
    std::string text;
};

} // namespace ZoTool
