#pragma once

#include "Platform/Platform.h"
#include "support/FaultyServices.h"

#include <cstddef>
#include <optional>
#include <string>

namespace ZoPrimitives::Testing {

/// A clipboard in memory with one format, installed while it lives; it lends a copy that ends with the
/// clipboard's being closed.
class FakeClipboard : public Platform::Services {
public:
    FakeClipboard() = default;
    explicit FakeClipboard(std::string bytes) : block(std::move(bytes)) {}

    std::optional<std::string> block; ///< none: nothing in the format
    std::size_t padding = 0;          ///< zeros behind every block lent
    unsigned long openError = 0;      ///< why it cannot be opened
    unsigned long setError = 0;       ///< why it takes no data
    bool open = false;
    std::string log; ///< 'o' opened, 'g' lent, 's' set, 'c' closed, 'b' a box shown

    bool OpenClipboard() override {
        if (openError != 0 || open) {
            Platform::SetLastError(openError != 0 ? openError : Platform::ErrorSharingViolation);
            return false;
        }
        open = true;
        log += 'o';
        return true;
    }
    void CloseClipboard() override {
        open = false;
        lent.clear();
        lent.shrink_to_fit();
        log += 'c';
    }
    const void* ClipboardData(unsigned, std::size_t& size) override {
        log += 'g';
        size = 0;
        if (!open || !block) return nullptr;
        lent = *block + std::string(padding, '\0');
        size = lent.size();
        return lent.data();
    }
    bool SetClipboardData(unsigned, const void* data, std::size_t size) override {
        log += 's';
        if (!open || setError != 0) {
            Platform::SetLastError(setError != 0 ? setError : Platform::ErrorClipboardNotOpen);
            return false;
        }
        block = std::string(static_cast<const char*>(data), size);
        return true;
    }
    void ShowMessageBox(const char*) override { log += 'b'; }

private:
    std::string lent;
    InstalledServices installed{*this};
};

} // namespace ZoPrimitives::Testing
