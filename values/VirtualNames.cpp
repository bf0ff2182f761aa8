#include "values/VirtualNames.h"

#include <algorithm>
#include <string_view>

#include "values/Text.h"

namespace kel {

namespace {

/// VMware, VirtualBox, QEMU, Parallels.
constexpr std::wstring_view Marks[] = {L"VMWARE", L"VBOX", L"VIRTUALBOX", L"QEMU"};
/// A short mark has to be a word.
constexpr std::wstring_view Word = L"PRL";

bool HasWord(std::wstring_view text, std::wstring_view word)
{
    for (const std::wstring_view part : Split(text, L' ')) {
        if (part == word)
            return true;
    }
    return false;
}

}  // namespace

bool IsVirtualName(const std::wstring& name)
{
    const std::wstring upper = ToUpper(name);
    return HasWord(upper, Word) || std::ranges::any_of(Marks, [&upper](std::wstring_view mark) {
               return upper.find(mark) != std::wstring::npos;
           });
}

}  // namespace kel
