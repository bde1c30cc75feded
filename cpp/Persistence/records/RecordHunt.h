#pragma once

#include "ZoPrimitives/BinInStream.h"

namespace ZoPrimitives {

/// The locations in the exceptions for a record that is not whole, by the part that is missing.
struct TBinInStream::FailurePoints {
    const char* size;
    const char* crc;
    const char* classId;
    const char* uid;
    const char* key;
    const char* payload;
    const char* passedPayload; // of a record that the filter does not take
};

/// Tells which records are asked for.
class RecordFilter {
public:
    virtual bool Takes(int classId) const = 0;

protected:
    ~RecordFilter() = default;
};

} // namespace ZoPrimitives
