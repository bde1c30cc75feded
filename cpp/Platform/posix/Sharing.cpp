#include "Platform/posix/Sharing.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <random>
#include <unistd.h>

// An opening marks what it does and what it denies with shared locks on single bytes far beyond any data.
// Shared locks suffice: a descriptor for reading can place them, and testing for a conflict with an exclusive
// lock finds those of others. The locks belong to the open file description, so two openings in one process
// see each other, and a process that dies releases its locks.
//
// Placing and testing are two steps. An opening first places its marks on the tentative bytes, then tests
// others' tentative marks, then their settled ones, and only then places its own settled ones. Of two rivals
// at least one sees the other's tentative marks and starts over; a settled opening stays visible. Testing in
// the other order would miss a rival that settles in between.

namespace ZoPrimitives::Platform {

namespace {

static_assert(sizeof(off_t) == 8);

// Processes with different versions of the library meet here: never change the positions. In this order the
// marks of an opening are always one run of bytes.
enum Mark : unsigned { Writes = 1, Reads = 2, DeniesWriting = 4, DeniesReading = 8 };
constexpr int MarkCount = 4;

constexpr off_t Settled = off_t{1} << 62;
constexpr off_t Tentative = Settled + 8;
constexpr off_t AllMarks = 16;

constexpr unsigned Patience = 1000; // milliseconds

enum class Answer { Free, Taken, Unsupported };

Answer Lock(int descriptor, int command, short type, off_t start, off_t length) {
    struct flock lock {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = start;
    lock.l_len = length;
    int result;
    do result = fcntl(descriptor, command, &lock);
    while (result != 0 && errno == EINTR);
    if (result != 0) return errno == EAGAIN || errno == EACCES ? Answer::Taken : Answer::Unsupported;
    return command == F_OFD_GETLK && lock.l_type != F_UNLCK ? Answer::Taken : Answer::Free;
}

Answer Place(int descriptor, off_t base, unsigned marks) {
    return Lock(descriptor, F_OFD_SETLK, F_RDLCK, base + std::countr_zero(marks), std::popcount(marks));
}

bool OthersHold(int descriptor, off_t base, unsigned marks) {
    while (marks != 0) {
        const int first = std::countr_zero(marks);
        const int length = std::countr_one(marks >> first);
        if (Lock(descriptor, F_OFD_GETLK, F_WRLCK, base + first, length) == Answer::Taken) return true;
        marks &= ~0U << (first + length);
    }
    return false;
}

void Clear(int descriptor, off_t base, off_t length) { Lock(descriptor, F_OFD_SETLK, F_UNLCK, base, length); }

unsigned OwnMarks(Access access, Share share) {
    unsigned marks = Reads;
    if (access == Access::ReadWrite) marks |= Writes;
    if (share != Share::ReadWrite) marks |= DeniesWriting;
    if (share == Share::None) marks |= DeniesReading;
    return marks;
}

unsigned HostileMarks(Access access, Share share) {
    unsigned marks = DeniesReading;
    if (access == Access::ReadWrite) marks |= DeniesWriting;
    if (share != Share::ReadWrite) marks |= Writes;
    if (share == Share::None) marks |= Reads;
    return marks;
}

/// Waits a short random time and returns it in milliseconds.
unsigned WaitForRival(unsigned attempt) {
    static thread_local std::minstd_rand random{std::random_device{}()};
    const unsigned milliseconds = std::uniform_int_distribution<unsigned>{1, std::min(attempt, 4U)}(random);
    Current().Wait(milliseconds);
    return milliseconds;
}

const pid_t ownProcess = getpid();

} // namespace

bool ClaimShare(int descriptor, Access access, Share share) {
    const unsigned own = OwnMarks(access, share);
    const unsigned hostile = HostileMarks(access, share);
    unsigned waited = 0;
    for (unsigned attempt = 1;; ++attempt) {
        const Answer shown = Place(descriptor, Tentative, own);
        if (shown != Answer::Free) return shown == Answer::Unsupported;
        const bool rival = OthersHold(descriptor, Tentative, hostile);
        const bool holder = OthersHold(descriptor, Settled, hostile);
        if (!rival && !holder) Place(descriptor, Settled, own);
        Clear(descriptor, Tentative, MarkCount);
        if (holder) return false;
        if (!rival) return true;
        // A rival settles or gives up at once, unless its process is stopped.
        if (waited > Patience) return false;
        waited += WaitForRival(attempt);
    }
}

void ReleaseShare(int descriptor) {
    // A child that closes an inherited descriptor must not release its parent's claim.
    if (getpid() == ownProcess) Clear(descriptor, Settled, AllMarks);
}

} // namespace ZoPrimitives::Platform
