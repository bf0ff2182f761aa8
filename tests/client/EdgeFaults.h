#pragma once

#include <cstdlib>
#include <string>
#include <string_view>

namespace kel::test {

/// Sits between the DLL and the system, and makes calls fail. The imports of the DLL, which is the one that
/// ships, are hooked while it is loaded, before it runs; functions that it looks up by name are hooked later.
/// The stubs also answer for the analysis service, and the clock runs fast.
struct EdgeFaults {
    /// Takes effect when the DLL is loaded next.
    static void Install();

    /// Counts the calls that can fail from now on, and makes one fail.
    /// @param fault "malloc:7" for the seventh call of that function, "any+7" for all allocations from the
    /// seventh on; null for none
    static void Arm(const char* fault = std::getenv("KEL_FAULT"));

    /// Prints what is open and what is incomplete, what failed last, and how often each function was called
    /// when it could have failed: -1 for one that was never called.
    static void Report();

    /// Whether the DLL has called one of the functions that are replaced.
    static bool WasCalled(std::string_view function);

    static bool FailsTexts() { return isLasting || failed == "SysAllocStringLen"; }

    static inline bool isArmed = false, isLasting = false;
    static inline std::string failed;  ///< the function that failed last
    static inline std::wstring log;    ///< the lines that the DLL wrote
    static inline std::string sent;    ///< the body of the last request that had one
    static inline int withLogon = 0;   ///< connections and requests that may send the user's logon
};

}  // namespace kel::test
