#include "ZoPrimitives/ZoString.h"

#include "Platform/Platform.h"
#include "ZoPrimitives/NumberText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdarg>
#include <cstdlib>
#include <functional>
#include <string_view>

namespace ZoPrimitives {

namespace {

constexpr std::size_t FORMAT_SIZE = 10'000;
constexpr std::size_t NUMBER_SIZE = 512; // "%f" of the largest double takes 317

unsigned char Byte(char c) { return static_cast<unsigned char>(c); }

/// A copy of `count` bytes with a terminator; when memory is short the empty string, or null if even that
/// fails.
char* Allocated(const char* text, std::size_t count) noexcept {
    auto* fresh = static_cast<char*>(std::malloc(count + 1));
    if (fresh == nullptr) {
        if (count > 0) return Allocated("", 0);
        return nullptr;
    }
    if (count > 0) std::memcpy(fresh, text, count);
    fresh[count] = '\0';
    return fresh;
}

template <class Number>
char* Decimal(Number value) noexcept {
    char text[32];
    const std::to_chars_result end = std::to_chars(text, text + sizeof text, value);
    return Allocated(text, static_cast<std::size_t>(end.ptr - text));
}

char* Fixed(double value) noexcept {
    if (std::isnan(value)) return Allocated("nan", 3);
    char text[NUMBER_SIZE];
    const std::to_chars_result end =
        std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 6);
    return Allocated(text, static_cast<std::size_t>(end.ptr - text));
}

int Position(std::size_t pos) { return static_cast<int>(pos); }
int Position(std::string_view text, std::size_t pos) { return pos < text.size() ? Position(pos) : -1; }

/// Computes the keys of the natural order from left to right: a digit's key grows by ten for every digit that
/// follows.
class NaturalKey {
public:
    explicit NaturalKey(std::string_view source) : text(source) {
        for (std::size_t i = 1; i < text.size(); ++i) digits += IsDigit(text[i]) ? 1u : 0u;
    }
    unsigned char operator[](std::size_t i) {
        const unsigned char byte = Byte(text[i]);
        if (i == 0) return byte;
        if (!IsDigit(text[i])) return static_cast<unsigned char>(byte + 80u);
        return static_cast<unsigned char>(byte + 10u * --digits);
    }

private:
    std::string_view text;
    unsigned digits = 0;
};

constexpr std::string_view PLAIN_LETTERS = "AAAAAAACEEEEIIIIDNOOOOO\xD7\xD8UUUUY\xDE\xDF"
                                           "aaaaaaaceeeeiiiidnooooo\xF7\xF8uuuuy\xFEy";
static_assert(PLAIN_LETTERS.size() == 64);

} // namespace

const char ZoString::NOTHING[] = "";

ZoString::ZoString() noexcept : buffer(Allocated("", 0)) {}
ZoString::ZoString(const char* text) noexcept
    : buffer(Allocated(text, text != nullptr ? std::strlen(text) : 0)) {}
ZoString::ZoString(const char* text, unsigned count) noexcept
    : buffer(Allocated(text, text != nullptr ? count : 0)) {}
ZoString::ZoString(const unsigned char* text, unsigned count) noexcept
    : ZoString(reinterpret_cast<const char*>(text), count) {}
ZoString::ZoString(char c) noexcept : buffer(Allocated(&c, 1)) {}
ZoString::ZoString(char c, unsigned count) noexcept
    : buffer(static_cast<char*>(std::malloc(std::size_t{count} + 1))) {
    if (buffer == nullptr) {
        buffer = Allocated("", 0);
        return;
    }
    std::memset(buffer, c, count);
    buffer[count] = '\0';
}
ZoString::ZoString(int value) noexcept : buffer(Decimal(value)) {}
ZoString::ZoString(unsigned value) noexcept : buffer(Decimal(value)) {}
ZoString::ZoString(long value) noexcept : buffer(Decimal(value)) {}
ZoString::ZoString(unsigned long value) noexcept : buffer(Decimal(value)) {}
ZoString::ZoString(long long value) noexcept : buffer(Decimal(value)) {}
ZoString::ZoString(unsigned long long value) noexcept : buffer(Decimal(value)) {}
ZoString::ZoString(double value) noexcept : buffer(Fixed(value)) {}
ZoString::ZoString(const ZoString& other) noexcept
    : ZoObject(other), buffer(Allocated(other.c_str(), other.Size())) {}
