#pragma once

#include <windows.h>

#include <span>

#include "platform/Handles.h"

namespace kel {

/// Loads some of the system's libraries on a thread of its own, for code that needs them later, while the
/// thread that makes this object is busy otherwise. They stay loaded. If a library is missing, or no thread
/// can be created, the code that needs a library loads it.
class LibraryPreload {
public:
    struct List {
        std::span<const wchar_t* const> libraries;
        std::span<const CLSID> classes;  ///< whose libraries load others when their class is asked for
    };

    /// @param list lives as long as the process
    explicit LibraryPreload(const List& list) noexcept;
    LibraryPreload(const LibraryPreload&) = delete;
    LibraryPreload& operator=(const LibraryPreload&) = delete;
    /// Waits until they are loaded, for two seconds at most: in a host that holds the loader's lock, they
    /// are loaded only after this thread goes on.
    ~LibraryPreload();

private:
    OwnedHandle thread;
};

}  // namespace kel
