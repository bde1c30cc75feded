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

template <class... Members>
Slots Of(Members... members) {
    return {Slot(members)...};
}

// For what is protected.
struct Object : ZoStreamableBase {
    using ZoStreamableBase::ReadData;
};
struct InStream : TBinInStream {
    using TBinInStream::LoadHeader;
    using TBinInStream::Read;
};
struct InStreamer : TBinInStreamer {
    using TBinInStreamer::CreateInstance;
};

TEST(SlotTests, WhatApplicationsOverrideStandsWhereTheyWereCompiledToFindIt) {
    using B = ZoStreamableBase;
    using S = ZoObjectStreamable;
    using F = TZoClassField;
    using I = InputStream;
    using O = TBinOutStream;
    using V = TDVector<int>;
    // The first ones stand behind two for destruction and two comparisons.
    const std::tuple<const char*, std::ptrdiff_t, Slots> cases[] = {
        {"comparisons", 2,
         Of(static_cast<bool (ZoObject::*)(const ZoObject&) const>(&V::operator==), &ZoObject::operator!=)},
        {"vectors", 4,
         Of(&V::Add, &V::Remove, &V::Contains, &V::NItems, &V::RemoveAll,
            static_cast<V& (V::*)(const V&)>(&V::operator=), &V::Append, &V::AddUnique, &V::Equal, &V::Find)},
        {"record writer, values", 4,
         Putting<O, const ZoBlob&, const ZoString&, const char*, short, unsigned short, int, unsigned, float,
                 double, long double, bool>()},
        {"record writer", 15,
         Of(&O::FlushRecord, &O::FlushBuffer, &O::FreeResourses, &O::Initialize, &O::SaveHeader)},
        {"record reader, values", 4,
         Taking<TBinInStream, ZoBlob&, ZoString&, char*, short&, unsigned short&, int&, unsigned&, float&,
                double&, long double&, bool&>()},
        {"record reader", 15, Of(&InStream::LoadHeader, &InStream::Read)},
        {"text writer", 4,
         Putting<OutputStream, const ZoString&, const char*, long double, double, float, unsigned, int,
                 unsigned short, short, bool>()},
        {"text reader, values", 4,
         Taking<I, ZoString&, char*, long double&, double&, float&, unsigned&, int&, unsigned short&, short&,
                bool&>()},
        {"text reader", 14, Of(&I::SkipValue, &I::GetLine, &I::CheckRead)},
        {"streamable objects", 4,
         Of(&B::StreamableClassName, &B::Write, &B::WillWrite, &B::Read, &B::GetIsValid, &B::GetClass,
            &B::GetOriginalClass, &B::OnRead, &B::CanBeConvertedToBaseClass, &B::OnReadPointer,
            &B::HandleExcludedField, &B::CheckForExcludedFields, &B::ToString, &Object::ReadData,
            &S::CreateBusinessObject, &S::FillBusinessObject, &S::FillFromBusinessObject)},
        {"fields", 4, Of(&F::SaveToStream, &F::LoadFromStream, &F::GetFieldMetaData)},
        {"object writer", 4, Of(&TBinOutStreamer::OnAfterSaveInstance, &TBinOutStreamer::RewriteHeader)},
        {"object reader", 4,
         Of(&TBinInStreamer::OnAfterLoadInstance, &TBinInStreamer::OnAfterResolveInstance,
            &InStreamer::CreateInstance)},
        {"filtered reader", 4, Of(&TFilteredBinInStreamer::Read)},
        {"an interface, where destruction comes last", 0,
         Of(&IStreamableConvertionFactory::CreateStreamable)},
    };
    for (auto [name, expected, slots] : cases)
        for (const std::ptrdiff_t slot : slots) EXPECT_EQ(slot, expected++) << name;
}
#endif

} // namespace
