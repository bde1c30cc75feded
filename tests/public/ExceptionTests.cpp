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

TEST(ExceptionTests, ThrownInsideTheLibraryAreCaughtOutside) {
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

template <class Base, class... Exceptions>
bool AllPass() {
    return (Passes<Base>(Exceptions()) && ...);
}

TEST(ExceptionTests, OfEveryFamilyPassThroughTheLibrary) {
    const ZoString text = "text";
    EXPECT_TRUE(Passes<XStream>(XStream(text, text)) && Passes<XStream>(XReadStream(text, text)) &&
                Passes<XStream>(XWriteStream(text, text)) && Passes<XReadStream>(XNewerVersion()) &&
                Passes<XWriteStream>(XWriteStreamOutOfSpace(text)) && Passes<XZoAssert>(XZoAssert("text")));
    EXPECT_TRUE((AllPass<XStream, XEndOfStream, XInvalidObject, XUnversionableVersion, XInvalidFileType,
                         XInvalidLanguage, XInvalidVersion>()));
    EXPECT_TRUE((AllPass<XStreamer, XStreamer, XEndSection, XInvalidHandle, XUnknownObject>()));
    EXPECT_TRUE((AllPass<xContainer, xContainer, xIteratorOverrunContainerLimit, xContainerSizeExceeded,
                         xFind, xObjectNotFoundInContainer, xSelect>()));
    EXPECT_TRUE((AllPass<xRegionContainsExceeded, xRegionContainsExceeded>() &&
                 AllPass<xInvalidConversion, xInvalidConversion>() &&
                 AllPass<std::exception, std::bad_alloc>()));
}

} // namespace
