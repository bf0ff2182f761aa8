#include "probes/graphics/MonitorInfo.h"

#include "values/Text.h"

namespace kel {

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
