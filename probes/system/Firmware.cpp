#include "probes/system/Firmware.h"

#include <cstring>

#include "diag/SourceFailures.h"
#include "platform/Library.h"
#include "platform/RegistryValue.h"

namespace kel {

namespace {

static_assert(sizeof(TpmInfo) == 16);

constexpr const wchar_t* SecureBootKey = L"SYSTEM\\CurrentControlSet\\Control\\SecureBoot\\State";
constexpr const wchar_t* UefiKind = L"UEFI";
constexpr const wchar_t* BiosKind = L"BIOS";
constexpr DWORD BiosType = 1;
constexpr DWORD UefiType = 2;
constexpr std::uint32_t TpmInfoVersion = 1;
constexpr std::uint32_t TpmNotFound = 0x8028400F;  // TBS_E_TPM_NOT_FOUND

DWORD AskVariable()
{
    SetLastError(ERROR_SUCCESS);
    GetFirmwareEnvironmentVariableW(L"", L"{00000000-0000-0000-0000-000000000000}", nullptr, 0);
    return GetLastError();
}

std::uint32_t AskTpm(TpmInfo& info)
{
    using GetDeviceInfo = std::uint32_t WINAPI(std::uint32_t size, void* info);
    static auto* const get = PermanentFunction<GetDeviceInfo>(L"tbs.dll", "Tbsi_GetDeviceInfo");
    return get != nullptr ? get(sizeof(info), &info) : ERROR_CALL_NOT_IMPLEMENTED;
}

/// Windows 7 has no function for the type. There the error of a request for a variable shows it: a BIOS does
/// not know the request, UEFI refuses it.
Name ReadKind(const FirmwareFunctions& functions)
{
    DWORD type = 0;
    if (functions.getFirmwareType) {
        const bool isRead = functions.getFirmwareType(type) != FALSE;
        if (!isRead)
            FailureScope::Note(L"GetFirmwareType", GetLastError());
        if (!isRead || (type != BiosType && type != UefiType))
            return {};
        return Name(type == UefiType ? UefiKind : BiosKind);
    }
    const DWORD error = functions.getVariableError();
    if (error == ERROR_INVALID_FUNCTION)
        return Name(BiosKind);
    if (error == ERROR_NOACCESS || error == ERROR_PRIVILEGE_NOT_HELD)
        return Name(UefiKind);
    FailureScope::Note(L"GetFirmwareEnvironmentVariableW", error);
    return {};
}

std::optional<bool> ReadSecureBoot(const Name& kind)
{
    const OwnedKey key = OpenKey(HKEY_LOCAL_MACHINE, SecureBootKey, KEY_READ);
    const std::optional<RegistryValue> value =
        key ? ReadValue(key.get(), L"UEFISecureBootEnabled") : std::nullopt;
    DWORD number = 0;
    if (value && value->type == REG_DWORD && value->bytes.size() == sizeof(number)) {
        std::memcpy(&number, value->bytes.data(), sizeof(number));
        return number != 0;
    }
    return kind == Name(BiosKind) ? std::optional(false) : std::nullopt;
}

}  // namespace

FirmwareFunctions FirmwareFunctions::OfSystem()
{
    FirmwareFunctions functions;
    if (auto* const get = FindLoadedFunction<BOOL WINAPI(DWORD*)>(L"kernel32.dll", "GetFirmwareType"))
        functions.getFirmwareType = [get](DWORD& type) { return get(&type); };
    functions.getVariableError = &AskVariable;
    functions.getTpm = &AskTpm;
    return functions;
}

FirmwareInfo ReadFirmware(const FirmwareFunctions& functions)
{
    FirmwareInfo info;
    info.kind = ReadKind(functions);
    info.hasSecureBoot = ReadSecureBoot(info.kind);
    TpmInfo tpm = {TpmInfoVersion, 0, 0, 0};
    const std::uint32_t status = functions.getTpm(tpm);
    if (status == ERROR_SUCCESS || status == TpmNotFound)
        info.hasTpm = status == ERROR_SUCCESS;
    else
        FailureScope::Note(L"Tbsi_GetDeviceInfo", status);
    if (status == ERROR_SUCCESS && (tpm.tpmVersion == 1 || tpm.tpmVersion == 2))
        info.tpmVersion = Version(tpm.tpmVersion == 1 ? L"1.2" : L"2.0");
    return info;
}

}  // namespace kel
