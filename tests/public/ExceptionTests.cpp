#include "ZoPrimitives/ZoPrimitives.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <exception>
#include <functional>
#include <memory>
#include <new>
#include <string>

using namespace ZoPrimitives;

namespace {

/// The type and the texts of what an operation throws.
std::string Thrown(const std::function<void()>& operation) {
    const auto text = [](const char* name, const XStream& e) {
        return std::string(name) + ": " + e.Message().c_str() + " @ " + e.Location().c_str();
    };
    try {
        operation();
    } catch (const XWriteStreamOutOfSpace& e) {
        return std::string("XWriteStreamOutOfSpace @ ") + e.Location().c_str();
    } catch (const XWriteStream& e) {
        return text("XWriteStream", e);
    } catch (const XNewerVersion&) {
        return "XNewerVersion";
    } catch (const XReadStream& e) {
        return text("XReadStream", e);
    } catch (const XEndOfStream& e) {
        return text("XEndOfStream", e);
    } catch (const XZoAssert& e) {
        return std::string("XZoAssert: ") + e.Message();
    }
    return "nothing";
}

TEST(Exceptions, ThrownInsideTheLibraryAreCaughtOutside) {
    const Testing::TemporaryFolder folder;
    folder.Write("empty.zo", "");
    folder.Write("text", "\n");
    const ZoString missing = folder.Path("none/plan.zo").c_str();
    char little[4] = {};
    TMemoryBinOutStream memory(7, 2026);
    memory.Initialize();
    const struct {
        const char* name;
        std::function<void()> operation;
        std::string thrown;
    } rows[] = {
        {"an index out of range", [] { ZoString("abc")[3] = 'd'; }, "XZoAssert: AssertWithFunctor"},
        {"an empty file", [&] { TFileBinInStream(folder.Path("empty.zo").c_str()).Initialize(); },
         "XReadStream: No error @ TFileBinInStream::TFileBinInStream"},
        {"a newer file", [&] { CreateMemoryBinInStream(memory.GetData(), memory.GetSize(), 6); },
         "XNewerVersion"},
        {"no folder",
         [&] {
             std::unique_ptr<TFileBinOutStream>(TFileBinOutStream::Create(missing.c_str(), true))
                 ->Initialize();
         },
         "XWriteStream: No such process @ TFileBinOutStream::Initialize"},
        {"a block that is too small", [&] { memory.WriteInMemory(little, sizeof little); },
         "XWriteStreamOutOfSpace @ TMemoryBinOutStream::WriteInMemory"},
        {"the end of a text",
         [&] {
             FileInputStream in(folder.Path("text").c_str());
             in.SkipValue();
             in.SkipValue();
         },
         "XEndOfStream: End-of-file @ "},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Thrown(row.operation), row.thrown) << row.name;
        EXPECT_EQ(std::uncaught_exceptions(), 0) << row.name;
    }
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

TEST(Exceptions, OfEveryFamilyPassThroughTheLibrary) {
    const ZoString text = "text";
    EXPECT_TRUE((Passes<XStream>(XStream(text, text))));
    EXPECT_TRUE((Passes<XStream>(XReadStream(text, text))));
    EXPECT_TRUE((Passes<XStream>(XWriteStream(text, text))));
    EXPECT_TRUE((Passes<XWriteStream>(XWriteStreamOutOfSpace(text))));
    EXPECT_TRUE((Passes<XStream>(XEndOfStream())));
    EXPECT_TRUE((Passes<XStream>(XInvalidObject())));
    EXPECT_TRUE((Passes<XReadStream>(XNewerVersion())));
    EXPECT_TRUE((Passes<XStream>(XUnversionableVersion())));
    EXPECT_TRUE((Passes<XStream>(XInvalidFileType())));
    EXPECT_TRUE((Passes<XStream>(XInvalidLanguage())));
    EXPECT_TRUE((Passes<XStream>(XInvalidVersion())));
    EXPECT_TRUE((Passes<XStreamer>(XStreamer())));
    EXPECT_TRUE((Passes<XStreamer>(XEndSection())));
    EXPECT_TRUE((Passes<XStreamer>(XInvalidHandle())));
    EXPECT_TRUE((Passes<XStreamer>(XUnknownObject())));
    EXPECT_TRUE((Passes<xContainer>(xContainer())));
    EXPECT_TRUE((Passes<xContainer>(xIteratorOverrunContainerLimit())));
    EXPECT_TRUE((Passes<xContainer>(xContainerSizeExceeded())));
    EXPECT_TRUE((Passes<xContainer>(xFind())));
    EXPECT_TRUE((Passes<xContainer>(xObjectNotFoundInContainer())));
    EXPECT_TRUE((Passes<xContainer>(xSelect())));
    EXPECT_TRUE((Passes<xRegionContainsExceeded>(xRegionContainsExceeded())));
    EXPECT_TRUE((Passes<xInvalidConversion>(xInvalidConversion())));
    EXPECT_TRUE((Passes<XZoAssert>(XZoAssert("text"))));
    EXPECT_TRUE((Passes<std::exception>(std::bad_alloc())));
}

} // namespace