ZoString::~ZoString() { std::free(buffer); }

ZoString& ZoString::operator=(const ZoString& other) noexcept {
    if (buffer != other.buffer) Replace(other.c_str(), other.Size());
    return *this;
}

ZoString& ZoString::operator=(ZoString&& other) noexcept {
    if (buffer != other.buffer) std::free(std::exchange(buffer, std::exchange(other.buffer, nullptr)));
    return *this;
}

ZoString& ZoString::operator=(const char* text) noexcept {
    Replace(text, text != nullptr ? std::strlen(text) : 0);
    return *this;
}

/// As `Assign`, but frees a buffer that has become much too large.
void ZoString::Replace(const char* text, std::size_t count) noexcept {
    const std::size_t size = Size();
    if (buffer != nullptr && count <= size && size / 2 <= count + 32) {
        if (count > 0) std::memmove(buffer, text, count);
        buffer[count] = '\0';
        return;
    }
    char* fresh = Allocated(text, count);
    std::free(std::exchange(buffer, fresh));
}

void ZoString::Assign(const char* bytes, unsigned count) noexcept {
    if (bytes == nullptr) count = 0;
    // Only the room of the current text is known to exist.
    if (buffer != nullptr && (count == 0 || std::memchr(buffer, 0, count) == nullptr)) {
        if (count > 0) std::memmove(buffer, bytes, count);
        buffer[count] = '\0';
        return;
    }
    char* fresh = Allocated(bytes, count);
    std::free(std::exchange(buffer, fresh));
}

ZoString& ZoString::Append(const char* text, std::size_t count) noexcept {
    if (count == 0) return *this;
    const std::size_t size = Size();
    const bool inside = buffer != nullptr && !std::less<const char*>()(text, buffer) &&
                        std::less<const char*>()(text, buffer + size);
    const std::size_t offset = inside ? static_cast<std::size_t>(text - buffer) : 0;
    auto* grown = static_cast<char*>(std::realloc(buffer, size + count + 1));
    if (grown == nullptr) return *this;
    buffer = grown;
    std::memcpy(buffer + size, inside ? buffer + offset : text, count);
    buffer[size + count] = '\0';
    return *this;
}

ZoString ZoString::operator+(const ZoString& text) const noexcept {
    ZoString result(*this);
    result.Append(text.c_str(), text.Size());
    return result;
}

ZoString ZoString::operator+(const char* text) const noexcept {
    ZoString result(*this);
    result += text;
    return result;
}

int ZoString::ToInt() const noexcept { return IntOf({c_str(), Size()}); }

double ZoString::ToDouble() const noexcept { return RealOf({c_str(), Size()}); }

bool ZoString::operator==(const ZoObject& other) const {
    const auto* text = dynamic_cast<const ZoString*>(&other);
    return text != nullptr && *this == *text;
}

bool ZoString::Equal(const ZoString& other, bool caseSensitive) const noexcept {
    if (caseSensitive) return *this == other;
    return Size() == other.Size() && ZoString(*this).Uppercase() == ZoString(other).Uppercase();
}

bool ZoString::Less(const ZoString& other, bool caseSensitive) const noexcept {
    if (caseSensitive) return *this < other;
    return ZoString(*this).Uppercase() < ZoString(other).Uppercase();
}

int ZoString::Compare(const ZoString& other) const noexcept {
    const std::string_view a(c_str(), Size());
    const std::string_view b(other.c_str(), other.Size());
    NaturalKey keyA(a);
    NaturalKey keyB(b);
    for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
        const unsigned char byteA = keyA[i];
        const unsigned char byteB = keyB[i];
        if (byteA != byteB) return byteA < byteB ? -1 : 1;
    }
    return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

int ZoString::find(char c, unsigned initPos) const {
    const std::string_view text(c_str(), Size());
    if (text.empty()) return -1;
    ZO_ASSERT_SITE(initPos < text.size(), "initPos < stringLength", ZoSources::FIND);
    return Position(text, text.find(c, initPos));
}

int ZoString::find(const ZoString& text, unsigned initPos, bool caseSensitive) const noexcept {
    if (!caseSensitive) return ZoString(*this).Uppercase().find(ZoString(text).Uppercase(), initPos, true);
    const std::size_t pos =
        std::string_view(c_str(), Size()).find(std::string_view(text.c_str(), text.Size()), initPos);
    return pos == std::string_view::npos ? -1 : Position(pos);
}

