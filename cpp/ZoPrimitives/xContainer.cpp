#include "ZoPrimitives/xContainer.h"

namespace ZoPrimitives {

#define ZO_EMPTY_EXCEPTION_BODY(name)                                                                        \
    name::name() = default;                                                                                  \
    name::name(const name&) = default;                                                                       \
    name& name::operator=(const name&) = default;                                                            \
    name::~name() = default;

ZO_EMPTY_EXCEPTION_BODY(XStreamer)
ZO_EMPTY_EXCEPTION_BODY(XEndSection)
ZO_EMPTY_EXCEPTION_BODY(XInvalidHandle)
ZO_EMPTY_EXCEPTION_BODY(XUnknownObject)
ZO_EMPTY_EXCEPTION_BODY(xContainer)
ZO_EMPTY_EXCEPTION_BODY(xIteratorOverrunContainerLimit)
ZO_EMPTY_EXCEPTION_BODY(xContainerSizeExceeded)
ZO_EMPTY_EXCEPTION_BODY(xFind)
ZO_EMPTY_EXCEPTION_BODY(xObjectNotFoundInContainer)
ZO_EMPTY_EXCEPTION_BODY(xSelect)
ZO_EMPTY_EXCEPTION_BODY(xRegionContainsExceeded)
ZO_EMPTY_EXCEPTION_BODY(xInvalidConversion)

} // namespace ZoPrimitives
