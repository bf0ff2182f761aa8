#pragma once

#include <windows.h>

#include <string>

#include "probes/Source.h"
#include "probes/cpu/CpuInfo.h"
#include "probes/system/BiosInfo.h"
#include "probes/system/BoardInfo.h"

namespace kel {

/// Reads facts from the registry. The field of a missing value stays empty.
class Registry : public Source {
public:
    static Registry& Instance();

    /// The processor's name, platform, microcode and chipset software, from HARDWARE\DESCRIPTION and the
    /// chipset's installation key. Always true.
    bool GetCpuInfo(CpuInfo& info);

    /// The BIOS's version and date, from HARDWARE\DESCRIPTION.
    void GetBiosInfo(BiosInfo& info);

    /// The motherboard's version, and the machine's vendor and model, from HARDWARE\DESCRIPTION.
    void GetBoardInfo(BoardInfo& info);

    /// Reads a value as text, whatever its type; see kel::RegistryValue::Text. A number is not converted,
    /// which the analysis service expects.
    /// @param access rights beyond reading, such as KEY_WOW64_64KEY
    /// @return false, with the text untouched and a warning in the log, when the key or the value is missing
    static bool ReadText(HKEY root, const wchar_t* key, const wchar_t* name, std::wstring& text,
                         REGSAM access = 0);

private:
    static void ReadCpuInfo(CpuInfo& info);
};

}  // namespace kel
