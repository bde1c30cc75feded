#include "support/Slots.h"

#include "ZoPrimitives/ConvertionHelper.h"
#include "ZoPrimitives/FilteredBinInStreamer.h"
#include "ZoPrimitives/InputStream.h"
#include "ZoPrimitives/OutputStream.h"
#include "support/Streaming.h"

using namespace ZoPrimitives;

namespace {

#ifdef ZO_SLOTS_ARE_TOLD
using Slots = std::vector<std::ptrdiff_t>;

template <class Stream, class... Values>
Slots Taking() {
    return {Slot(static_cast<Stream& (Stream::*)(Values)>(&Stream::operator>>))...};
}
template <class Stream, class... Values>
Slots Putting() {
    return {Slot(static_cast<Stream& (Stream::*)(Values)>(&Stream::operator<<))...};
}

// Give pointers to protected operations.
struct Object : ZoStreamableBase {
    static std::ptrdiff_t ReadDataSlot() { return Slot(&Object::ReadData); }
};
struct InStream : TBinInStream {
    static Slots Own() { return {Slot(&InStream::LoadHeader), Slot(&InStream::Read)}; }
};
struct InStreamer : TBinInStreamer {
    static std::ptrdiff_t CreateInstanceSlot() { return Slot(&InStreamer::CreateInstance); }
};

TEST(SlotTests, WhatApplicationsOverrideStandsWhereTheyWereCompiledToFindIt) {
    using B = ZoStreamableBase;
    using S = ZoObjectStreamable;
    using F = TZoClassField;
    using I = InputStream;
    using O = TBinOutStream;
    using V = TDVector<int>;
    const struct {
        const char* name;
        Slots slots;
        std::ptrdiff_t first = 4; // behind two for destruction and two comparisons
    } cases[] = {
        {"record writer, values", Putting<O, const ZoBlob&, const ZoString&, const char*, short,
                                          unsigned short, int, unsigned, float, double, long double, bool>()},
        {"record writer",
         {Slot(&O::FlushRecord), Slot(&O::FlushBuffer), Slot(&O::FreeResourses), Slot(&O::Initialize),
          Slot(&O::SaveHeader)},
         15},
        {"record reader, values", Taking<TBinInStream, ZoBlob&, ZoString&, char*, short&, unsigned short&,
                                         int&, unsigned&, float&, double&, long double&, bool&>()},
        {"record reader", InStream::Own(), 15},
        {"text writer", Putting<OutputStream, const ZoString&, const char*, long double, double, float,
                                unsigned, int, unsigned short, short, bool>()},
        {"text reader, values", Taking<I, ZoString&, char*, long double&, double&, float&, unsigned&, int&,
                                       unsigned short&, short&, bool&>()},
        {"text reader", {Slot(&I::SkipValue), Slot(&I::GetLine), Slot(&I::CheckRead)}, 14},
        {"streamable objects",
         {Slot(&B::StreamableClassName), Slot(&B::Write), Slot(&B::WillWrite), Slot(&B::Read),
          Slot(&B::GetIsValid), Slot(&B::GetClass), Slot(&B::GetOriginalClass), Slot(&B::OnRead),
          Slot(&B::CanBeConvertedToBaseClass), Slot(&B::OnReadPointer), Slot(&B::HandleExcludedField),
          Slot(&B::CheckForExcludedFields), Slot(&B::ToString), Object::ReadDataSlot(),
          Slot(&S::CreateBusinessObject), Slot(&S::FillBusinessObject), Slot(&S::FillFromBusinessObject)}},
        {"fields", {Slot(&F::SaveToStream), Slot(&F::LoadFromStream), Slot(&F::GetFieldMetaData)}},
        {"object writer",
         {Slot(&TBinOutStreamer::OnAfterSaveInstance), Slot(&TBinOutStreamer::RewriteHeader)}},
        {"object reader",
         {Slot(&TBinInStreamer::OnAfterLoadInstance), Slot(&TBinInStreamer::OnAfterResolveInstance),
          InStreamer::CreateInstanceSlot()}},
        {"filtered reader", {Slot(&TFilteredBinInStreamer::Read)}},
        {"an interface, where destruction comes last",
         {Slot(&IStreamableConvertionFactory::CreateStreamable)},
         0},
        {"comparisons",
         {Slot(static_cast<bool (ZoObject::*)(const ZoObject&) const>(&V::operator==)),
          Slot(&ZoObject::operator!=)},
         2},
        {"vectors",
         {Slot(&V::Add), Slot(&V::Remove), Slot(&V::Contains), Slot(&V::NItems), Slot(&V::RemoveAll),
          Slot(static_cast<V& (V::*)(const V&)>(&V::operator=)), Slot(&V::Append), Slot(&V::AddUnique),
          Slot(&V::Equal), Slot(&V::Find)}},
    };
    for (const auto& tested : cases) {
        std::ptrdiff_t expected = tested.first;
        for (const std::ptrdiff_t slot : tested.slots) EXPECT_EQ(slot, expected++) << tested.name;
    }
}
#endif

} // namespace
