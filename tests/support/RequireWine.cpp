#include "support/RequireWine.h"

#include <cstdio>
#include <cstdlib>

#include "platform/Library.h"

namespace kel::test {

bool IsWine()
{
    return FindLoadedFunction<void()>(L"ntdll.dll", "wine_get_version") != nullptr;
}

void RequireWine()
{
    constexpr int NotHereCode = 77;
    if (IsWine())
        return;
    std::puts("This test changes the machine, which needs Wine.");
    std::fflush(stdout);
    std::_Exit(NotHereCode);
}

}  // namespace kel::test
