#pragma once

#include <windows.h>

#include "platform/Handles.h"

namespace kel {

/// Loads some of the system's libraries on a thread of its own, for code that needs them later, while the
/// thread that makes this object is busy otherwise. They stay loaded. If a library is missing, or no thread
/// can be created, the code that needs a library loads it.
class LibraryPreload {
public:
    /// @param names literals, with null behind the last one
    explicit LibraryPreload(const wchar_t* const* names) noexcept;
    LibraryPreload(const LibraryPreload&) = delete;
    LibraryPreload& operator=(const LibraryPreload&) = delete;
    /// Waits until they are loaded, for two seconds at most: in a host that holds the loader's lock, they
    /// are loaded only after this thread goes on.
    ~LibraryPreload();

private:
    OwnedHandle thread;
};

}  // namespace kel
