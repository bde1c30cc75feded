#include "Persistence/RecordFormat.h"
#include "ZoPrimitives/FileBinInStream.h"
#include "ZoPrimitives/FileBinOutStream.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/pointer.h"
#include "support/Assertions.h"
#include "support/FaultyServices.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

namespace {

using namespace ZoPrimitives;
using testing::ElementsAre;
using ZoPrimitives::Testing::FaultyServices;
using ZoPrimitives::Testing::TemporaryFolder;

void Save(const std::string& path, const std::string& text, bool backup) {
    const pointer<TFileBinOutStream> out = TFileBinOutStream::Create(path.c_str(), 3, 2026, backup);
    out->Initialize();
    *out << text.c_str();
    out->FlushRecord(1, 7);
    out->Finalize();
}

std::string Open(const std::string& path) {
    TFileBinInStream in(path.c_str());
    in.Initialize();
    int uid = 0;
    int classId = 0;
    ZoString text;
    if (!in.LoadRecord(&uid, &classId)) return "<none>";
    EXPECT_EQ(uid, 1);
    EXPECT_EQ(classId, 7);
    in >> text;
    return text.c_str();
}

struct FileStreamTests : testing::Test {
    TemporaryFolder folder;
};

TEST_F(FileStreamTests, ASecondSaveKeepsThePreviousVersion) {
    Save(folder.Path("plan.zo"), "one", true);
    EXPECT_THAT(folder.Names(), ElementsAre("plan.zo"));
    Save(folder.Path("plan.zo"), "two", true);
    Save(folder.Path("plan.zo"), "three", true);
    EXPECT_EQ(Open(folder.Path("plan.zo")), "three");
    EXPECT_EQ(Open(folder.Path("plan.zo-bak")), "two");
    EXPECT_THAT(folder.Names(), ElementsAre("plan.zo", "plan.zo-bak"));
}

} // namespace
