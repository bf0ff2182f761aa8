#include "control/TypeLibraryRegistrar.h"

#include <comutil.h>
#include <wrl/client.h>

#include "Detection.h"
#include "control/Registrar.h"
#include "platform/Library.h"

namespace kel {

namespace {

constexpr LCID TypeLibraryLocale = 0x409;

}  // namespace

TypeLibraryRegistrar::TypeLibraryRegistrar(bool forCurrentUser) noexcept
{
    if (!forCurrentUser)
        return;
    const auto addForUser =
        FindLoadedFunction<decltype(::RegisterTypeLib)>(L"oleaut32.dll", "RegisterTypeLibForUser");
    const auto removeForUser =
        FindLoadedFunction<decltype(::UnRegisterTypeLib)>(L"oleaut32.dll", "UnRegisterTypeLibForUser");
    if (addForUser == nullptr || removeForUser == nullptr)
        return;
    add = addForUser;
    remove = removeForUser;
}

void TypeLibraryRegistrar::Register(std::wstring path) const
{
    Microsoft::WRL::ComPtr<ITypeLib> typeLibrary;
    CheckRegistration(LoadTypeLib(path.c_str(), &typeLibrary), "The type library cannot be loaded.");
    CheckRegistration(add(typeLibrary.Get(), path.data(), nullptr), "The type library cannot be registered.");
}

void TypeLibraryRegistrar::Unregister() const
{
    _bstr_t path;
    const HRESULT found =
        QueryPathOfRegTypeLib(LIBID_DetectionLib, 1, 0, TypeLibraryLocale, path.GetAddress());
    if (found == TYPE_E_LIBNOTREGISTERED)
        return;
    CheckRegistration(found, "The type library cannot be found.");
    CheckRegistration(remove(LIBID_DetectionLib, 1, 0, TypeLibraryLocale, SYS_WIN64),
                      "The type library cannot be unregistered.");
}

}  // namespace kel
