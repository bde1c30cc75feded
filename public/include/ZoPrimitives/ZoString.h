#pragma once

#include "ZoPrimitives/ZoAssert.h"
#include "ZoPrimitives/ZoObject.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#if defined(__GNUC__)
#define ZO_PRINTF(text, first) __attribute__((format(printf, text, first)))
#else
#define ZO_PRINTF(text, first)
#endif

namespace ZoPrimitives {

/// An owned, NUL-terminated 8-bit string in Windows-1252; the first 0 byte always ends it.
///
/// Positions count from 0; searches return -1 for "not found"; 0xFFFFFFFF as a start or end means "the last".
/// The length is not stored: asking for it scans the text. No result depends on the process's locale. A null
/// `const char*` always counts as empty. A moved-from string reads as empty.
class ZO_API ZoString : public ZoObject {
public:
    static constexpr unsigned NO_POSITION = 0xFFFFFFFFu;

    ZoString() noexcept;
    ZoString(const char* text) noexcept;
    /// Copies exactly `count` bytes of `text`.
    ZoString(const char* text, unsigned count) noexcept;
    ZoString(const unsigned char* text, unsigned count) noexcept;
    ZoString(std::nullptr_t, unsigned) noexcept : ZoString() {}
    /// Up to the first 0 character.
    ZoString(std::string_view text) noexcept : ZoString(text.data(), static_cast<unsigned>(text.size())) {}
    ZoString(const std::string& text) noexcept : ZoString(std::string_view(text)) {}
    /// The character itself, not its number.
    ZoString(char c) noexcept;
    ZoString(char c, unsigned count) noexcept;

    // Numbers in decimal notation.
    ZoString(int value) noexcept;
    ZoString(unsigned value) noexcept;
    ZoString(long value) noexcept;
    ZoString(unsigned long value) noexcept;
    ZoString(long long value) noexcept;
    ZoString(unsigned long long value) noexcept;
    /// Six decimals and a point, without an exponent; "inf", "-inf" and "nan".
    ZoString(double value) noexcept;

    // Other character types must not pass as numbers.
    ZoString(wchar_t) = delete;
#ifdef __cpp_char8_t
    ZoString(char8_t) = delete;
#endif
    ZoString(char16_t) = delete;
    ZoString(char32_t) = delete;

    ZoString(const ZoString& other) noexcept;
    ZoString(ZoString&& other) noexcept : buffer(std::exchange(other.buffer, nullptr)) {}
    ~ZoString() override;

    ZoString& operator=(const ZoString& other) noexcept;
    ZoString& operator=(ZoString&& other) noexcept;
    /// `text` may point into this string.
    ZoString& operator=(const char* text) noexcept;
    template <class Number, class = std::enable_if_t<std::is_arithmetic_v<Number>>>
    ZoString& operator=(Number value) noexcept {
        return *this = ZoString(value);
    }

    /// Copies exactly `count` bytes, which may lie in this string, and reuses the buffer if it is known to be
    /// large enough: for strings that are filled repeatedly.
    void Assign(const char* bytes, unsigned count) noexcept;

    unsigned length() const noexcept { return static_cast<unsigned>(Size()); }
    explicit operator std::string() const { return {c_str(), Size()}; }
    /// Valid as long as the string is not changed.
    explicit operator std::string_view() const noexcept { return {c_str(), Size()}; }
    /// Never null.
    const char* c_str() const noexcept { return buffer != nullptr ? buffer : NOTHING; }

    char& operator[](unsigned pos) {
        if (!Holds(pos)) ZoFailPosition("pos < length()", ZoSources::INDEX, pos, length());
        return buffer[pos];
    }
    const char& operator[](unsigned pos) const {
        if (!Holds(pos)) ZoFailPosition("pos < length()", ZoSources::CONST_INDEX, pos, length());
        return buffer[pos];
    }

    /// Parses blanks, a sign and digits at the start; 0 without digits; the nearest `int` when out of range.
    int ToInt() const noexcept;
    /// Parses as C's `atof` in the C locale (hexadecimal, "inf" and "nan" included); infinite when out of
    /// range.
    double ToDouble() const noexcept;

