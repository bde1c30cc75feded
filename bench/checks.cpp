// What digest, report and checks of the two calls cost beside the streams alone.

#include "measure.h"
#include "zo_model.h"

#include "ZoPrimitives/BinInStreamer.h"
#include "ZoPrimitives/BinOutStreamer.h"
#include "ZoPrimitives/MemoryBinInStream.h"
#include "ZoPrimitives/MemoryBinOutStream.h"
#include "ZoPrimitives/ZoOpen.h"
#include "ZoPrimitives/ZoSave.h"

#include <cstdio>
#include <functional>
#include <vector>

namespace bench::zo {

namespace {

using namespace ZoPrimitives;

constexpr std::size_t OBJECTS = 200'000;

struct Way {
    const char* title;
    std::function<void()> run;
    std::vector<double> times{};
};

/// The ways take turns, so that what the machine does meanwhile meets all of them.
void Compare(const char* title, std::vector<Way> ways, int runs) {
    for (int run = -1; run < runs; ++run) {
        for (Way& way : ways) {
            const double start = Clock();
            way.run();
            if (run >= 0) way.times.push_back((Clock() - start) / static_cast<double>(OBJECTS));
        }
    }
    const double first = Least(ways[0].times);
    for (const Way& way : ways) {
        const double least = Least(way.times);
        std::printf("  %-10s %-44s %6.1f (%6.1f)  %+6.1f  %+5.1f %%\n", title, way.title, Median(way.times),
                    least, least - first, 100 * (least / first - 1));
        title = "";
    }
}

class Checked : public ZoContender {
public:
    Checked() { BuildFrame(OBJECTS); }

    void Save(bool digest) {
        TMemoryBinOutStream stream(VERSION, RELEASE);
        stream.SetWritesDigest(digest);
        stream.Initialize();
        TBinOutStreamer(&stream, &Schema()).WriteObjectWithMetaData(Root());
    }
    void SaveInOneCall() { ZoSaveInMemory(Root(), &Schema(), {VERSION, RELEASE}); }
    void Open(const ZoBlob& bytes, bool digest, bool report) {
        TMemoryBinInStream stream(bytes.Data(), bytes.Size(), VERSION);
        stream.SetChecksDigest(digest);
        stream.Initialize();
        TBinInStreamer streamer(&stream, &Schema());
        TIVector<ZoStreamableBase> objects;
        streamer.ReadObjects();
        if (report && streamer.Report().Faults() != strictNothing) throw std::runtime_error("faults");
        stream.TakeObjects(&objects);
    }
    void OpenInOneCall(const ZoBlob& bytes) {
        ZoOpenFromMemory<ZoStreamableBase>(bytes, &Schema(), {VERSION});
    }
    ZoBlob Saved() { return ZoSaveInMemory(Root(), &Schema(), {VERSION, RELEASE}); }
};

} // namespace

} // namespace bench::zo

void bench::RunChecks(int runs) {
    using namespace bench::zo;
    Checked model;
    const ZoPrimitives::ZoBlob bytes = model.Saved();
    std::printf("\n200,000 objects, memory, warm, opening with destroying: ns an object, median (least), "
                "more than the "
                "first by least\n");
    Compare("save",
            {{"streams alone", [&] { model.Save(false); }},
             {"with a digest", [&] { model.Save(true); }},
             {"ZoSaveInMemory: digest, checks", [&] { model.SaveInOneCall(); }}},
            runs);
    Compare("open",
            {{"streams alone", [&] { model.Open(bytes, false, false); }},
             {"checking the digest", [&] { model.Open(bytes, true, false); }},
             {"with a report", [&] { model.Open(bytes, false, true); }},
             {"ZoOpenFromMemory: digest, report, roots", [&] { model.OpenInOneCall(bytes); }}},
            runs);
}
