#include "run/ConfigurationTags.h"

#include "diag/Log.h"

namespace kel {

bool ExtractTag(const std::wstring& text, std::wstring_view openTag, std::wstring_view closeTag,
                std::wstring& value)
{
    value.clear();
    const std::size_t start = text.find(openTag);
    const bool hasOpen = start != std::wstring::npos;
    const std::size_t end = hasOpen ? text.find(closeTag, start) : 0;
    const bool isClosed = !hasOpen || (end != std::wstring::npos && end > start);
    if (isClosed) {
        WriteLog(LogTrace, L"len= ", openTag.size());
        WriteLog(LogTrace, L"s= ", hasOpen ? static_cast<long long>(start) : -1LL);
        WriteLog(LogTrace, L"e= ", end);
        const std::size_t inner = start + openTag.size();
        if (hasOpen && end > inner)
            value = text.substr(inner, end - inner);
    }
    WriteLog(LogTrace, L"value= ", value);
    return !value.empty();
}

}  // namespace kel
