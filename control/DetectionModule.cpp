#include "control/DetectionModule.h"

#include <comutil.h>
#include <oleauto.h>

#include <wrl/client.h>
#include <stdexcept>

#include "Detection.h"
#include "control/ClassesRoot.h"
#include "control/Members.h"
#include "control/Registrar.h"
#include "control/RegistrationScript.h"
#include "control/Resources.h"
#include "diag/Log.h"
#include "platform/Library.h"

namespace kel {

namespace {

constexpr LCID TypeLibraryLocale = 0x409;

/// Invisible at run time, and the host sets the client site before anything else.
constexpr unsigned MiscStatus = OLEMISC_INVISIBLEATRUNTIME | OLEMISC_SETCLIENTSITEFIRST;

/// The control runs in its caller's process only; its application id is its class id.
constexpr const wchar_t* ApplicationId = L"{3D7C6027-9644-4282-BC8F-AC0BABB38FDB}";

std::wstring ScriptText()
{
    const HMODULE module = ThisModule();
    const HRSRC resource = FindResourceW(module, MAKEINTRESOURCEW(KEL_REGISTRATION_SCRIPT), L"REGISTRY");
    const HGLOBAL data = resource != nullptr ? LoadResource(module, resource) : nullptr;
    const auto* text = data != nullptr ? static_cast<const char*>(LockResource(data)) : nullptr;
    if (text == nullptr)
        throw std::runtime_error("The registration script is missing.");
    return {text, text + SizeofResource(module, resource)};
}

Registrar::Parameters ScriptParameters()
{
    return {{L"MODULE", CDetectionModule::Path()},
            {L"APPID", ApplicationId},
            {L"OLEMISC", std::to_wstring(MiscStatus)}};
}

void RegisterTypeLibrary()
{
    Microsoft::WRL::ComPtr<ITypeLib> library;
    std::wstring path = CDetectionModule::Path();
    CheckRegistration(LoadTypeLib(path.c_str(), &library), "The type library cannot be loaded.");
    CheckRegistration(::RegisterTypeLib(library.Get(), path.data(), nullptr),
                      "The type library cannot be registered.");
}

template <typename Body>
HRESULT Reported(Body body) noexcept
{
    try {
        body();
        return S_OK;
    } catch (const RegistrationError& error) {
        ReportFailure(LogError, error.what());
        return error.Result();
    } catch (const std::exception& error) {
        ReportFailure(LogError, error.what());
    } catch (...) {
        ReportFailure(LogError, CaughtException);
    }
    return E_FAIL;
}

}  // namespace

CDetectionModule& CDetectionModule::Instance()
{
    static CDetectionModule instance;
    return instance;
}

std::wstring CDetectionModule::Path()
{
    constexpr std::size_t LongestPath = 32768;
    std::wstring path(MAX_PATH, L'\0');
    for (; path.size() <= LongestPath; path.resize(path.size() * 2)) {
        const DWORD length = GetModuleFileNameW(ThisModule(), path.data(), static_cast<DWORD>(path.size()));
        if (length == 0)
            break;
        if (length < path.size()) {
            path.resize(length);
            return path;
        }
    }
    throw std::runtime_error("The module's path is unknown.");
}

HRESULT CDetectionModule::Register(bool forCurrentUser) noexcept
{
    bool isWritten = false;
    const HRESULT result = Reported([forCurrentUser, &isWritten] {
        const ClassesRoot root(forCurrentUser);
        Registrar(root.Key(), ScriptParameters()).Register(RegistrationScript::Parse(ScriptText()));
        isWritten = true;  // a script that fails takes its keys back itself
        RegisterTypeLibrary();
    });
    if (FAILED(result) && isWritten)
        Unregister(forCurrentUser);
    return result;
}

HRESULT CDetectionModule::Unregister(bool forCurrentUser) noexcept
{
    return Reported([forCurrentUser] {
        const ClassesRoot root(forCurrentUser);
        Registrar(root.Key(), ScriptParameters()).Unregister(RegistrationScript::Parse(ScriptText()));
        _bstr_t path;
        const HRESULT found =
            QueryPathOfRegTypeLib(LIBID_DetectionLib, 1, 0, TypeLibraryLocale, path.GetAddress());
        if (found == TYPE_E_LIBNOTREGISTERED)
            return;
        CheckRegistration(found, "The type library cannot be found.");
        CheckRegistration(UnRegisterTypeLib(LIBID_DetectionLib, 1, 0, TypeLibraryLocale, SYS_WIN64),
                          "The type library cannot be unregistered.");
    });
}

}  // namespace kel
