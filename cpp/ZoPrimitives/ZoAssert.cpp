#include "ZoPrimitives/ZoAssert.h"

#include "Platform/Platform.h"

#include <cstdio>
#include <memory>

namespace ZoPrimitives {

namespace {

constexpr std::size_t MESSAGE_SIZE = 2048;
constexpr std::size_t BOX_SIZE = 512;

std::unique_ptr<IAssertFunctor> installed;
bool showMessageBox = true;
char assertionMessage[MESSAGE_SIZE];
char expectationMessage[MESSAGE_SIZE];

/// Composes the text into `buffer`, cut to its size, and shows it when boxes are enabled.
void ComposeAndShow(char (&buffer)[MESSAGE_SIZE], const char* expression, const char* message, const char* file,
                    int line) {
    if (message == nullptr || *message == '\0') {
        std::snprintf(buffer, sizeof buffer, "Error: ( %s )", expression);
    } else {
        std::snprintf(buffer, sizeof buffer, "FAILED: %s\nError: ( %s )", message, expression);
    }
    if (showMessageBox) {
        char box[BOX_SIZE] = {};
        std::snprintf(box, sizeof box, "Assertion failed!\n\nFile: %s\nLine: %d\n\nExpression: %s", file, line,
                      buffer);
        Platform::Current().ShowMessageBox(box);
    }
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

bool XZoAssert::ShowMessageBox() noexcept { return showMessageBox; }
void XZoAssert::ShowMessageBox(bool show) noexcept { showMessageBox = show; }

void AssertWithFunctor(const char* expression, const char* message, const char* file, int line) {
    if (installed) (*installed)(expression, message, file, line);
    throw XZoAssert("AssertWithFunctor");
}

void HandleAsserting(const char* expression, const char* message, const char* file, int line) {
    ComposeAndShow(assertionMessage, expression, message, file, line);
    throw XZoAssert(showMessageBox ? "CrashRpt" : assertionMessage);
}

void Expect(const char* expression, const char* message, const char* file, int line) {
    ComposeAndShow(expectationMessage, expression, message, file, line);
}

void SetAssertionFunctor(IAssertFunctor* functor) {
    if (functor != installed.get()) installed.reset(functor);
}

} // namespace ZoPrimitives
