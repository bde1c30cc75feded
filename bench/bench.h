#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace bench {

/// The bytes of a model saved to memory, with their owner.
class Bytes {
public:
    Bytes() = default;
    /// Takes over a block on the C heap.
    Bytes(unsigned char* block, std::size_t count);
    Bytes(const unsigned char* block, std::size_t count, std::shared_ptr<const void> owner)
        : block(block), count(count), owner(std::move(owner)) {}

    const unsigned char* data() const { return block; }
    std::size_t size() const { return count; }
    void Store(const std::string& path) const;
    static Bytes Load(const std::string& path);

private:
    const unsigned char* block = nullptr;
    std::size_t count = 0;
    std::shared_ptr<const void> owner;
};

/// Output of the hand-written code and the peers: memory that grows by doubling or, for a file, 256 KiB
/// blocks written to it.
class Sink {
public:
    Sink();
    explicit Sink(const std::string& path);
    Sink(const Sink&) = delete;
    Sink& operator=(const Sink&) = delete;
    ~Sink();

    /// At least `count` free bytes; fill them from the front, then call `Advance`.
    unsigned char* Room(std::size_t count) {
        if (count > static_cast<std::size_t>(end - next)) MakeRoom(count);
        return next;
    }
    void Advance(std::size_t count) { next += count; }
    bool IsFile() const { return file >= 0; }
    /// The bytes not yet written.
    unsigned char* Pending() { return begin; }
    std::size_t PendingSize() const { return static_cast<std::size_t>(next - begin); }
    bool IsDue() const { return IsFile() && PendingSize() >= BLOCK; }
    void Flush();
    /// Flushes and closes a file.
    void Close();
    /// Hands over the bytes in memory.
    Bytes Take();

    static constexpr std::size_t BLOCK = 256 * 1024;

private:
    void MakeRoom(std::size_t count);

    unsigned char* begin = nullptr;
    unsigned char* next = nullptr;
    unsigned char* end = nullptr;
    int file = -1;
};

/// A fingerprint of a model's content, comparable between libraries.
struct Digest {
    std::uint64_t objects = 0;
    std::uint64_t values = 0;
    bool operator==(const Digest&) const = default;
};

/// One way to save and open the model. Only `Save...`, `Open...` and `DropOpened` are timed.
class Contender {
public:
    virtual ~Contender() = default;
    virtual void BuildFrame(std::size_t objects) = 0;
    virtual void BuildChain(std::size_t objects) = 0;

    virtual Bytes SaveMemory() = 0;
    virtual void SaveFile(const std::string& path) = 0;
    virtual void OpenMemory(const Bytes& bytes) = 0;
    virtual void OpenFile(const std::string& path) = 0;

    virtual Digest Built() const = 0;
    virtual Digest Opened() const = 0;
    virtual void DropOpened() = 0;
};

std::unique_ptr<Contender> MakeZo();
std::unique_ptr<Contender> MakeFloor();
std::unique_ptr<Contender> MakePlainFloor();
std::unique_ptr<Contender> MakeBoost();
std::unique_ptr<Contender> MakeCereal();
std::unique_ptr<Contender> MakeFlatBuffers();
std::unique_ptr<Contender> MakeProtobuf();
std::unique_ptr<Contender> MakeQt();

// For reading a part of a file: this library with a model in which every hundredth object is of one class,
// and a reader of only that class.
std::unique_ptr<Contender> MakePinned();
std::unique_ptr<Contender> MakeFiltered();

/// Objects that hold values, in three ways, and texts; see shapes.cpp.
void RunShapes(int runs);

/// Digest, report and checks; see checks.cpp.
void RunChecks(int runs);

/// Closed regions of drawings; see geometry.cpp.
void RunDrawings(int runs, bool quick);

/// CRC-32 and searches; see micro.cpp.
void RunMicro(int runs);

/// Monotonic clock, in nanoseconds.
double Now();
double Median(std::vector<double> values);
double Least(const std::vector<double>& values);

} // namespace bench