    // Appending and joining. The string is unchanged when memory is short.
    ZoString& operator+=(const ZoString& text) noexcept { return Append(text.c_str(), text.Size()); }
    ZoString& operator+=(const char* text) noexcept {
        return Append(text, text != nullptr ? std::strlen(text) : 0);
    }
    template <class Number, class = std::enable_if_t<std::is_arithmetic_v<Number>>>
    ZoString& operator+=(Number value) noexcept {
        return *this += ZoString(value);
    }

    ZoString operator+(const ZoString& text) const noexcept;
    ZoString operator+(const char* text) const noexcept;
    /// Appends a character itself, or a number as the constructors write it.
    template <class Number, class = std::enable_if_t<std::is_arithmetic_v<Number>>>
    ZoString operator+(Number value) const noexcept {
        return *this + ZoString(value);
    }
    friend ZoString operator+(const char* a, const ZoString& b) noexcept { return ZoString(a) += b; }

    // Byte-wise order of unsigned bytes.
    friend bool operator==(const ZoString& a, const ZoString& b) noexcept { return Order(a, b.c_str()) == 0; }
    friend bool operator!=(const ZoString& a, const ZoString& b) noexcept { return Order(a, b.c_str()) != 0; }
    friend bool operator<(const ZoString& a, const ZoString& b) noexcept { return Order(a, b.c_str()) < 0; }
    friend bool operator<=(const ZoString& a, const ZoString& b) noexcept { return Order(a, b.c_str()) <= 0; }
    friend bool operator>(const ZoString& a, const ZoString& b) noexcept { return Order(a, b.c_str()) > 0; }
    friend bool operator>=(const ZoString& a, const ZoString& b) noexcept { return Order(a, b.c_str()) >= 0; }
    friend bool operator==(const ZoString& a, const char* b) noexcept { return Order(a, b) == 0; }
    friend bool operator!=(const ZoString& a, const char* b) noexcept { return Order(a, b) != 0; }
    friend bool operator<(const ZoString& a, const char* b) noexcept { return Order(a, b) < 0; }
    friend bool operator<=(const ZoString& a, const char* b) noexcept { return Order(a, b) <= 0; }
    friend bool operator>(const ZoString& a, const char* b) noexcept { return Order(a, b) > 0; }
    friend bool operator>=(const ZoString& a, const char* b) noexcept { return Order(a, b) >= 0; }
    friend bool operator==(const char* a, const ZoString& b) noexcept { return Order(b, a) == 0; }
    friend bool operator!=(const char* a, const ZoString& b) noexcept { return Order(b, a) != 0; }
    friend bool operator<(const char* a, const ZoString& b) noexcept { return Order(b, a) > 0; }
    friend bool operator<=(const char* a, const ZoString& b) noexcept { return Order(b, a) >= 0; }
    friend bool operator>(const char* a, const ZoString& b) noexcept { return Order(b, a) < 0; }
    friend bool operator>=(const char* a, const ZoString& b) noexcept { return Order(b, a) <= 0; }

    /// False when `other` is not a `ZoString`.
    bool operator==(const ZoObject& other) const override;

    bool Equal(const ZoString& other, bool caseSensitive) const noexcept;
    bool Less(const ZoString& other, bool caseSensitive) const noexcept;
    /// -1, 0 or 1. Digits weigh more the more digits follow them: "a9" is less than "a10".
    int Compare(const ZoString& other) const noexcept;

