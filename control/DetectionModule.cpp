#include "control/DetectionModule.h"

#include <oleidl.h>

#include <stdexcept>

#include "control/ClassesRoot.h"
#include "control/Members.h"
#include "control/Registrar.h"
#include "control/RegistrationScript.h"
#include "control/Resources.h"
#include "control/TypeLibraryRegistrar.h"
#include "diag/Log.h"
#include "platform/Library.h"

namespace kel {

namespace {

/// The class shows nothing at run time, and needs no other OLE flag.
constexpr unsigned MiscStatus = OLEMISC_INVISIBLEATRUNTIME;

/// The control runs only in its caller's process; its application id is its class id.
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

std::vector<ScriptKey> ReadScript()
{
    return RegistrationScript::Parse(ScriptText(), {{L"MODULE", CDetectionModule::Path()},
                                                    {L"APPID", ApplicationId},
                                                    {L"OLEMISC", std::to_wstring(MiscStatus)}});
}

/// Runs a registration. An exception is logged, and becomes the result.
template <typename Body>
HRESULT CatchFailures(Body body) noexcept
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
    constexpr std::size_t MaxPathLength = 32768;
    std::wstring path(MAX_PATH, L'\0');
    for (; path.size() <= MaxPathLength; path.resize(path.size() * 2)) {
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
    const HRESULT result = CatchFailures([forCurrentUser, &isWritten] {
        const ClassesRoot root(forCurrentUser);
        Registrar(root.Key()).Register(ReadScript());
        isWritten = true;  // a script that fails removes its own keys
        TypeLibraryRegistrar(forCurrentUser).Register(Path());
    });
    if (FAILED(result) && isWritten)
        Unregister(forCurrentUser);
    return result;
}

HRESULT CDetectionModule::RegisterScript() noexcept
{
    return CatchFailures([] { Registrar(HKEY_CLASSES_ROOT).Register(ReadScript()); });
}

HRESULT CDetectionModule::UnregisterScript() noexcept
{
    return CatchFailures([] { Registrar(HKEY_CLASSES_ROOT).Unregister(ReadScript()); });
}

HRESULT CDetectionModule::Unregister(bool forCurrentUser) noexcept
{
    return CatchFailures([forCurrentUser] {
        const ClassesRoot root(forCurrentUser);
        Registrar(root.Key()).Unregister(ReadScript());
        TypeLibraryRegistrar(forCurrentUser).Unregister();
    });
}

}  // namespace kel
