#pragma once

#include "Platform/Platform.h"

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace ZoPrimitives::Testing {

/// Puts services in place for as long as it lives.
class InstalledServices {
public:
    explicit InstalledServices(Platform::Services& services) : previous(Platform::Install(&services)) {}
    InstalledServices(const InstalledServices&) = delete;
    InstalledServices& operator=(const InstalledServices&) = delete;
    ~InstalledServices() { Platform::Install(previous); }

private:
    Platform::Services* previous;
};

/// The system's services with failures on order, and a record of the calls made. Installed while it lives.
///
///     FaultyServices services;
///     services.Fail("WriteFile", 2, Platform::ErrorDiskFull, FaultyServices::Half);
///     ... save to "plan.zo" with a backup ...
///     EXPECT_THAT(services.Calls(), ElementsAre("TemporaryFileName plan.zo", "OpenFile <temporary>", ...));
class FaultyServices : public Platform::Services {
public:
    /// What a failing WriteFile, ReadFile or CopyWholeFile has done to the data before it fails.
    enum Effect { Nothing, Half };

    /// The `nth` call (from 1, counted from now on; 0: every call) of `operation` fails with `error`. For
    /// FileExists and NetworkFile failing is the answer "no".
    void Fail(const std::string& operation, int nth, unsigned long error, Effect effect = Nothing) {
        faults.push_back({operation, nth == 0 ? 0 : counts[operation] + nth, error, effect});
    }

    /// What NetworkFile answers; not set: what the system says.
    std::optional<bool> network;
    /// What FileExists says of `readOnly` for an existing file; not set: what the system says.
    std::optional<bool> readOnly;
    /// What FileSize says; not set: what the system says.
    std::optional<unsigned long long> claimedSize;
    /// Called before each operation, with the text that it leaves in Calls().
    std::function<void(const std::string& call)> onCall;
    /// Called instead of waiting.
    std::function<void(unsigned milliseconds)> onWait;
    /// The texts of message boxes; none is shown.
    std::vector<std::string> messages;

    /// The calls in order, as "Operation name" or "CopyWholeFile from to". Names are without their folder, a
    /// name that TemporaryFileName gave is "<temporary>". A handle stands for the name that it was opened by.
    const std::vector<std::string>& Calls() const { return calls; }

    int Count(const std::string& operation) const {
        const auto found = counts.find(operation);
        return found == counts.end() ? 0 : found->second;
    }

    /// Handles that were opened and not closed.
    std::size_t OpenHandles() const { return handles.size(); }

    Platform::FileHandle OpenFile(const char* path, Platform::Access access, Platform::Share share,
                                  Platform::Creation creation) override {
        if (Fails("OpenFile", Label(path))) return nullptr;
        const Platform::FileHandle file = Services::OpenFile(path, access, share, creation);
        if (file != nullptr) handles[file] = Label(path);
        return file;
    }
    /// A close that fails has closed, as the system's.
    bool CloseFile(Platform::FileHandle file) override {
        const Fault* fault = Meet("CloseFile", Label(file));
        handles.erase(file);
        const bool closed = Services::CloseFile(file);
        if (fault != nullptr) Platform::SetLastError(fault->error);
        return closed && fault == nullptr;
    }
    bool ReadFile(Platform::FileHandle file, void* data, std::size_t size, std::size_t& done) override {
        done = 0;
        return !Fails("ReadFile", Label(file), [&] { Services::ReadFile(file, data, size / 2, done); }) &&
               Services::ReadFile(file, data, size, done);
    }
    bool WriteFile(Platform::FileHandle file, const void* data, std::size_t size) override {
        return !Fails("WriteFile", Label(file), [&] { Services::WriteFile(file, data, size / 2); }) &&
               Services::WriteFile(file, data, size);
    }
    bool SeekFile(Platform::FileHandle file, long long offset, Platform::Origin origin,
                  unsigned long long& position) override {
        return !Fails("SeekFile", Label(file)) && Services::SeekFile(file, offset, origin, position);
    }
    bool FileSize(Platform::FileHandle file, unsigned long long& size) override {
        if (Fails("FileSize", Label(file)) || !Services::FileSize(file, size)) return false;
        size = claimedSize.value_or(size);
        return true;
    }
    bool TruncateFile(Platform::FileHandle file, unsigned long long size) override {
        return !Fails("TruncateFile", Label(file)) && Services::TruncateFile(file, size);
    }
    bool SynchroniseFile(Platform::FileHandle file) override {
        return !Fails("SynchroniseFile", Label(file)) && Services::SynchroniseFile(file);
    }
    bool CopyWholeFile(const char* from, const char* to) override {
        return !Fails("CopyWholeFile", Label(from) + " " + Label(to), [&] { CopyHalf(from, to); }) &&
               Services::CopyWholeFile(from, to);
    }
    bool MoveWholeFile(const char* from, const char* to) override {
        return !Fails("MoveWholeFile", Label(from) + " " + Label(to)) && Services::MoveWholeFile(from, to);
    }
    bool DeleteWholeFile(const char* path) override {
        return !Fails("DeleteWholeFile", Label(path)) && Services::DeleteWholeFile(path);
    }
    bool FileExists(const char* path, bool* isReadOnly) override {
        if (Fails("FileExists", Label(path))) return false;
        const bool exists = Services::FileExists(path, isReadOnly);
        if (exists && isReadOnly != nullptr && readOnly) *isReadOnly = *readOnly;
        return exists;
    }
    bool NetworkFile(const char* path) override {
        return !Fails("NetworkFile", Label(path)) && (network ? *network : Services::NetworkFile(path));
    }
    std::string TemporaryFileName(const char* target) override {
        if (Fails("TemporaryFileName", Label(target))) return "";
        return temporaries.emplace_back(Services::TemporaryFileName(target));
    }
    void Wait(unsigned milliseconds) override {
        ++counts["Wait"];
        if (onWait) onWait(milliseconds);
    }
    void ShowMessageBox(const char* text) override {
        Meet("ShowMessageBox", "");
        messages.emplace_back(text);
    }

private:
    struct Fault {
        std::string operation;
        int nth;
        unsigned long error;
        Effect effect;
    };

    // Records the call; the fault that it meets, if any.
    const Fault* Meet(const std::string& operation, const std::string& label) {
        const std::string call = label.empty() ? operation : operation + " " + label;
        if (onCall) onCall(call);
        calls.push_back(call);
        const int number = ++counts[operation];
        for (const Fault& fault : faults)
            if (fault.operation == operation && (fault.nth == 0 || fault.nth == number)) return &fault;
        return nullptr;
    }

    // Whether the call fails; having done, with the effect `Half`, half of its work.
    bool Fails(const std::string& operation, const std::string& label,
               const std::function<void()>& half = {}) {
        const Fault* fault = Meet(operation, label);
        if (fault == nullptr) return false;
        if (fault->effect == Half && half) half();
        Platform::SetLastError(fault->error);
        return true;
    }

    std::string Label(const char* path) const {
        if (path == nullptr) return "<null>";
        for (const std::string& temporary : temporaries)
            if (temporary == path) return "<temporary>";
        return std::filesystem::path(path).filename().string();
    }
    std::string Label(Platform::FileHandle file) const {
        const auto found = handles.find(file);
        return found == handles.end() ? "<foreign>" : found->second;
    }

    static void CopyHalf(const char* from, const char* to) {
        std::ifstream source(from, std::ios::binary);
        const std::string bytes(std::istreambuf_iterator<char>(source), {});
        std::ofstream(to, std::ios::binary | std::ios::trunc)
            .write(bytes.data(), static_cast<std::streamsize>(bytes.size() / 2));
    }

    std::vector<Fault> faults;
    std::vector<std::string> calls;
    std::map<std::string, int> counts;
    std::vector<std::string> temporaries;
    std::map<Platform::FileHandle, std::string> handles;
    InstalledServices installed{*this};
};

} // namespace ZoPrimitives::Testing
