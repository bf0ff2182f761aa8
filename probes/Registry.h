#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "probes/BiosInfo.h"
#include "probes/BoardInfo.h"
#include "probes/CpuInfo.h"
#include "probes/Source.h"

namespace kel {

/// A value as it stands in the registry.
struct RegistryValue {
    DWORD type = REG_NONE;
    std::vector<BYTE> bytes;

    bool IsString() const { return type == REG_SZ || type == REG_EXPAND_SZ; }

    /// The bytes taken as characters up to the first zero, whatever the type; half a character at the end
    /// counts as one. In a binary value the zeros before other characters are squeezed out first.
    std::wstring Text() const;
};

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

    /// Reads a value as text, whatever its type; see RegistryValue::Text. A number is thus not converted; the
    /// analysis service knows such texts.
    /// @param access rights beyond reading, such as KEY_WOW64_64KEY
    /// @return false, with the text untouched and a warning in the log, when the key or the value is missing
    static bool ReadText(HKEY root, const wchar_t* key, const wchar_t* name, std::wstring& text,
                         REGSAM access = 0);

    /// Reads a value that is a string (REG_SZ or REG_EXPAND_SZ, not expanded) of at most so many bytes.
    /// @return false, with the text untouched, for any other value and for a missing one
    static bool ReadString(HKEY key, const wchar_t* name, std::size_t largest, std::wstring& text);

    /// Reads a value as it stands; nothing when it is missing.
    static std::optional<RegistryValue> Read(HKEY key, const wchar_t* name);
};

}  // namespace kel
