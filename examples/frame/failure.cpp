#include "failure.h"

#include "words.h"

#include "ZoPrimitives/ZoUtf8.h"

namespace Frame {

using namespace ZoPrimitives;

std::string Detail(const XStream& error) {
    return ZoToUtf8(error.Location()) + ": " + ZoToUtf8(error.Message());
}

std::string Remedy(const XStream& error) {
    switch (error.Kind()) {
    case TStreamFailure::NotFound:
        return Words("look whether it is there, and its folder.");
    case TStreamFailure::Denied:
        return Words("look whether it is read-only, and whether you may use its folder.");
    case TStreamFailure::InUse:
        return Words("another program has it open.");
    case TStreamFailure::DiskFull:
        return Words("the disk is full.");
    default:
        return Words("look whether its name and its disk are in order.");
    }
}

} // namespace Frame
