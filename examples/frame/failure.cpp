#include "failure.h"

#include "ZoPrimitives/ZoUtf8.h"

namespace Frame {

using namespace ZoPrimitives;

std::string Detail(const XStream& error) {
    return ZoToUtf8(error.Location()) + ": " + ZoToUtf8(error.Message());
}

std::string Remedy(const XStream& error) {
    switch (error.Kind()) {
    case TStreamFailure::NotFound:
        return "look whether it is there, and its folder.";
    case TStreamFailure::Denied:
        return "look whether it is read-only, and whether you may use its folder.";
    case TStreamFailure::InUse:
        return "another program has it open.";
    case TStreamFailure::DiskFull:
        return "the disk is full.";
    default:
        return "look whether its name and its disk are in order.";
    }
}

} // namespace Frame
