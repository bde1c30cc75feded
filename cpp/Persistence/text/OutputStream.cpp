#include "ZoPrimitives/OutputStream.h"

namespace ZoPrimitives {

OutputStream::OutputStream() = default;
OutputStream::~OutputStream() = default;

} // namespace ZoPrimitives
