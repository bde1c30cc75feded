#pragma once

#include "ZoPrimitives/Export.h"
#include "ZoPrimitives/ZoSources.h"

#include <typeinfo>

namespace ZoPrimitives {

/// Handler of failed assertions. It may return; the assertion throws anyway.
class ZO_API IAssertFunctor {
public:
    virtual ~IAssertFunctor();
    virtual void operator()(const char* expression, const char* message, const char* file, int line) = 0;
};

/// The library's own handler; calls `HandleAsserting`.
class ZO_API ZoAssertFunctor : public IAssertFunctor {
public:
    ZoAssertFunctor();
    ZoAssertFunctor(const ZoAssertFunctor&);
    ZoAssertFunctor& operator=(const ZoAssertFunctor&);
    ~ZoAssertFunctor() override;
    void operator()(const char* expression, const char* message, const char* file, int line) override;
};

/// What every failed assertion throws.
class ZO_API XZoAssert {
public:
    /// Keeps the pointer `message` without copying the text: pass a literal or the library's static message
    /// buffer.
    explicit XZoAssert(const char* message) noexcept;
    XZoAssert(const XZoAssert&) noexcept;
    XZoAssert(XZoAssert&&) noexcept;
    XZoAssert& operator=(const XZoAssert&) noexcept;
    XZoAssert& operator=(XZoAssert&&) noexcept;
    virtual ~XZoAssert();

    const char* Message() const noexcept { return message; }

    /// Whether `HandleAsserting` and `Expect` show a message box. Process-wide, unguarded, true by default.
    static bool ShowMessageBox() noexcept;
    static void ShowMessageBox(bool show) noexcept;

private:
    const char* message;
};

/// What the library's own assertions throw: says which one failed. The texts are copies, cut to their room.
class ZO_API XZoAssertFailed : public XZoAssert {
public:
    /// `text` as in `XZoAssert`; the others are copied, null for "".
    XZoAssertFailed(const char* text, const char* expression, const char* hint, const char* file,
                    int line) noexcept;
    XZoAssertFailed(const XZoAssertFailed&) noexcept;
    XZoAssertFailed& operator=(const XZoAssertFailed&) noexcept;
    ~XZoAssertFailed() override;

    /// The condition, often with a hint in it.
    const char* Expression() const noexcept { return expression; }
    /// The message that came with it, often "".
    const char* Hint() const noexcept { return hint; }
    /// For the developer: the classes, fields and values concerned, and what to do; often "".
    const char* Advice() const noexcept { return advice; }
    /// Sets the advice to a copy of `text`, cut to its room.
    void Advise(const char* text) noexcept;
    /// Relative to the source root, without extension.
    const char* File() const noexcept { return file; }
    int Line() const noexcept { return line; }

private:
    char expression[512];
    char hint[1024];
    char advice[512];
    char file[256];
    int line;
};

/// The entry point of every assertion: calls the installed functor, if any, then throws `XZoAssertFailed`.
/// `file` is relative to the source root and has no extension; the texts must live only during the call.
[[noreturn]] ZO_API void AssertWithFunctor(const char* expression, const char* message, const char* file,
                                           int line);

/// The advice that comes with the assertion that is failing on this thread, for a functor; often "".
ZO_API const char* ZoAssertAdvice() noexcept;

/// Fails the assertion `condition` because `index` is none of the `count` indices, from 1, of a container.
[[noreturn]] ZO_API void ZoFailIndex(const char* condition, const ZoSite& site, unsigned long long index,
                                     unsigned long long count, const std::type_info& container);
/// The same for a position, from 0, in a text.
[[noreturn]] ZO_API void ZoFailPosition(const char* condition, const ZoSite& site,
                                        unsigned long long position, unsigned long long length);
/// Fails the assertion "object" because a `pointer` or `crossRef` is null. `target`: the
/// type of its objects, or of a plain pointer to them.
[[noreturn]] ZO_API void ZoFailNull(int line, const char* holder, const std::type_info& target);

/// Composes the text, shows it if enabled, and throws `XZoAssertFailed`: with "CrashRpt" if a box was shown,
/// otherwise with the composed text (in a static buffer, until the next assertion).
[[noreturn]] ZO_API void HandleAsserting(const char* expression, const char* message, const char* file,
                                         int line);

/// A soft check: composes and shows the text as `HandleAsserting` does, then returns.
ZO_API void Expect(const char* expression, const char* message, const char* file, int line);

/// Installs `functor` (null for none). The library owns it and deletes the one it replaces; installing the
/// same functor again changes nothing. Unguarded: meant for start-up.
ZO_API void SetAssertionFunctor(IAssertFunctor* functor);

} // namespace ZoPrimitives

/// Fails unless the condition holds. `text` identifies the check in crash reports.
#define ZO_ASSERT_AT(condition, text, source, line)                                                          \
    ((condition) ? static_cast<void>(0) : ::ZoPrimitives::AssertWithFunctor(text, "", source, line))
#define ZO_ASSERT_SITE(condition, text, site) ZO_ASSERT_AT(condition, text, (site).source, (site).line)
#define ZO_ASSERT(condition, text, source) ZO_ASSERT_AT(condition, text, source, __LINE__)
