#include "ZoPrimitives/CRC32.h"

#include "Persistence/checksums/Crc32Kernel.h"
#include "Platform/Platform.h"
#include "ZoPrimitives/TZoPath.h"
#include "ZoPrimitives/UserText.h"
#include "ZoPrimitives/XStream.h"

#include <cstddef>
#include <vector>

namespace ZoPrimitives {

namespace {

constexpr std::size_t largestBlock = 256 * 1024;

[[noreturn]] void ThrowUnreadable() {
    throw XReadStream(Translated("Não foi possível ler o arquivo"), "CRC32::generateCRCFromFile");
}

class InputFile {
public:
    explicit InputFile(const TZoPath& path)
        : handle(Platform::Current().OpenFile(path.Utf8().c_str(), Platform::Access::Read,
                                              Platform::Share::ReadWrite, Platform::Creation::OpenExisting)) {
        if (handle == nullptr) ThrowUnreadable();
    }
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;
    ~InputFile() { Platform::Current().CloseFile(handle); }

    unsigned long long Size() const {
        unsigned long long size = 0;
        if (!Platform::Current().FileSize(handle, size)) ThrowUnreadable();
        return size;
    }
    std::size_t Read(unsigned char* data, std::size_t size) {
        std::size_t done = 0;
        if (!Platform::Current().ReadFile(handle, data, size, done)) ThrowUnreadable();
        return done;
    }

private:
    Platform::FileHandle handle;
};

} // namespace

void CRC32::update(const unsigned char* data, unsigned size) noexcept {
    if (data != nullptr) reg = Crc32Update(reg, data, size);
}

std::uint32_t CRC32::generateCRCFromFile(const std::string& path) {
    const unsigned long long size = getFileSize(path);
    InputFile file(path);
    std::vector<unsigned char> block(size < largestBlock ? static_cast<std::size_t>(size) + 1 : largestBlock);
    std::uint32_t sum = 0xFFFFFFFF;
    unsigned long long done = 0;
    while (const std::size_t read = file.Read(block.data(), block.size())) {
        sum = Crc32Update(sum, block.data(), read);
        done += read;
    }
    if (done < size) ThrowUnreadable();
    reg = sum;
    return getUint32Value();
}

unsigned long long CRC32::getFileSize(std::string path) { return InputFile(path).Size(); }

} // namespace ZoPrimitives
