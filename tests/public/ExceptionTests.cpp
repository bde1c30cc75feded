#include "ZoPrimitives/ZoPrimitives.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <exception>
#include <new>

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
    EXPECT_EQ(std::uncaught_exceptions(), 0);
}

/// Throws an exception of the application's out of the library's assertion.
template <class Exception>
struct Thrower : IAssertFunctor {
    explicit Thrower(const Exception& thrown) : exception(thrown) {}
    void operator()(const char*, const char*, const char*, int) override { throw exception; }
    Exception exception;
};

/// Whether it goes through the library and is caught as `Base`.
template <class Base, class Exception>
bool Passes(const Exception& exception) {
    SetAssertionFunctor(new Thrower<Exception>(exception));
    bool caught = false;
    try {
        AssertWithFunctor("", "", "", 1);
    } catch (const Base& base) {
        caught = dynamic_cast<const Exception*>(&base) != nullptr;
    } catch (...) {
    }
    SetAssertionFunctor(nullptr);
    return caught && std::uncaught_exceptions() == 0;
}

template <class Base, class... Exceptions>
bool AllPass(const Exceptions&... exceptions) {
    return (Passes<Base>(exceptions) && ...);
}

TEST(ExceptionTests, OfEveryFamilyPassThroughTheLibrary) {
    const ZoString text = "text";
    EXPECT_TRUE(AllPass<XStream>(XStream(text, text), XReadStream(text, text), XWriteStream(text, text),
                                 XEndOfStream(), XInvalidObject(), XUnversionableVersion(),
                                 XInvalidFileType(), XInvalidLanguage(), XInvalidVersion()));
    EXPECT_TRUE(AllPass<XReadStream>(XNewerVersion()) && AllPass<XWriteStream>(XWriteStreamOutOfSpace(text)));
    EXPECT_TRUE(AllPass<XStreamer>(XStreamer(), XEndSection(), XInvalidHandle(), XUnknownObject()));
    EXPECT_TRUE(AllPass<xContainer>(xContainer(), xIteratorOverrunContainerLimit(), xContainerSizeExceeded(),
                                    xFind(), xObjectNotFoundInContainer(), xSelect()));
    EXPECT_TRUE(Passes<XZoAssert>(XZoAssert("text")) && Passes<std::exception>(std::bad_alloc()) &&
                Passes<xRegionContainsExceeded>(xRegionContainsExceeded()) &&
                Passes<xInvalidConversion>(xInvalidConversion()));
}

} // namespace
