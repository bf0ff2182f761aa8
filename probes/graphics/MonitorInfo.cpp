#include "probes/graphics/MonitorInfo.h"

#include "values/Text.h"

namespace kel {

Resolution KnownMode(std::uint32_t width, std::uint32_t height)
{
    constexpr std::uint32_t MinWidth = 320;
    constexpr std::uint32_t MinHeight = 200;
    return width >= MinWidth && height >= MinHeight ? Resolution(width, height) : Resolution();
}

std::wstring InstanceOfPath(const std::wstring& path)
{
    const std::wstring prefix = L"\\\\?\\";
    const std::size_t end = path.rfind(L'#');
    if (!path.starts_with(prefix) || end == std::wstring::npos)
        return {};
    std::wstring instance = ToUpper(path.substr(prefix.size(), end - prefix.size()));
    ReplaceAll(instance, L"#", L"\\");
    return instance;
}

}  // namespace kel
