#pragma once

namespace ZoPrimitives {

/// Notes advice, as `printf` makes it, for the assertion that this thread fails next
/// (`XZoAssertFailed::Advice`), cut to its room.
void NoteAdvice(const char* format, ...) noexcept;

} // namespace ZoPrimitives
