#include "ZoPrimitives/ZoPrimitives.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

using namespace ZoPrimitives;

namespace {

TEST(ExceptionTests, ThrownInsideTheLibraryAreCaughtOutside) {
    const Testing::TemporaryFolder folder;
    folder.Write("empty", "");
    const ZoString empty = folder.Path("empty").c_str(), missing = folder.Path("none/plan.zo").c_str();
    char little[4] = {};
    TMemoryBinOutStream memory(7, 2026);
    memory.Initialize();
    const pointer<TFileBinOutStream> nowhere(TFileBinOutStream::Create(missing.c_str(), true));
    EXPECT_THROW(ZoString("abc")[3] = 'd', XZoAssert);
    EXPECT_THROW(TFileBinInStream(empty.c_str()).Initialize(), XReadStream);
    EXPECT_THROW(CreateMemoryBinInStream(memory.GetData(), memory.GetSize(), 6), XNewerVersion);
    EXPECT_THROW(nowhere->Initialize(), XWriteStream);
    EXPECT_THROW(memory.WriteInMemory(little, sizeof little), XWriteStreamOutOfSpace);
    EXPECT_THROW(FileInputStream(empty.c_str()).SkipValue(), XEndOfStream);
}

/// Whether an application's functor may throw each out of the library, to be caught as `Base`.
template <class Base, class... Exceptions>
bool Pass(const Exceptions&... exceptions) {
    const auto passes = []<class Exception>(const Exception& exception) {
        struct Thrower : IAssertFunctor {
            explicit Thrower(const Exception& e) : thrown(e) {}
            void operator()(const char*, const char*, const char*, int) override { throw thrown; }
            Exception thrown;
        };
        SetAssertionFunctor(new Thrower(exception));
        try {
            AssertWithFunctor("", "", "", 1);
        } catch (const Base& base) {
            SetAssertionFunctor(nullptr);
            return dynamic_cast<const Exception*>(&base) != nullptr;
        }
        return false;
    };
    return (passes(exceptions) && ...);
}

TEST(ExceptionTests, OfEveryFamilyPassThroughTheLibrary) {
    const ZoString text = "text";
    EXPECT_TRUE((Pass<XStream>(XStream(text, text), XEndOfStream(), XInvalidObject(), XUnversionableVersion(),
                               XInvalidFileType(), XInvalidLanguage(), XInvalidVersion())));
    EXPECT_TRUE(Pass<XReadStream>(XNewerVersion()) && Pass<XWriteStream>(XWriteStreamOutOfSpace(text)));
    EXPECT_TRUE(Pass<XStreamer>(XStreamer(), XEndSection(), XInvalidHandle(), XUnknownObject()));
    EXPECT_TRUE(Pass<xContainer>(xContainer(), xIteratorOverrunContainerLimit(), xContainerSizeExceeded(),
                                 xFind(), xObjectNotFoundInContainer(), xSelect()));
    EXPECT_TRUE(Pass<XZoAssert>(XZoAssert("text")) && Pass<xInvalidConversion>(xInvalidConversion()) &&
                Pass<xRegionContainsExceeded>(xRegionContainsExceeded()));
}

} // namespace
