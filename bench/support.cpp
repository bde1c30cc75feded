#include "bench.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <new>
#include <stdexcept>
#include <utility>

namespace bench {

namespace {

void WriteAll(int file, const unsigned char* data, std::size_t size) {
    while (size != 0) {
        const ssize_t done = write(file, data, size);
        if (done <= 0) throw std::runtime_error("cannot write");
        data += done;
        size -= static_cast<std::size_t>(done);
    }
}

int Create(const std::string& path) {
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (file < 0) throw std::runtime_error("cannot create " + path);
    return file;
}

} // namespace

Bytes::Bytes(unsigned char* taken, std::size_t size)
    : block(taken), count(size), owner(taken, [](unsigned char* ended) { std::free(ended); }) {}

void Bytes::Store(const std::string& path) const {
    const int file = Create(path);
    WriteAll(file, block, count);
    close(file);
}

Bytes Bytes::Load(const std::string& path) {
    const int file = open(path.c_str(), O_RDONLY);
    struct stat status {};
    if (file < 0 || fstat(file, &status) != 0) throw std::runtime_error("cannot open " + path);
    const auto size = static_cast<std::size_t>(status.st_size);
    auto* block = static_cast<unsigned char*>(std::malloc(size));
    Bytes bytes(block, size);
    for (std::size_t at = 0; at < size;) {
        const ssize_t done = read(file, block + at, size - at);
        if (done <= 0) throw std::runtime_error("cannot read " + path);
        at += static_cast<std::size_t>(done);
    }
    close(file);
    return bytes;
}

Sink::Sink() = default;
Sink::Sink(const std::string& path) : file(Create(path)) {}

Sink::~Sink() {
    std::free(begin);
    if (file >= 0) close(file);
}

void Sink::MakeRoom(std::size_t count) {
    const std::size_t size = PendingSize();
    const std::size_t capacity = std::max<std::size_t>(
        {2 * static_cast<std::size_t>(end - begin), size + count, IsFile() ? 2 * BLOCK : 64 * 1024});
    auto* grown = static_cast<unsigned char*>(std::realloc(begin, capacity));
    if (grown == nullptr) throw std::bad_alloc();
    begin = grown;
    next = grown + size;
    end = grown + capacity;
}

void Sink::Flush() {
    WriteAll(file, begin, PendingSize());
    next = begin;
}

void Sink::Close() {
    Flush();
    close(std::exchange(file, -1));
}

Bytes Sink::Take() {
    Bytes taken(begin, PendingSize());
    begin = next = end = nullptr;
    return taken;
}

double Now() {
    return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 != 0 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

double Least(const std::vector<double>& values) { return *std::min_element(values.begin(), values.end()); }

} // namespace bench
