#pragma once

namespace ZoPrimitives {

/// How a stream that reads a file shares it with others.
///
/// | is open       | a locking reader | a viewer | a writer in place | a save through a temporary file |
/// |---------------|------------------|----------|-------------------|---------------------------------|
/// | locking       | refused          | opens    | refused           | refused at its end              |
/// | viewing       | opens            | opens    | opens             | succeeds                        |
/// | being written | refused          | opens    | refused           | refused at its end              |
enum class TFileReading {
    /// The file is locked against writers and other locking readers. A read-only file is viewed instead.
    Locking,
    /// The file is opened for reading only and keeps nobody out. A stream that has loaded the file keeps what
    /// it read, whatever others write. While a save is replacing the file, opening waits up to a second for
    /// it to finish; a file that is being written in place is seen as far as it is written.
    Viewing,
};

} // namespace ZoPrimitives
