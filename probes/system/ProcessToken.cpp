#include "probes/system/ProcessToken.h"

#include <array>
#include <cstddef>
#include <span>
#include <vector>

#include "platform/Handles.h"

namespace kel {

namespace {

OwnedHandle OpenToken()
{
    HANDLE token = nullptr;
    return OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token) ? OwnedHandle(token) : OwnedHandle();
}

}  // namespace

std::optional<TOKEN_ELEVATION_TYPE> ReadElevation()
{
    const OwnedHandle token = OpenToken();
    TOKEN_ELEVATION_TYPE type = TokenElevationTypeDefault;
    DWORD size = 0;
    if (!token || !GetTokenInformation(token.get(), TokenElevationType, &type, sizeof(type), &size))
        return {};
    return type;
}

std::optional<DWORD> ReadAdministrators()
{
    std::array<std::byte, SECURITY_MAX_SID_SIZE> administrators{};
    auto sidSize = static_cast<DWORD>(administrators.size());
    const OwnedHandle token = OpenToken();
    if (!token || !CreateWellKnownSid(WinBuiltinAdministratorsSid, nullptr, administrators.data(), &sidSize))
        return {};
    DWORD size = 0;
    GetTokenInformation(token.get(), TokenGroups, nullptr, 0, &size);
    std::vector<std::byte> buffer(size + sizeof(TOKEN_GROUPS));
    auto* const groups = reinterpret_cast<TOKEN_GROUPS*>(buffer.data());
    if (!GetTokenInformation(token.get(), TokenGroups, groups, static_cast<DWORD>(buffer.size()), &size))
        return {};
    for (const SID_AND_ATTRIBUTES& group : std::span(groups->Groups, groups->GroupCount)) {
        if (EqualSid(group.Sid, administrators.data()))
            return group.Attributes;
    }
    return 0;
}

}  // namespace kel