int ZoString::hasChar(char c, unsigned initPos) const noexcept {
    const std::string_view text(c_str(), Size());
    return Position(text, text.find(c, initPos));
}

int ZoString::hasText(const ZoString& text, unsigned initPos) const noexcept {
    return initPos < Size() ? find(text, initPos, true) : -1;
}

int ZoString::rfind(char c, unsigned initPos) const {
    const std::string_view text(c_str(), Size());
    if (text.empty()) return -1;
    const std::size_t start = initPos == NO_POSITION ? text.size() - 1 : initPos;
    ZO_ASSERT_SITE(start < text.size(), "initPos < thisLength", ZoSources::RFIND);
    return Position(text, text.rfind(c, start));
}

int ZoString::findLast(char c, unsigned count) const noexcept {
    const std::string_view text(c_str(), Size());
    if (IsNull() || count >= text.size()) return -1;
    return Position(text, text.rfind(c, text.size() - count - 1));
}

int ZoString::textRFind(const ZoString& text, int initPos, bool caseSensitive) const {
    const std::string_view own(c_str(), Size());
    if (own.empty()) return -1;
    const long long length = static_cast<long long>(own.size());
    const long long end = initPos == -1 ? length - 1 : initPos;
    ZO_ASSERT_SITE(end < length, "initPos < (int)thisLength", ZoSources::TEXT_RFIND);
    const long long start = end - (static_cast<long long>(text.Size()) - 1);
    if (start < 0) return -1;
    if (!caseSensitive) {
        return ZoString(*this).Uppercase().textRFind(ZoString(text).Uppercase(), initPos, true);
    }
    const std::size_t pos =
        own.rfind(std::string_view(text.c_str(), text.Size()), static_cast<std::size_t>(start));
    return pos == std::string_view::npos ? -1 : Position(pos);
}

int ZoString::findDelimiter(ZoString& out, char delimiter, int count) const noexcept {
    const ZoString copy(*this); // `out` may be this string
    std::string_view rest(copy.c_str(), copy.Size());
    ZoString fields;
    int position = -1;
    for (int i = 1; i <= count; ++i) {
        const std::size_t pos = rest.find(delimiter);
        if (pos == std::string_view::npos || pos == 0) {
            out.Assign("", 0);
            return -1;
        }
        fields.Append(rest.data(), pos);
        rest.remove_prefix(pos + 1);
        position = Position(pos);
    }
    out = std::move(fields);
    return position;
}

int ZoString::FirstNumericChar() const noexcept {
    const std::size_t pos = std::strcspn(c_str(), "0123456789");
    return c_str()[pos] == '\0' ? -1 : Position(pos);
}

ZoString ZoString::substr(unsigned first, unsigned last) const noexcept {
    const std::size_t size = Size();
    const std::size_t end = last == NO_POSITION || last >= size ? size : std::size_t{last} + 1;
    if (first > last || first >= end) return ZoString();
    return ZoString(buffer + first, static_cast<unsigned>(end - first));
}

ZoString ZoString::LastChar() const noexcept {
    const std::size_t size = Size();
    return size == 0 ? ZoString() : ZoString(buffer[size - 1]);
}

ZoString ZoString::TrimLeft() const noexcept {
    const char* first = c_str() + std::strspn(c_str(), " ");
    return *first == '\0' ? *this : ZoString(first);
}

ZoString ZoString::TrimRight() const noexcept {
    std::size_t size = Size();
    while (size > 0 && buffer[size - 1] == ' ') --size;
    return size == 0 ? *this : ZoString(buffer, static_cast<unsigned>(size));
}

ZoString ZoString::Trim() const noexcept { return TrimLeft().TrimRight(); }

template <class Keep>
ZoString ZoString::Filtered(Keep keep) const noexcept {
    ZoString result(*this);
    if (result.buffer != nullptr) {
        char* end = std::copy_if(result.buffer, result.buffer + result.Size(), result.buffer, keep);
        *end = '\0';
    }
    return result;
}

ZoString ZoString::RemoveSpace() const noexcept { return Remove(' '); }

ZoString ZoString::Remove(char c) const noexcept {
    return Filtered([c](char own) { return own != c; });
}

