#include "ZoPrimitives/Checksum.h"

#include <bit>
#include <cstddef>
#include <cstring>
#include <random>

namespace ZoPrimitives {

namespace {

class Fnv1a {
public:
    void Byte(unsigned char byte) { value = (value ^ byte) * 0x100000001B3; }
    void LittleEndian(std::uint64_t bits, unsigned bytes) {
        for (unsigned i = 0; i < bytes; ++i) Byte(static_cast<unsigned char>(bits >> (8 * i)));
    }
    void Text(const char* text) {
        for (; *text != 0; ++text) Byte(static_cast<unsigned char>(*text));
    }
    TChecksumType Value() const { return value; }

private:
    std::uint64_t value = 0xCBF29CE484222325;
};

} // namespace

TChecksumType::TChecksumType(const TChecksumType&) noexcept = default;
TChecksumType& TChecksumType::operator=(const TChecksumType&) noexcept = default;
TChecksumType::~TChecksumType() = default;

bool TChecksumType::operator==(const TChecksumType& other) const { return value == other.value; }
bool TChecksumType::operator!=(const TChecksumType& other) const { return !(*this == other); }

TChecksumType CreateChecksum(int value) {
    Fnv1a hash;
    hash.LittleEndian(static_cast<std::uint32_t>(value), 4);
    return hash.Value();
}

TChecksumType CreateChecksum(bool value) {
    Fnv1a hash;
    hash.Byte(value ? 1 : 0);
    return hash.Value();
}

TChecksumType CreateChecksum(double value) {
    Fnv1a hash;
    hash.LittleEndian(value == 0 ? 0 : std::bit_cast<std::uint64_t>(value), 8);
    return hash.Value();
}

TChecksumType CreateChecksum(const ZoString& text) { return CreateChecksum(text.c_str()); }

TChecksumType CreateChecksum(const char* text) {
    Fnv1a hash;
    if (text != nullptr) hash.Text(text);
    return hash.Value();
}

TChecksumType GetChecksumSeed() { return 0x811C9DC5; }

TChecksumType CreateRandomChecksum() {
    std::random_device device;
    std::mt19937 generator(device());
    return (generator() >> 1) + std::uint64_t{1};
}

TCombinedChecksum::TCombinedChecksum(TChecksumType seed) : checksum(seed) {}
TCombinedChecksum::TCombinedChecksum(const TCombinedChecksum&) = default;
TCombinedChecksum& TCombinedChecksum::operator=(const TCombinedChecksum&) = default;
TCombinedChecksum::~TCombinedChecksum() = default;

void TCombinedChecksum::Combine(const TChecksumType& other) {
    checksum.SetValue((checksum.GetValue() << 1) ^ other.GetValue());
}

} // namespace ZoPrimitives
