#include "probes/setup/SetupLib.h"

#include <utility>

#include "diag/Log.h"
#include "diag/LogScope.h"
#include "diag/ProcessInstance.h"
#include "diag/SourceFailures.h"

namespace kel {

namespace {

static_assert(sizeof(SP_DEVINFO_DATA) == 32);

constexpr GUID ClassGuid(DWORD first)
{
    return {first, 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}};
}

}  // namespace

SetupLib& SetupLib::Instance()
{
    return ProcessInstance<SetupLib>();
}

SetupLib::SetupLib() : SetupLib(Loader(&SetupEntryPoints::Load)) {}

SetupLib::SetupLib(Loader newLoader) : loader(std::move(newLoader))
{
    if (!Initialize())
        ReportFailure(LogError, L"Failure to initialize SetupLib class");
}

bool SetupLib::Initialize()
{
    try {
        const LogScope trace(L"kel::SetupLib::Initialize");
        if (initialized)
            return true;
        if (!loader(entryPoints)) {
            loadError = GetLastError();
            WriteLog(LogError, L"Failure to load setupapi.dll: ", loadError);
            return false;
        }
        initialized = entryPoints.IsComplete();
        if (!initialized)
            WriteLog(LogError, L"Error getting proc addresses from Setup library.");
    } catch (...) {
        ReportFailure(LogError, L"Error initializing Setup library.");
    }
    return initialized;
}

bool SetupLib::GetDeviceSet(const GUID& deviceClass, OwnedDeviceSet& set)
{
    try {
        const HDEVINFO opened = entryPoints.getClassDevs(&deviceClass, nullptr, nullptr, DIGCF_PRESENT);
        if (opened == INVALID_HANDLE_VALUE) {
            const DWORD error = GetLastError();
            WriteLog(LogWarning, L"SetupDiGetClassDevs failed with error: ", error);
            FailureScope::Note(L"Setup API SetupDiGetClassDevs", error);
            return false;
        }
        set = OwnedDeviceSet(opened, {entryPoints.destroyDeviceInfoList});
        return true;
    } catch (...) {
        ReportFailure(LogError, L"Error in call to SetupDiGetClassDevs.");
        FailureScope::NoteException();
        return false;
    }
}

bool SetupLib::Enumerate(const wchar_t* operation, DWORD deviceClass, const wchar_t* setFailure,
                         const Fill& fill)
{
    return Enumerate(operation, ClassGuid(deviceClass), setFailure, fill);
}

bool SetupLib::Enumerate(const wchar_t* operation, const GUID& deviceClass, const wchar_t* setFailure,
                         const Fill& fill)
{
    if (!initialized) {
        FailureScope::Note(L"Setup API", loadError);
        return false;
    }
    try {
        const LogScope trace((std::wstring(L"kel::SetupLib::") + operation).c_str());
        OwnedDeviceSet set;
        if (!GetDeviceSet(deviceClass, set)) {
            if (setFailure != nullptr)
                WriteLog(LogError, setFailure);
            return false;
        }
        SP_DEVINFO_DATA device = {};
        device.cbSize = sizeof(device);
        bool isWhole = true;
        for (DWORD index = 0; entryPoints.enumDeviceInfo(set.get(), index, &device); ++index) {
            try {
                std::vector<SourceFailure> failures;
                std::vector<SourceFailure>* kept = nullptr;
                CollectFailures(failures, [&] { kept = fill(SetupDevice(entryPoints, set.get(), device)); });
                if (kept != nullptr)
                    AddFailures(*kept, failures);
            } catch (...) {
                isWhole = false;
                ReportFailure(LogError, L"Error in ", operation);
                FailureScope::NoteException();
            }
        }
        return isWhole;
    } catch (...) {
        ReportFailure(LogError, L"Error in ", operation);
        FailureScope::NoteException();
        return false;
    }
}

}  // namespace kel
