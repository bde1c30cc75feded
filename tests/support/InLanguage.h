#pragma once

#include "ZoPrimitives/ZoLanguage.h"

namespace ZoPrimitives::Testing {

/// The language during its lifetime.
class InLanguage {
public:
    explicit InLanguage(const char* name) : before(ZoLanguage()) { ZoSetLanguage(name); }
    InLanguage(const InLanguage&) = delete;
    InLanguage& operator=(const InLanguage&) = delete;
    ~InLanguage() { ZoSetLanguage(before); }

private:
    const char* before;
};

inline constexpr const char* LANGUAGES[] = {"pt-BR", "en-US", "es-MX"};

} // namespace ZoPrimitives::Testing
