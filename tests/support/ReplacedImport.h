#pragma once

#include <windows.h>

#include <memory>
#include <type_traits>

namespace kel::test {

/// Puts another function in the place of one that the test program imports, until the result is destroyed.
/// @param slot where the program's code finds the function: "__imp_" and its name
template <typename Function>
std::shared_ptr<void> ReplaceImport(Function*& slot, std::type_identity_t<Function>* replacement)
{
    const auto set = [&slot](Function* function) {
        DWORD protection = 0;
        VirtualProtect(&slot, sizeof(slot), PAGE_READWRITE, &protection);
        slot = function;
        VirtualProtect(&slot, sizeof(slot), protection, &protection);
    };
    const std::shared_ptr<void> owner(&slot, [set, original = slot](void*) { set(original); });
    set(replacement);
    return owner;
}

}  // namespace kel::test
