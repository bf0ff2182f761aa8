#include "probes/storage/DiskModel.h"

#include <algorithm>
#include <string_view>

#include "values/Junk.h"
#include "values/Text.h"

namespace kel {

namespace {

/// In upper case.
constexpr std::wstring_view NoVendors[] = {L"NVME", L"ATA", L"GENERIC", L"GENERIC-"};
/// Suffixes that Windows appends to a disk's name, by its bus, in upper case.
constexpr std::wstring_view Suffixes[] = {
    L" SCSI DISK DEVICE", L" SCSI CDROM DEVICE",     L" ATA DEVICE",
    L" USB DEVICE",       L" IEEE 1394 SBP2 DEVICE", L" MULTI-PATH DISK DEVICE"};
constexpr std::wstring_view IdePrefix = L"IDE\\DISK";

bool IsNoVendor(const std::wstring& word)
{
    return std::ranges::count(NoVendors, ToUpper(word)) > 0;
}

}  // namespace

std::wstring MakeDiskModel(const std::wstring& vendor, const std::wstring& product)
{
    const std::wstring name = CollapseBlanks(TidyText(vendor));
    std::wstring model = CollapseBlanks(TidyText(product));
    if (name.empty() || IsNoVendor(name) || ToUpper(model).starts_with(ToUpper(name)))
        return model;
    return Trim(name + L" " + model);
}

std::wstring TidyDiskModel(const std::wstring& name)
{
    std::wstring model = CollapseBlanks(TidyText(name));
    for (const std::wstring_view suffix : Suffixes) {
        if (ToUpper(model).ends_with(suffix))
            model.erase(model.size() - suffix.size());
    }
    const std::size_t blank = model.find(L' ');
    if (blank != std::wstring::npos) {
        const std::wstring first = model.substr(0, blank), rest = model.substr(blank + 1);
        if (IsNoVendor(first) || ToUpper(rest).starts_with(ToUpper(first)))
            model = rest;
    }
    return TidyText(model);
}

std::wstring ReadIdeModel(const std::wstring& hardwareId)
{
    if (!ToUpper(hardwareId).starts_with(IdePrefix))
        return {};
    std::wstring model = hardwareId.substr(IdePrefix.size());
    model.erase(std::min(model.find(L"__"), model.size()));  // the firmware follows it
    std::ranges::replace(model, L'_', L' ');
    return CollapseBlanks(TidyText(model));
}

bool IsCutModel(const std::wstring& model, const std::wstring& longer)
{
    return model.size() < longer.size() && ToUpper(longer).starts_with(ToUpper(model));
}

}  // namespace kel
