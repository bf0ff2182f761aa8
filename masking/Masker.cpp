#include "masking/Masker.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <functional>
#include <utility>

#include "values/Text.h"

namespace kel {

namespace {

constexpr std::size_t MinNameLength = 2;

/// In the order in which they are tried: what holds something else comes first.
constexpr FindingRule* Rules[] = {&FindProfilePath,     &FindNetworkPath, &FindInstance, &FindSerialNumber,
                                  &FindHardwareAddress, &FindAddress6,    &FindAddress4};

const wchar_t* WordOf(MaskedKind kind)
{
    switch (kind) {
        case MaskedKind::Serial:
            return L"serial";
        case MaskedKind::Name:
            return L"name";
        case MaskedKind::Address:
            return L"address";
        default:
            return L"path";
    }
}

std::wstring GetComputerName(COMPUTER_NAME_FORMAT format)
{
    std::array<wchar_t, 256> name = {};
    auto size = static_cast<DWORD>(name.size());
    return GetComputerNameExW(format, name.data(), &size) ? name.data() : L"";
}

std::wstring GetVariable(const wchar_t* variable)
{
    std::array<wchar_t, 1024> text = {};
    const DWORD length = GetEnvironmentVariableW(variable, text.data(), static_cast<DWORD>(text.size()));
    return length < text.size() ? std::wstring(text.data(), length) : std::wstring();
}

}  // namespace

Masker::Masker(std::vector<std::wstring> newNames) : names(std::move(newNames))
{
    std::erase_if(names, [](const std::wstring& name) { return name.size() < MinNameLength; });
    for (std::wstring& name : names)
        name = ToUpper(name);
    std::ranges::stable_sort(names, std::greater(), &std::wstring::size);
}

Masker Masker::OfSystem()
{
    const std::wstring profile = GetVariable(L"USERPROFILE");
    std::array<wchar_t, 257> user = {};  // UNLEN and its zero
    auto size = static_cast<DWORD>(user.size());
    const bool hasUser = GetUserNameW(user.data(), &size) != FALSE;
    return Masker({hasUser ? user.data() : L"", GetVariable(L"USERNAME"), GetVariable(L"USERDOMAIN"),
                   profile.substr(profile.find_last_of(L'\\') + 1), GetComputerName(ComputerNameNetBIOS),
                   GetComputerName(ComputerNameDnsHostname), GetComputerName(ComputerNameDnsDomain)});
}

std::wstring Masker::Mask(std::wstring_view text)
{
    std::wstring masked;
    std::optional<Finding> later;  // found, but behind a part in which there may be more
    bool isInWord = false;
    for (std::size_t place = 0; place < text.size();) {
        std::optional<Finding> found = isInWord ? std::nullopt : FindAt(text, place);
        if (found && found->start > place) {
            later = found;
            found.reset();
        }
        if (later && later->start <= place)
            found = std::exchange(later, std::nullopt);
        if (!found || found->start < place) {
            isInWord = IsWordPart(text[place]);
            masked += text[place++];
            continue;
        }
        masked += MarkerOf(found->kind, text.substr(place, found->length));
        place += found->length;
        isInWord = false;
    }
    return masked;
}

std::vector<std::pair<std::wstring, std::wstring>> Masker::Markers() const
{
    std::vector<std::pair<std::wstring, std::wstring>> all;
    for (const auto& [key, marker] : markers)
        all.emplace_back(marker, key.second);
    return all;
}

std::optional<Finding> Masker::FindAt(std::wstring_view text, std::size_t place) const
{
    for (FindingRule* const rule : Rules) {
        const std::optional<Finding> found = rule(text, place);
        if (found && !(found->kind == MaskedKind::Address &&
                       kept.contains(std::wstring(text.substr(found->start, found->length)))))
            return found;
    }
    return FindName(text, place);
}

std::optional<Finding> Masker::FindName(std::wstring_view text, std::size_t place) const
{
    for (const std::wstring& name : names) {
        const std::size_t end = place + name.size();
        if (end > text.size() || (end < text.size() && IsWordPart(text[end])))
            continue;
        if (ToUpper(std::wstring(text.substr(place, name.size()))) == name)
            return Finding{MaskedKind::Name, place, name.size()};
    }
    return {};
}

const std::wstring& Masker::MarkerOf(MaskedKind kind, std::wstring_view text)
{
    std::wstring& marker = markers[{kind, ToUpper(std::wstring(text))}];
    if (marker.empty())
        marker = std::wstring(L"<") + WordOf(kind) + L" " + std::to_wstring(++counts[kind]) + L">";
    return marker;
}

}  // namespace kel
