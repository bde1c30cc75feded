#include "ZoPrimitives/FileBinInStream.h"
#include "ZoPrimitives/FileBinOutStream.h"
#include "support/EveryKind.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace ZoPrimitives;
using ZoPrimitives::Testing::TemporaryFolder;

/// Files that one system wrote once: tests/data/README.md tells which.
struct GoldenFileTests : testing::Test {
    GoldenFileTests() {
        app::RegisterEveryKind(schema);
        // Copies: who opens a file keeps writers out.
        for (const char* name : {"every-kind.zo", "scrambled.zo"})
            std::filesystem::copy_file(std::string(ZO_TEST_DATA "/") + name, folder.Path(name));
    }

    std::string Saved(ZoStreamableBase* root) {
        const pointer<TFileBinOutStream> out(
            TFileBinOutStream::Create(folder.Path("saved.zo").c_str(), 3, 2026, false));
        out->Initialize();
        TBinOutStreamer(out.get(), &schema).WriteObjectWithMetaData(root);
        out->Finalize();
        return folder.Read("saved.zo");
    }

    TemporaryFolder folder;
    TZoMetaData schema;
};

TEST_F(GoldenFileTests, AreWrittenByEverySystem) {
    app::Leaf outside(99);
    app::EveryKind written;
    written.Fill(outside);
    EXPECT_TRUE(Saved(&written) == folder.Read("every-kind.zo"));
}

TEST_F(GoldenFileTests, AreReadByEverySystem) {
    for (const char* name : {"every-kind.zo", "scrambled.zo"}) {
        SCOPED_TRACE(name);
        TFileBinInStream in(folder.Path(name).c_str(), 3u);
        in.Initialize();
        const pointer<ZoStreamableBase> root(TBinInStreamer(&in, &schema).ReadObjects());
        const auto* every = dynamic_cast<app::EveryKind*>(root.get());
        ASSERT_NE(every, nullptr);
        const pointer<app::Leaf> outside(every->external.get()); // owned by nobody
        EXPECT_EQ(every->anUnsigned, 4'000'000'000U);
        EXPECT_EQ(every->aDouble, -0.25);
        EXPECT_EQ(every->external->number, 99);
        EXPECT_TRUE(Saved(root.get()) == folder.Read("every-kind.zo"));
    }
}

} // namespace
