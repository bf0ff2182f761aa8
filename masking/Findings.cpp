#include "masking/Findings.h"

#include <algorithm>
#include <string>

#include "values/Text.h"

namespace kel {

namespace {

constexpr std::wstring_view ProfileRoots[] = {L":\\USERS\\", L":\\DOCUMENTS AND SETTINGS\\", L":\\HOME\\",
                                              L":/USERS/", L":\\\\USERS\\\\"};
/// The buses under which the system lists devices.
constexpr std::wstring_view Buses[] = {
    L"PCI",  L"USB",       L"USBSTOR", L"USBPRINT",   L"HDAUDIO", L"INTELAUDIO", L"SCSI",   L"IDE",
    L"ACPI", L"STORAGE",   L"DISPLAY", L"MONITOR",    L"HID",     L"BTHENUM",    L"BTHLE",  L"BTHLEDEVICE",
    L"BTH",  L"BTHHFENUM", L"SWD",     L"SW",         L"ROOT",    L"UMB",        L"NVME",   L"SD",
    L"MMC",  L"1394",      L"PCMCIA",  L"WPDBUSENUM", L"VMBUS",   L"XENBUS",     L"VIRTIO", L"SBP2"};
constexpr std::wstring_view EndsOfPath = L"\"<>|*?;\r\n\t";
constexpr std::size_t MacDigits = 12;

bool IsDigit(wchar_t character)
{
    return character >= L'0' && character <= L'9';
}

bool IsHexDigit(wchar_t character)
{
    return IsDigit(character) || (character >= L'a' && character <= L'f') ||
           (character >= L'A' && character <= L'F');
}

wchar_t At(std::wstring_view text, std::size_t place)
{
    return place < text.size() ? text[place] : L'\0';
}

bool StartsWith(std::wstring_view text, std::size_t place, std::wstring_view upperCase)
{
    return ToUpper(std::wstring(text.substr(std::min(place, text.size()), upperCase.size()))) == upperCase;
}

/// The first place from here on whose character a rule does not take.
template <typename Takes>
std::size_t SkipWhile(std::wstring_view text, std::size_t place, Takes takes)
{
    while (place < text.size() && takes(text[place]))
        ++place;
    return place;
}

std::size_t EndOfPath(std::wstring_view text, std::size_t place)
{
    const std::size_t end = std::min(text.find_first_of(EndsOfPath, place), text.size());
    return std::min(end, text.find(L", ", place));
}

/// The end of six pairs of digits with a mark between them; 0 where there are none.
std::size_t EndOfPairs(std::wstring_view text, std::size_t place, wchar_t mark)
{
    for (std::size_t pair = 0; pair < MacDigits / 2; ++pair, place += 2) {
        if (pair > 0 && At(text, place++) != mark)
            return 0;
        if (!IsHexDigit(At(text, place)) || !IsHexDigit(At(text, place + 1)))
            return 0;
    }
    return IsWordPart(At(text, place)) || At(text, place) == mark ? 0 : place;
}

/// The end of a word that a text begins with; 0 when it is none of the buses.
std::size_t EndOfBus(std::wstring_view text, std::size_t place)
{
    const std::size_t end = SkipWhile(text, place, &IsWordPart);
    const std::wstring bus = ToUpper(std::wstring(text.substr(place, end - place)));
    return std::ranges::count(Buses, bus) > 0 ? end : 0;
}

}  // namespace

bool IsWordPart(wchar_t character)
{
    return IsDigit(character) || (character >= L'a' && character <= L'z') ||
           (character >= L'A' && character <= L'Z') || character >= 0x80;
}

std::optional<Finding> FindProfilePath(std::wstring_view text, std::size_t place)
{
    const wchar_t drive = At(text, place);
    if (At(text, place + 1) != L':' || !IsWordPart(drive) || IsDigit(drive))
        return {};
    const bool isProfile = std::ranges::any_of(
        ProfileRoots, [&](std::wstring_view root) { return StartsWith(text, place + 1, root); });
    return isProfile ? std::optional(Finding{MaskedKind::Path, place, EndOfPath(text, place) - place})
                     : std::nullopt;
}

std::optional<Finding> FindNetworkPath(std::wstring_view text, std::size_t place)
{
    if (At(text, place) != L'\\' || At(text, place + 1) != L'\\' || !IsWordPart(At(text, place + 2)))
        return {};
    const std::size_t server = SkipWhile(
        text, place + 2, [](wchar_t mark) { return IsWordPart(mark) || mark == L'-' || mark == L'.'; });
    if (At(text, server) != L'\\')
        return {};
    return Finding{MaskedKind::Path, place, EndOfPath(text, place) - place};
}

std::optional<Finding> FindInstance(std::wstring_view text, std::size_t place)
{
    const std::size_t bus = EndOfBus(text, place);
    const wchar_t mark = At(text, bus);
    if (bus == 0 || (mark != L'\\' && mark != L'#'))
        return {};
    const auto isPart = [mark](wchar_t character) {
        return character != mark && character > L' ' && EndsOfPath.find(character) == EndsOfPath.npos;
    };
    // Hardware ids of disks hold blanks only as underscores, so a part ends at a blank.
    const std::size_t ids = SkipWhile(text, bus + 1, isPart);
    if (At(text, ids) != mark)
        return {};
    const std::size_t end = SkipWhile(text, ids + 1, isPart);
    return end > ids + 1 ? std::optional(Finding{MaskedKind::Serial, ids + 1, end - ids - 1}) : std::nullopt;
}

std::optional<Finding> FindSerialNumber(std::wstring_view text, std::size_t place)
{
    constexpr std::wstring_view Word = L"SERIAL";
    constexpr std::wstring_view Number = L"NUMBER";
    if (!StartsWith(text, place, Word))
        return {};
    const auto isBlank = [](wchar_t character) { return character == L' '; };
    std::size_t next = SkipWhile(text, place + Word.size(), isBlank);
    if (StartsWith(text, next, Number))
        next = SkipWhile(text, next + Number.size(), isBlank);
    if (At(text, next) != L':' && At(text, next) != L'=')
        return {};
    const std::size_t start = SkipWhile(text, next + 1, isBlank);
    const std::size_t end = SkipWhile(text, start, [](wchar_t character) {
        return character > L' ' && EndsOfPath.find(character) == EndsOfPath.npos && character != L',';
    });
    return end > start ? std::optional(Finding{MaskedKind::Serial, start, end - start}) : std::nullopt;
}

std::optional<Finding> FindHardwareAddress(std::wstring_view text, std::size_t place)
{
    if (!IsHexDigit(At(text, place)))
        return {};
    for (const wchar_t mark : {L'-', L':'}) {
        if (const std::size_t end = EndOfPairs(text, place, mark); end != 0)
            return Finding{MaskedKind::Address, place, end - place};
    }
    const std::size_t end = SkipWhile(text, place, &IsHexDigit);
    if (end - place != MacDigits || IsWordPart(At(text, end)))
        return {};
    // The last part of a GUID and a number of bytes are as long.
    const wchar_t before = place > 0 ? text[place - 1] : L' ';
    const bool isNumber = SkipWhile(text, place, &IsDigit) == end;
    const bool isInId = before == L'_' || before == L'&' || before == L'\\' || before == L'#';
    if (before == L'-' || (isNumber && !isInId))
        return {};
    return Finding{MaskedKind::Address, place, MacDigits};
}

std::optional<Finding> FindAddress4(std::wstring_view text, std::size_t place)
{
    if (place > 0 && text[place - 1] == L'.')
        return {};
    std::size_t end = place;
    for (int part = 0; part < 4; ++part) {
        if (part > 0 && At(text, end++) != L'.')
            return {};
        const std::size_t digits = SkipWhile(text, end, &IsDigit);
        if (digits == end || digits - end > 3 ||
            ToUnsigned(std::wstring(text.substr(end, digits - end))) > 255)
            return {};
        end = digits;
    }
    const bool goesOn = IsWordPart(At(text, end)) || (At(text, end) == L'.' && IsDigit(At(text, end + 1)));
    return goesOn ? std::nullopt : std::optional(Finding{MaskedKind::Address, place, end - place});
}

std::optional<Finding> FindAddress6(std::wstring_view text, std::size_t place)
{
    constexpr std::size_t MaxGroups = 8;
    std::size_t groups = 0;
    std::size_t colons = 0;
    bool isShortened = false;
    std::size_t end = place;
    for (;;) {
        const std::size_t digits = SkipWhile(text, end, &IsHexDigit);
        if (digits - end > 4)
            return {};
        groups += digits > end ? 1 : 0;
        end = digits;
        if (At(text, end) != L':' || colons == MaxGroups)
            break;
        const bool isDouble = At(text, end + 1) == L':';
        isShortened |= isDouble;
        end += isDouble ? 2 : 1;
        ++colons;
    }
    // Of a class and its function, as "kel::Add", a word goes on.
    if (IsWordPart(At(text, end)) || groups < 2 || groups > MaxGroups ||
        (!isShortened && groups != MaxGroups))
        return {};
    return Finding{MaskedKind::Address, place, end - place};
}

}  // namespace kel
