#include "ZoPrimitives/FileBinOutStream.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/pointer.h"

#include <gtest/gtest.h>

namespace {

using namespace ZoPrimitives;

TEST(FullDevice, IsOutOfSpace) {
    const pointer<TFileBinOutStream> out(TFileBinOutStream::Create("/dev/full", false));
    try {
        out->Initialize();
        ADD_FAILURE() << "the header was taken";
    } catch (const XWriteStreamOutOfSpace& e) {
        EXPECT_EQ(e.Location(), "TFileBinOutStream::WriteToFile");
    }
}

} // namespace
