#pragma once

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace ZoPrimitives::Testing {

/// A folder of its own under the system's folder for temporary files; it goes with everything in it.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::random_device random;
        do folder = std::filesystem::temp_directory_path() / ("zo-test-" + std::to_string(random()));
        while (!std::filesystem::create_directory(folder));
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        for (const auto& entry : std::filesystem::directory_iterator(folder, ignored))
            if (!entry.is_symlink(ignored))
                std::filesystem::permissions(entry, std::filesystem::perms::owner_all,
                                             std::filesystem::perm_options::add, ignored);
        std::filesystem::remove_all(folder, ignored);
    }

    /// The path of `name` in the folder; the folder itself for an empty name. UTF-8 on Windows.
    std::string Path(const std::string& name = "") const {
        return name.empty() ? folder.string() : (folder / name).string();
    }

    void Write(const std::string& name, const std::string& bytes) const {
        std::ofstream file(folder / name, std::ios::binary | std::ios::trunc);
        if (!file.write(bytes.data(), static_cast<std::streamsize>(bytes.size())).flush())
            throw std::runtime_error("cannot write " + Path(name));
    }

    std::string Read(const std::string& name) const {
        std::ifstream file(folder / name, std::ios::binary);
        if (!file) throw std::runtime_error("cannot read " + Path(name));
        return std::string(std::istreambuf_iterator<char>(file), {});
    }

    bool Has(const std::string& name) const { return std::filesystem::exists(folder / name); }

    void MakeReadOnly(const std::string& name) const {
        using std::filesystem::perms;
        std::filesystem::permissions(folder / name,
                                     perms::owner_read | perms::group_read | perms::others_read);
    }

    unsigned Permissions(const std::string& name) const {
        return static_cast<unsigned>(std::filesystem::status(folder / name).permissions());
    }

    /// Removes every file.
    void Clear() const {
        for (const std::string& name : Names()) std::filesystem::remove(folder / name);
    }

    /// The names in the folder, sorted.
    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

private:
    std::filesystem::path folder;
};

} // namespace ZoPrimitives::Testing
