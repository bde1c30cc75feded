#pragma once

#include "ZoPrimitives/pointer.h"

#include <utility>

namespace ZoPrimitives {

/// Is told how far saving or opening has come, and may cancel it.
///
/// It is called on the thread that saves or opens, at most every few milliseconds. What it throws ends the
/// operation as cancelling does.
class ZO_API TZoProgress : public ZoObject {
public:
    ~TZoProgress() override;
    /// `done` of `all`, in units of the operation's own; `all` is 0 while it is not known. False cancels: the
    /// operation throws `XCancelled`.
    virtual bool GoesOn(unsigned long long done, unsigned long long all) = 0;
};

/// A callable, such as a lambda, that takes `done` and `all` and returns whether to go on.
template <class Callable>
class TZoProgressCall final : public TZoProgress {
public:
    explicit TZoProgressCall(Callable callable) : call(std::move(callable)) {}
    bool GoesOn(unsigned long long done, unsigned long long all) override { return call(done, all); }

private:
    Callable call;
};

template <class Callable>
pointer<TZoProgress> ZoProgress(Callable callable) {
    return pointer<TZoProgress>(new TZoProgressCall<Callable>(std::move(callable)));
}

} // namespace ZoPrimitives