    /// Asserts `initPos < length()` unless the string is empty.
    int find(char c, unsigned initPos = 0) const;
    /// Finds an empty `text` at `initPos`, and nothing beyond the end.
    int find(const ZoString& text, unsigned initPos = 0, bool caseSensitive = true) const noexcept;
    /// These searches never assert.
    int hasChar(char c, unsigned initPos = 0) const noexcept;
    int hasText(const ZoString& text, unsigned initPos = 0) const noexcept;
    /// Searches backwards from `initPos`. Asserts `initPos < length()` unless the string is empty or the
    /// default is used.
    int rfind(char c, unsigned initPos = NO_POSITION) const;
    /// Searches backwards, skipping the last `count` characters; -1 if the string has only spaces.
    int findLast(char c, unsigned count = 0) const noexcept;
    /// The first position of the last `text` that ends at or before `initPos` (-1: the end). Asserts `initPos
    /// < length()` unless the string is empty. An empty `text` is found just after `initPos`.
    int textRFind(const ZoString& text, int initPos = -1, bool caseSensitive = true) const;
    /// Puts the text before the `count`th `delimiter`, without delimiters, into `out`; no field up to there
    /// may be empty. Returns the length of the last field; -1, with an empty `out`, on failure and for
    /// `count` below 1.
    int findDelimiter(ZoString& out, char delimiter, int count) const noexcept;
    int FirstNumericChar() const noexcept;

    /// The characters from `first` to `last`, both inclusive.
    ZoString substr(unsigned first, unsigned last = NO_POSITION) const noexcept;
    /// Empty for the empty string.
    ZoString LastChar() const noexcept;
    /// The trims remove only spaces; a string of nothing but spaces is unchanged.
    ZoString TrimLeft() const noexcept;
    ZoString TrimRight() const noexcept;
    ZoString Trim() const noexcept;
    ZoString RemoveSpace() const noexcept;
    ZoString Remove(char c) const noexcept;
    /// Removes the first, or every, occurrence in one pass from the left; an empty `text` occurs nowhere.
    ZoString Remove(const ZoString& text, bool all) const noexcept;
    /// Replaces in one pass from the left; an empty `find` occurs nowhere. Returns the string unchanged if
    /// the result would be empty.
    ZoString ReplaceString(const ZoString& find, const ZoString& replace, bool all) const noexcept;
    ZoString ReplaceLastOccurrence(const ZoString& find, const ZoString& replace) const noexcept;
    /// Removes the bytes 'A' to 'z', including the six marks between 'Z' and 'a'.
    ZoString RemoveLetters() const noexcept;
    ZoString RemoveAccents() const noexcept;
    /// Removes line feeds at the end.
    ZoString RemoveTrailingBreaklines() const noexcept;

    // These change the string and return a copy of the result.
    ZoString Inverter() noexcept;
    ZoString ChangeFloatSeparator(char from, char to) noexcept;
    ZoString ChangeLineTerminator(char from, char to) noexcept;
    /// Replaces every `c` by a space.
    ZoString ChangeBreakLine(char c) noexcept;

    // These change the string.
    /// Word wrap: replaces about one space in every `width` characters by a line feed.
    void AddBreakLines(unsigned width) noexcept;
    ZoString& Lowercase() noexcept;
    ZoString& Uppercase() noexcept;

    /// Capitalises the first character and those after spaces, except the last one. Asserts that `s` is not
    /// empty.
    static ZoString FirstCharToUppercase(const ZoString& s);
    /// The name without directory and extension. A path without any '.' is returned unchanged; a '.' in the
    /// directory ends no name.
    ZoString ExtractFileName() const noexcept;
    /// The text after the last '.' of the whole path.
    ZoString GetFileExtension() const noexcept;

    /// `printf` in the C locale. The result is cut to 9,999 bytes; it is empty if the format is invalid.
    static ZoString FormatString(const char* format, ...) noexcept ZO_PRINTF(1, 2);
    /// As above; arguments for "%s" may be `ZoString`s. Without arguments any text is safe as a format: "%%"
    /// is written as one percent sign, "%n" as nothing, every other directive unchanged.
    template <class Format, class... Arguments,
              class = std::enable_if_t<std::is_base_of_v<ZoString, std::decay_t<Format>>>>
    static ZoString FormatString(const Format& format, const Arguments&... arguments) noexcept {
        if constexpr (sizeof...(Arguments) == 0)
            return FormatWithoutArguments(format.c_str());
        else
            return FormatUnchecked(format.c_str(), Argument(arguments)...);
    }

