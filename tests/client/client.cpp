#include "ZoPrimitives/ZoPrimitives.h"

using namespace ZoPrimitives;

namespace {

class Plan : public ZoStreamableBase {
    REGISTER_ZO_BEGIN(Plan)
    DECLARE_ZO_FIELD(ZoString, title)
    REGISTER_ZO_END
};

/// The comparisons of quantities mean the same in C++17 and C++20.
bool Compares(const GComprimento& a, const GAngulo& b, const Grandeza& base, const ZoObject& object) {
    return a == a && !(a != a) && b == b && a == b && b == a && base == a && b == base && !(base != b) &&
           a == object && object == a && !(b != object) && a == 2.0 && 2.0 == a && a == 2 && 2 == b &&
           b == 2.0 && !(2 != a) && !(b != 2) && a <= 2 && a + b == 4;
}

} // namespace

int main() {
    const GComprimento length(2.0);
    if (!Compares(length, GAngulo(2.0), length, length)) return 2;

    TZoMetaData schema;
    Plan::Register(&schema);
    Plan plan;
    plan.title = "Ground floor";

    TMemoryBinOutStream out(1, 1);
    out.Initialize();
    TBinOutStreamer writer(&out, &schema);
    writer.WriteObjectMetaData(&plan);
    writer.WriteObject(&plan);

    const auto in = CreateMemoryBinInStream(out.GetData(), out.GetSize(), 1);
    TBinInStreamer reader(in.get(), &schema);
    const pointer<ZoStreamableBase> root(reader.ReadObjects());
    const auto* opened = dynamic_cast<Plan*>(root.get());
    return opened != nullptr && opened->title == plan.title ? 0 : 1;
}