/// A copy in which every, or only the first, `find` is replaced.
ZoString ZoString::Substituted(const ZoString& find, const char* replace, bool all) const noexcept {
    const std::string_view needle(find.c_str(), find.Size());
    const std::string_view fresh(replace);
    const std::string_view text(c_str(), Size());
    std::size_t pos = needle.empty() ? std::string_view::npos : text.find(needle);
    if (pos == std::string_view::npos) return *this;

    std::size_t hits = 1;
    if (all) {
        for (std::size_t i = pos; (i = text.find(needle, i + needle.size())) != std::string_view::npos;)
            ++hits;
    }
    auto* result =
        static_cast<char*>(std::malloc(text.size() - hits * needle.size() + hits * fresh.size() + 1));
    if (result == nullptr) return ZoString();
    char* end = result;
    std::size_t done = 0;
    for (; hits > 0; --hits) {
        end = std::copy(text.begin() + static_cast<std::ptrdiff_t>(done),
                        text.begin() + static_cast<std::ptrdiff_t>(pos), end);
        end = std::copy(fresh.begin(), fresh.end(), end);
        done = pos + needle.size();
        pos = text.find(needle, done);
    }
    *std::copy(text.begin() + static_cast<std::ptrdiff_t>(done), text.end(), end) = '\0';

    ZoString owner;
    std::free(std::exchange(owner.buffer, result));
    return owner;
}

ZoString ZoString::Remove(const ZoString& text, bool all) const noexcept {
    return Substituted(text, "", all);
}

ZoString ZoString::ReplaceString(const ZoString& find, const ZoString& replace, bool all) const noexcept {
    ZoString result = Substituted(find, replace.c_str(), all);
    if (result.Size() == 0) return *this;
    return result;
}

ZoString ZoString::ReplaceLastOccurrence(const ZoString& find, const ZoString& replace) const noexcept {
    const int pos = find.Size() == 0 ? -1 : textRFind(find, -1, true);
    if (pos < 0) return *this;
    ZoString result(buffer, static_cast<unsigned>(pos));
    result += replace;
    result += buffer + pos + find.Size();
    return result;
}

ZoString ZoString::RemoveLetters() const noexcept {
    return Filtered([](char c) { return !CharacterInRange(c, 'A', 'z'); });
}

ZoString ZoString::RemoveAccents() const noexcept {
    ZoString result(*this);
    for (char* p = result.buffer; p != nullptr && *p != '\0'; ++p) {
        if (Byte(*p) > 191) *p = PLAIN_LETTERS[Byte(*p) - 192u];
    }
    return result;
}

ZoString ZoString::RemoveTrailingBreaklines() const noexcept {
    std::size_t size = Size();
    while (size > 0 && buffer[size - 1] == '\n') --size;
    return ZoString(buffer, static_cast<unsigned>(size));
}

ZoString ZoString::Inverter() noexcept {
    std::reverse(buffer, buffer + Size());
    return *this;
}

void ZoString::Exchange(char from, char to) noexcept { std::replace(buffer, buffer + Size(), from, to); }

ZoString ZoString::ChangeFloatSeparator(char from, char to) noexcept {
    Exchange(from, to);
    return *this;
}

ZoString ZoString::ChangeLineTerminator(char from, char to) noexcept {
    Exchange(from, to);
    return *this;
}

ZoString ZoString::ChangeBreakLine(char c) noexcept { return ChangeLineTerminator(c, ' '); }

void ZoString::AddBreakLines(unsigned width) noexcept {
    if (width == 0) return;
    const std::string_view text(c_str(), Size());
    for (std::size_t pos = width; pos < text.size();) {
        std::size_t space = text.find_last_of(" \n", pos);
        if (space == std::string_view::npos || text[space] == '\n') space = text.find(' ', pos);
        if (space == std::string_view::npos) return;
        buffer[space] = '\n';
        pos = space + width;
    }
}

ZoString& ZoString::Lowercase() noexcept {
    Platform::LowercaseAnsi(buffer, Size());
    return *this;
}

ZoString& ZoString::Uppercase() noexcept {
    Platform::UppercaseAnsi(buffer, Size());
    return *this;
}

ZoString ZoString::FirstCharToUppercase(const ZoString& s) {
    ZoString result(s);
    Platform::UppercaseAnsi(&result[0], 1);
    const std::size_t size = result.Size();
    for (std::size_t i = 1; i + 1 < size; ++i) {
        if (result.buffer[i - 1] == ' ') Platform::UppercaseAnsi(result.buffer + i, 1);
    }
    return result;
}

