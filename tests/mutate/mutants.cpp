#include "mutants.h"

#include <cstdlib>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zo_mutants {

namespace {

/// The file that ZO_MUTANTS_REACHED names, a byte for each change; shared with the processes that a test
/// starts.
unsigned char* Reached() {
    const char* path = std::getenv("ZO_MUTANTS_REACHED");
    const int file = path != nullptr ? open(path, O_RDWR | O_CLOEXEC) : -1;
    if (file < 0) return nullptr;
    struct stat status = {};
    if (fstat(file, &status) != 0) std::abort();
    void* bytes = mmap(nullptr, static_cast<std::size_t>(status.st_size), PROT_WRITE, MAP_SHARED, file, 0);
    if (bytes == MAP_FAILED) std::abort();
    close(file);
    return static_cast<unsigned char*>(bytes);
}

int ChosenNumber() {
    const char* number = std::getenv("ZO_MUTANT");
    return number != nullptr ? std::atoi(number) : 0;
}

} // namespace

bool ChosenHere(int number) noexcept {
    static const int chosen = ChosenNumber();
    static unsigned char* const reached = Reached();
    if (reached != nullptr) reached[number] = 1;
    return number == chosen;
}

} // namespace zo_mutants