    /// Whether the string is empty or only spaces.
    bool IsNull() const noexcept;
    bool HasNonWhitespaceChar() const noexcept;
    bool HasNumericChar() const noexcept;
    /// True for the empty string.
    bool HasOnlyNumbers() const noexcept;
    /// An optional minus, digits, and at most one point or comma with digits after it.
    bool IsNumeric() const noexcept;
    /// Not empty: digits, at most one point, and a minus only at the start.
    bool IsValidFloat() const noexcept;
    /// Whether a character descends below the base line.
    bool HasUnderlineChars() const noexcept;
    /// Whether a character is not allowed in a file name.
    bool HasInvalidNameChars() const noexcept;
    bool HasInvalidNameChars(const ZoString& set) const noexcept;
    ZoString RemoveInvalidChars() const noexcept;
    ZoString RemoveInvalidChars(const ZoString& set) const noexcept;
    ZoString ReplaceInvalidChars(char with) const noexcept;

private:
    static const char* InvalidNameChars() noexcept;
    static bool CharacterInRange(char c, char low, char high) noexcept;

    static int Order(const ZoString& a, const char* b) noexcept {
        return std::strcmp(a.c_str(), b != nullptr ? b : "");
    }
    static ZoString FormatUnchecked(const char* format, ...) noexcept;
    static ZoString FormatWithoutArguments(const char* format) noexcept;
    template <class T>
    static decltype(auto) Argument(const T& argument) noexcept {
        if constexpr (std::is_base_of_v<ZoString, T>) {
            return argument.c_str();
        } else {
            static_assert(std::is_scalar_v<std::decay_t<const T&>>,
                          "FormatString takes numbers, pointers and ZoStrings");
            return static_cast<std::decay_t<const T&>>(argument);
        }
    }

    std::size_t Size() const noexcept { return buffer != nullptr ? std::strlen(buffer) : 0; }
    bool Holds(unsigned pos) const noexcept {
        return buffer != nullptr && std::memchr(buffer, 0, std::size_t{pos} + 1) == nullptr;
    }
    ZoString& Append(const char* text, std::size_t count) noexcept;
    void Replace(const char* text, std::size_t count) noexcept;
    template <class Keep>
    ZoString Filtered(Keep keep) const noexcept;
    ZoString Substituted(const ZoString& find, const char* replace, bool all) const noexcept;
    void Exchange(char from, char to) noexcept;

    static const char NOTHING[]; // not a literal: compilers would warn of positions in `c_str()` beyond it
    char* buffer;                // from malloc; null only when moved from or when memory is short
};

// Other modules construct and read strings directly: virtual table, reference count, buffer.
static_assert(sizeof(void*) != 8 || sizeof(ZoString) == 24, "the layout of ZoString is exported");

// Without these, a 0 compared with or added to a string would convert to a null `const char*`.
template <class Text, class Number>
using ZoNumberBesideText =
    std::enable_if_t<std::is_base_of_v<ZoString, Text> && std::is_arithmetic_v<Number>, bool>;
#define ZO_NOT_WITH_NUMBERS_(Operator)                                                                       \
    template <class Text, class Number>                                                                      \
    ZoNumberBesideText<Text, Number> operator Operator(const Text&, Number) = delete;                        \
    template <class Text, class Number>                                                                      \
    ZoNumberBesideText<Text, Number> operator Operator(Number, const Text&) = delete;
ZO_NOT_WITH_NUMBERS_(==)
ZO_NOT_WITH_NUMBERS_(!=)
ZO_NOT_WITH_NUMBERS_(<)
ZO_NOT_WITH_NUMBERS_(<=)
ZO_NOT_WITH_NUMBERS_(>)
ZO_NOT_WITH_NUMBERS_(>=)
#undef ZO_NOT_WITH_NUMBERS_
template <class Text, class Number>
ZoNumberBesideText<Text, Number> operator+(Number, const Text&) = delete;

/// The string that crosses the boundary between modules.
using ZoPortableString = ZoString;

} // namespace ZoPrimitives
