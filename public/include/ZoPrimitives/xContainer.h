#pragma once

#include "ZoPrimitives/Export.h"

namespace ZoPrimitives {

// Structural failures; the class itself is the message.

#define ZO_EMPTY_EXCEPTION_ROOT(name)                                                                        \
    class ZO_API name {                                                                                      \
    public:                                                                                                  \
        name();                                                                                              \
        name(const name&);                                                                                   \
        name& operator=(const name&);                                                                        \
        virtual ~name();                                                                                     \
    };
#define ZO_EMPTY_EXCEPTION(name, base)                                                                       \
    class ZO_API name : public base {                                                                        \
    public:                                                                                                  \
        name();                                                                                              \
        name(const name&);                                                                                   \
        name& operator=(const name&);                                                                        \
        ~name() override;                                                                                    \
    };

ZO_EMPTY_EXCEPTION_ROOT(XStreamer)            ///< base of the object streamers' failures
ZO_EMPTY_EXCEPTION(XEndSection, XStreamer)    ///< end of a section reached
ZO_EMPTY_EXCEPTION(XInvalidHandle, XStreamer) ///< invalid object handle
ZO_EMPTY_EXCEPTION(XUnknownObject, XStreamer) ///< unknown object (class)

ZO_EMPTY_EXCEPTION_ROOT(xContainer)                            ///< base of the containers' failures
ZO_EMPTY_EXCEPTION(xIteratorOverrunContainerLimit, xContainer) ///< advanced past the end of a container
ZO_EMPTY_EXCEPTION(xContainerSizeExceeded, xContainer)         ///< a size limit was exceeded
ZO_EMPTY_EXCEPTION(xFind, xContainer)                          ///< a search failed
ZO_EMPTY_EXCEPTION(xObjectNotFoundInContainer, xContainer) ///< an object expected in a container is absent
ZO_EMPTY_EXCEPTION(xSelect, xContainer)                    ///< a selection failed

ZO_EMPTY_EXCEPTION_ROOT(xRegionContainsExceeded) ///< a region containment test exceeded its limit
ZO_EMPTY_EXCEPTION_ROOT(xInvalidConversion)      ///< a value could not be converted

#undef ZO_EMPTY_EXCEPTION
#undef ZO_EMPTY_EXCEPTION_ROOT

} // namespace ZoPrimitives
