#include "kit/WmiAnswers.h"

#include <windows.h>

#include <comutil.h>
#include <wrl/client.h>

#include <algorithm>
#include <cstdlib>

#include "kit/Text.h"
#include "probes/Variant.h"
#include "probes/wmi/WMI.h"
#include "service/Utf8.h"
#include "verdict/text/Text.h"

namespace kel::kit {

namespace {

constexpr std::string_view Sum = "sum ";
constexpr std::string_view Count = "count ";
constexpr std::string_view Largest = "max ";

}  // namespace

Answer AskWmi(const std::string& expression)
{
    const std::string query = expression.substr(expression.find("SELECT "));
    const std::wstring property = FromUtf8(SplitFields(query, ' ')[1]);
    Microsoft::WRL::ComPtr<IEnumWbemClassObject> objects;
    if (!WMI::Instance().Query(FromUtf8(query).c_str(), &objects) || !objects)
        return {{}, "WMI refuses the query"};
    Answer answer;
    std::uint64_t sum = 0;
    std::uint64_t largest = 0;
    std::size_t count = 0;
    for (;; ++count) {
        Microsoft::WRL::ComPtr<IWbemClassObject> object;
        ULONG returned = 0;
        if (objects->Next(static_cast<LONG>(WBEM_INFINITE), 1, &object, &returned) != WBEM_S_NO_ERROR)
            break;
        _variant_t value;
        if (!WMI::GetProperty(object.Get(), property.c_str(), &value))
            continue;
        const std::string text(Trim(ToUtf8(ShowVariant(value))));
        const std::uint64_t number = std::strtoull(text.c_str(), nullptr, 10);
        sum += number;
        largest = std::max(largest, number);
        if (!text.empty())
            answer.texts.push_back(text);
    }
    const bool isNumber = !answer.texts.empty();
    if (expression.starts_with(Count))
        answer.texts = {std::to_string(count)};
    else if (isNumber && expression.starts_with(Sum))
        answer.texts = {std::to_string(sum)};
    else if (isNumber && expression.starts_with(Largest))
        answer.texts = {std::to_string(largest)};
    return answer;
}

}  // namespace kel::kit
