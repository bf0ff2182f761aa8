#pragma once

#include <string>
#include <string_view>

namespace kel::test {

/// Stands between the DLL and the system, and makes calls fail. As the DLL is loaded, before it runs, its
/// imports are led here, and later what it looks up by name; it is the DLL that ships. The analysis service
/// is answered from here, and the clock runs fast.
struct EdgeFaults {
    /// Takes effect when the DLL is loaded next.
    static void Install();

    /// Leads a slot of a table of functions here. A name that is not known leaves it as it is.
    static void Lead(void** slot, std::string_view name);

    /// Counts the calls that can fail from now on; from the first to the last, they do. Where these are more
    /// than one, only allocations count, and fail.
    static void Arm(long first, long last);

    static constexpr long Handle = 100000;
    static inline long open = 0;       ///< blocks of memory, and so many for each handle
    static inline int broken = 0;      ///< lines of the log and bodies of requests that were not whole
    static inline std::string failed;  ///< the function that failed last
};

}  // namespace kel::test
