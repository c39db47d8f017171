// The numbers by which the system knows open files.

#pragma once

namespace quillon {

/// Whether opening the file has succeeded.
constexpr bool IsOpen(int descriptor)
{
    return descriptor >= 0;
}

}  // namespace quillon
