// CRC-32 compared with ISA-L's, and searches compared with std::find.

#include "bench.h"

#include "ZoPrimitives/CRC32.h"
#include "ZoPrimitives/dvector.h"

#include <isa-l/crc.h>

#include <algorithm>
#include <cstdio>
#include <numeric>

namespace bench {

namespace {

using ZoPrimitives::CRC32;
using ZoPrimitives::TDVector;

std::uint32_t OurSum(const unsigned char* data, std::size_t size) {
    CRC32 crc;
    crc.update(data, static_cast<unsigned>(size));
    return crc.getUint32Value();
}

std::uint32_t IsalSum(const unsigned char* data, std::size_t size) { return crc32_gzip_refl(0, data, size); }

/// Sums 1 MiB in pieces of one size, repeatedly. Returns nanoseconds per piece.
template <class Sum>
double TimeSums(Sum sum, const std::vector<unsigned char>& data, std::size_t piece, int runs,
                std::uint32_t& check) {
    const std::size_t pieces = data.size() / piece;
    constexpr int ROUNDS = 20;
    std::vector<double> times;
    for (int run = 0; run <= runs; ++run) {
        check = 0;
        const double start = Now();
        for (int round = 0; round < ROUNDS; ++round) {
            for (std::size_t i = 0; i < pieces; ++i) check += sum(data.data() + i * piece, piece);
        }
        if (run != 0) times.push_back((Now() - start) / static_cast<double>(ROUNDS * pieces));
    }
    return Median(times);
}

void Sums(int runs) {
    std::vector<unsigned char> data(1024 * 1024);
    for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<unsigned char>(i * i >> 5);
    std::printf("\nCRC-32 (1 MiB: at least half of ISA-L, or 20 GB/s)\n");
    for (const std::size_t piece : {data.size(), std::size_t{60}}) {
        std::uint32_t ours = 0;
        std::uint32_t isal = 0;
        const double ourTime = TimeSums(OurSum, data, piece, runs, ours);
        const double isalTime = TimeSums(IsalSum, data, piece, runs, isal);
        const double ourSpeed = static_cast<double>(piece) / ourTime;
        const double isalSpeed = static_cast<double>(piece) / isalTime;
        std::printf(
            "  %7zu bytes   ours %6.2f GB/s (%.1f ns)   ISA-L %6.2f GB/s (%.1f ns)   %.2f of ISA-L%s%s\n",
            piece, ourSpeed, ourTime, isalSpeed, isalTime, ourSpeed / isalSpeed,
            piece == 60                                   ? ""
            : ourSpeed >= 20 || ourSpeed * 2 >= isalSpeed ? "   met"
                                                          : "   MISSED",
            ours == isal ? "" : "   DIFFERENT SUMS");
    }
}

void Searches(int runs) {
    constexpr int COUNT = 10'000'000;
    TDVector<int> values;
    values.Reserve(COUNT);
    for (int i = 0; i < COUNT; ++i) values.Add(i);
    std::printf("\nSearch in a TDVector<int> of 10,000,000 (no slower than std::find), ms\n");
    const struct {
        const char* name;
        int value;
    } cases[] = {{"absent", -1}, {"first", 0}, {"middle", COUNT / 2}, {"last", COUNT - 1}};
    for (const auto& row : cases) {
        std::vector<double> ours;
        std::vector<double> standard;
        bool same = true;
        for (int run = 0; run <= 2 * runs; ++run) {
            double start = Now();
            unsigned long long position = 0;
            values.Find(row.value, position);
            const double ourTime = Now() - start;
            start = Now();
            const int* volatile found = std::find(values.begin(), values.end(), row.value);
            const double standardTime = Now() - start;
            same = same && position == static_cast<unsigned long long>(found - values.begin()) + 1;
            if (run == 0) continue;
            ours.push_back(ourTime / 1e6);
            standard.push_back(standardTime / 1e6);
        }
        std::printf("  %-8s ours %8.4f   std::find %8.4f   x %.2f%s\n", row.name, Median(ours),
                    Median(standard), Median(standard) / Median(ours), same ? "" : "   DIFFERENT PLACES");
    }
}

} // namespace

void RunMicro(int runs) {
    Sums(runs);
    Searches(runs);
}

} // namespace bench
