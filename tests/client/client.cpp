#include "ZoPrimitives/ZoPrimitives.h"

using namespace ZoPrimitives;

namespace {

class Plan : public ZoStreamableBase {
    REGISTER_ZO_BEGIN(Plan)
    DECLARE_ZO_FIELD(ZoString, title)
    REGISTER_ZO_END
};

} // namespace

int main() {
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
