#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "probes/BiosInfo.h"
#include "probes/BoardInfo.h"
#include "probes/CpuInfo.h"
#include "probes/Source.h"

namespace kel {

/// Reads facts from the registry. What is missing leaves its field empty.
class Registry : public Source {
public:
    static Registry& Instance();

    /// The processor's name, platform, microcode and chipset software, from HARDWARE\DESCRIPTION and the
    /// chipset's installation key. Always true.
    bool GetCpuInfo(CpuInfo& info);

    /// The BIOS's version and date, from HARDWARE\DESCRIPTION.
    void GetBiosInfo(BiosInfo& info);

    /// The motherboard's version, from HARDWARE\DESCRIPTION.
    void GetBoardInfo(BoardInfo& info);

    /// Reads a value of an open key as text, whatever its type: the bytes are taken as characters up to the
    /// first zero. In a binary value the zeros before other characters are squeezed out first. A number is
    /// thus not converted; the analysis service knows such texts.
    /// @return false, with the text untouched, when the value is missing
    static bool ReadText(HKEY key, const wchar_t* name, std::wstring& text);

    /// The same for a value of a key that is opened for it.
    /// @param access rights beyond reading, such as KEY_WOW64_64KEY
    static bool ReadText(HKEY root, const wchar_t* key, const wchar_t* name, std::wstring& text,
                         REGSAM access = 0);

    /// Reads a value that is a string (REG_SZ or REG_EXPAND_SZ, not expanded) of at most so many bytes.
    /// @return false, with the text untouched, for any other value and for a missing one
    static bool ReadString(HKEY key, const wchar_t* name, std::size_t largest, std::wstring& text);

    /// What ReadText makes of a value's bytes.
    static std::wstring TextOf(const std::vector<BYTE>& bytes, DWORD type);

    /// The bytes of a value, and its type; empty when the value is missing.
    static std::vector<BYTE> ReadBytes(HKEY key, const wchar_t* name, DWORD& type);
};

}  // namespace kel
