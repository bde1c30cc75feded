#include "ZoPrimitives/ZoAssert.h"

#include "Platform/Platform.h"
#include "ZoPrimitives/Advice.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <new>
#include <string>
#include <utility>

namespace ZoPrimitives {

namespace {

constexpr std::size_t MESSAGE_SIZE = 2048;
constexpr std::size_t BOX_SIZE = 512;
constexpr std::size_t ADVICE_SIZE = 512;

IAssertFunctor* installed = nullptr;
bool showMessageBox = true;
char assertionMessage[MESSAGE_SIZE];
char expectationMessage[MESSAGE_SIZE];

const struct DeleteAtUnload {
    ~DeleteAtUnload() { SetAssertionFunctor(nullptr); }
} deleteAtUnload;

template <std::size_t SIZE>
void CopyText(char (&to)[SIZE], const char* from) noexcept {
    const std::size_t size = from == nullptr ? 0 : std::min(std::strlen(from), SIZE - 1);
    if (size != 0) std::memcpy(to, from, size);
    to[size] = '\0';
}

/// Advice for the assertion that is failing on this thread.
thread_local char pendingAdvice[ADVICE_SIZE];

struct EndAdvice {
    ~EndAdvice() { *pendingAdvice = '\0'; }
};

/// A type's name as a developer writes it; "" if memory is short.
std::string NameOf(const std::type_info& type) noexcept {
    try {
        std::string name = Platform::TypeName(type);
        const std::string space = "ZoPrimitives::";
        for (std::size_t at = 0; (at = name.find(space, at)) != std::string::npos;)
            name.erase(at, space.size());
        return name;
    } catch (const std::bad_alloc&) {
        return {};
    }
}

/// Composes the text into `buffer`, truncated to its size, and shows it if boxes are enabled; returns whether
/// it did.
bool ComposeAndShow(char (&buffer)[MESSAGE_SIZE], const char* expression, const char* message,
                    const char* file, int line) {
    if (expression == nullptr) expression = "";
    if (file == nullptr) file = "";
    // The arguments may be the text of an earlier assertion, which is in `buffer`.
    char text[MESSAGE_SIZE] = {};
    if (message == nullptr || *message == '\0') {
        std::snprintf(text, sizeof text, "Error: ( %s )", expression);
    } else {
        std::snprintf(text, sizeof text, "FAILED: %s\nError: ( %s )", message, expression);
    }
    std::memcpy(buffer, text, sizeof buffer);
    if (!showMessageBox) return false;
    char box[BOX_SIZE] = {};
    std::snprintf(box, sizeof box, "Assertion failed!\n\nFile: %s\nLine: %d\n\nExpression: %s", file, line,
                  buffer);
    Platform::Current().ShowMessageBox(box);
    return true;
}

} // namespace

IAssertFunctor::~IAssertFunctor() = default;

ZoAssertFunctor::ZoAssertFunctor() = default;
ZoAssertFunctor::ZoAssertFunctor(const ZoAssertFunctor&) = default;
ZoAssertFunctor& ZoAssertFunctor::operator=(const ZoAssertFunctor&) = default;
ZoAssertFunctor::~ZoAssertFunctor() = default;

void ZoAssertFunctor::operator()(const char* expression, const char* message, const char* file, int line) {
    HandleAsserting(expression, message, file, line);
}

XZoAssert::XZoAssert(const char* text) noexcept : message(text) {}
XZoAssert::XZoAssert(const XZoAssert&) noexcept = default;
XZoAssert::XZoAssert(XZoAssert&&) noexcept = default;
XZoAssert& XZoAssert::operator=(const XZoAssert&) noexcept = default;
XZoAssert& XZoAssert::operator=(XZoAssert&&) noexcept = default;
XZoAssert::~XZoAssert() = default;

XZoAssertFailed::XZoAssertFailed(const char* text, const char* itsExpression, const char* itsHint,
                                 const char* itsFile, int itsLine) noexcept
    : XZoAssert(text), line(itsLine) {
    CopyText(expression, itsExpression);
    CopyText(hint, itsHint);
    CopyText(advice, pendingAdvice);
    CopyText(file, itsFile);
}
XZoAssertFailed::XZoAssertFailed(const XZoAssertFailed&) noexcept = default;
XZoAssertFailed& XZoAssertFailed::operator=(const XZoAssertFailed&) noexcept = default;
XZoAssertFailed::~XZoAssertFailed() = default;

void XZoAssertFailed::Advise(const char* text) noexcept { CopyText(advice, text); }

bool XZoAssert::ShowMessageBox() noexcept { return showMessageBox; }
void XZoAssert::ShowMessageBox(bool show) noexcept { showMessageBox = show; }

void AssertWithFunctor(const char* expression, const char* message, const char* file, int line) {
    const EndAdvice end;
    if (installed != nullptr) (*installed)(expression, message, file, line);
    throw XZoAssertFailed("AssertWithFunctor", expression, message, file, line);
}

const char* ZoAssertAdvice() noexcept { return pendingAdvice; }

void NoteAdvice(const char* format, ...) noexcept {
    va_list values;
    va_start(values, format);
    std::vsnprintf(pendingAdvice, ADVICE_SIZE, format, values);
    va_end(values);
}

void ZoFailIndex(const char* condition, const ZoSite& site, unsigned long long index,
                 unsigned long long count, const std::type_info& container) {
    NoteAdvice("index %llu in a %s of %llu item%s: indices count from 1", index, NameOf(container).c_str(),
               count, count == 1 ? "" : "s");
    AssertWithFunctor(condition, "", site.source, site.line);
}

void ZoFailPosition(const char* condition, const ZoSite& site, unsigned long long position,
                    unsigned long long length) {
    NoteAdvice("position %llu in a text of %llu character%s: positions count from 0", position, length,
               length == 1 ? "" : "s");
    AssertWithFunctor(condition, "", site.source, site.line);
}

void ZoFailNull(int line, const char* holder, const std::type_info& target) {
    std::string name = NameOf(target);
    while (!name.empty() && (name.back() == '*' || name.back() == ' ')) name.pop_back();
    NoteAdvice("a %s<%s> without an object was used: give it one, or test it first", holder, name.c_str());
    AssertWithFunctor("object", "", ZoSources::POINTER, line);
}

void HandleAsserting(const char* expression, const char* message, const char* file, int line) {
    const bool shown = ComposeAndShow(assertionMessage, expression, message, file, line);
    throw XZoAssertFailed(shown ? "CrashRpt" : assertionMessage, expression, message, file, line);
}

void Expect(const char* expression, const char* message, const char* file, int line) {
    ComposeAndShow(expectationMessage, expression, message, file, line);
}

void SetAssertionFunctor(IAssertFunctor* functor) {
    if (functor != installed) delete std::exchange(installed, functor);
}

} // namespace ZoPrimitives
