#pragma once

#include <string>
#include <string_view>

namespace kel::test {

/// Stands between the DLL and the system, and makes calls fail. As the DLL is loaded, before it runs, its
/// imports are hooked, and later what it looks up by name; it is the DLL that ships. The analysis service is
/// answered from here, and the clock runs fast.
struct EdgeFaults {
    /// Takes effect when the DLL is loaded next.
    static void Install();

    /// Hooks a slot of a table of functions. A name that is not known leaves it as it is.
    static void Hook(void** slot, std::string_view name);

    /// Counts the calls that can fail from now on, and makes one fail.
    /// @param fault "malloc:7" for the seventh call of that function, "any+7" for all allocations from the
    /// seventh on, empty for none; must live on
    static void Arm(std::string_view fault);
    static void Disarm();

    /// What is open, what failed last, and what was called how often.
    static std::string Report();

    static constexpr long Handle = 100000;
    static inline long open = 0;   ///< blocks of memory, and so many for each handle
    static inline int broken = 0;  ///< lines of the log and bodies of requests that were not whole
    static inline bool isLasting = false;
    static inline std::string failed;  ///< the function that failed last
};

}  // namespace kel::test
