#include "ZoPrimitives/InputStream.h"

namespace ZoPrimitives {

InputStream::InputStream() = default;
InputStream::~InputStream() = default;

} // namespace ZoPrimitives
