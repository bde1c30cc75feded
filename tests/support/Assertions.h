#pragma once

#include "ZoPrimitives/AnsiLiteral.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoAssert.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

/// A failed assertion as its handler sees it; empty when none failed.
struct FailedAssertion {
    std::string expression;
    std::string source;
    int line = 0;
    std::string message{};

    bool operator==(const FailedAssertion&) const = default;
    friend std::ostream& operator<<(std::ostream& out, const FailedAssertion& failed) {
        return out << '"' << failed.expression << "\" in " << failed.source << ':' << failed.line << ' '
                   << failed.message;
    }
};

/// Runs `operation` and tells which assertion ended it.
template <class Operation>
FailedAssertion AssertionOf(Operation operation) {
    struct Recorder : ZoPrimitives::IAssertFunctor {
        explicit Recorder(FailedAssertion& last) : failed(last) {}
        void operator()(const char* expression, const char* message, const char* file, int line) override {
            failed = {expression, file, line, message};
        }
        FailedAssertion& failed;
    };
    FailedAssertion failed;
    ZoPrimitives::SetAssertionFunctor(new Recorder(failed));
    try {
        operation();
    } catch (const ZoPrimitives::XZoAssert& e) {
        EXPECT_STREQ(e.Message(), "AssertWithFunctor");
        EXPECT_NE(failed.line, 0) << "thrown without the handler";
    }
    ZoPrimitives::SetAssertionFunctor(nullptr);
    return failed;
}

/// Which exception of a stream an operation ended with: "message @ location", "full @ location" where there
/// is no room left; "" for none.
template <class Operation>
std::string FailureOf(Operation operation) {
    using namespace ZoPrimitives;
    try {
        operation();
    } catch (const XWriteStreamOutOfSpace& e) {
        EXPECT_EQ(e.Message(), "Espa\xE7o em disco insuficiente.");
        return std::string("full @ ") + e.Location().c_str();
    } catch (const XStream& e) {
        return std::string(e.Message().c_str()) + " @ " + e.Location().c_str();
    }
    return "";
}