ZoString ZoString::ExtractFileName() const noexcept {
    const std::string_view path(c_str(), Size());
    std::size_t dot = path.rfind('.');
    if (dot == std::string_view::npos) return *this;
    const std::size_t separator = path.find_last_of("\\/");
    const std::size_t first = separator == std::string_view::npos ? 0 : separator + 1;
    if (dot < first) dot = path.size();
    return ZoString(path.data() + first, static_cast<unsigned>(dot - first));
}

ZoString ZoString::GetFileExtension() const noexcept {
    const char* dot = std::strrchr(c_str(), '.');
    return dot == nullptr ? ZoString() : ZoString(dot + 1);
}

static ZoString Formatted(const char* format, std::va_list arguments) noexcept {
    char text[FORMAT_SIZE];
    if (format == nullptr || Platform::FormatText(text, sizeof text, format, arguments) < 0)
        return ZoString();
    return ZoString(text);
}

ZoString ZoString::FormatString(const char* format, ...) noexcept {
    std::va_list arguments;
    va_start(arguments, format);
    ZoString result = Formatted(format, arguments);
    va_end(arguments);
    return result;
}

ZoString ZoString::FormatWithoutArguments(const char* format) noexcept {
    char text[FORMAT_SIZE];
    char* end = text;
    for (const char* p = format; *p != '\0' && end != text + sizeof text - 1; ++p) {
        const bool directive = p[0] == '%' && (p[1] == '%' || p[1] == 'n');
        if (directive && *++p == 'n') continue;
        *end++ = *p;
    }
    return ZoString(text, static_cast<unsigned>(end - text));
}

ZoString ZoString::FormatUnchecked(const char* format, ...) noexcept {
    std::va_list arguments;
    va_start(arguments, format);
    ZoString result = Formatted(format, arguments);
    va_end(arguments);
    return result;
}

bool ZoString::IsNull() const noexcept { return c_str()[std::strspn(c_str(), " ")] == '\0'; }

bool ZoString::HasNonWhitespaceChar() const noexcept { return !IsNull(); }

bool ZoString::HasNumericChar() const noexcept { return FirstNumericChar() >= 0; }

bool ZoString::HasOnlyNumbers() const noexcept { return c_str()[std::strspn(c_str(), "0123456789")] == '\0'; }

bool ZoString::IsNumeric() const noexcept {
    const char* p = c_str();
    if (*p == '-') ++p;
    std::size_t digits = std::strspn(p, "0123456789");
    p += digits;
    if (digits > 0 && (*p == '.' || *p == ',')) {
        ++p;
        digits = std::strspn(p, "0123456789");
        p += digits;
    }
    return digits > 0 && *p == '\0';
}

bool ZoString::IsValidFloat() const noexcept {
    const char* p = c_str();
    if (*p == '\0') return false;
    if (*p == '-') ++p;
    p += std::strspn(p, "0123456789");
    if (*p == '.') ++p;
    return p[std::strspn(p, "0123456789")] == '\0';
}

bool ZoString::HasUnderlineChars() const noexcept { return HasInvalidNameChars("()gjpqy\xC7\xE7"); }

bool ZoString::HasInvalidNameChars() const noexcept {
    return std::strpbrk(c_str(), InvalidNameChars()) != nullptr;
}

bool ZoString::HasInvalidNameChars(const ZoString& set) const noexcept {
    return std::strpbrk(c_str(), set.c_str()) != nullptr;
}

ZoString ZoString::RemoveInvalidChars() const noexcept { return RemoveInvalidChars(InvalidNameChars()); }

ZoString ZoString::RemoveInvalidChars(const ZoString& set) const noexcept {
    return Filtered([&](char c) { return std::strchr(set.c_str(), c) == nullptr; });
}

ZoString ZoString::ReplaceInvalidChars(char with) const noexcept {
    ZoString result(*this);
    for (const char* c = InvalidNameChars(); *c != '\0'; ++c) result = result.ReplaceString(*c, with, true);
    return result;
}

const char* ZoString::InvalidNameChars() noexcept { return "\\/<>?:*|\""; }

bool ZoString::CharacterInRange(char c, char low, char high) noexcept {
    return Byte(low) <= Byte(c) && Byte(c) <= Byte(high);
}

} // namespace ZoPrimitives
