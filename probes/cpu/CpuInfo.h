#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "probes/cpu/CpuTopology.h"
#include "values/Speed.h"

namespace kel {

/// One source's facts about the processor. Unknown texts are empty, unknown flags false.
struct CpuInfo {
    std::wstring processorCount;  ///< logical processors, decimal
    bool multiProcessor = false;  ///< more than one logical processor
    Speed speed;
    std::wstring vendor;
    bool isIntel = false;
    bool isAmd = false;
    std::wstring name;
    bool cacheDescriptor40 = false;  ///< leaf 2 reports the descriptor byte 0x40
    std::wstring stepping;           ///< hexadecimal, as the next three
    std::wstring family;
    std::wstring model;
    std::wstring type;
    std::wstring cpuId;       ///< EDX and EAX of leaf 1, 16 hexadecimal digits
    std::wstring cpuIdShort;  ///< the last six of them
    std::wstring platformId;  ///< the registry's bytes, taken as text
    std::wstring reserved1;   ///< no source fills the reserved fields; the report carries them empty
    std::wstring reserved2;
    std::wstring updateSignature;         ///< microcode revision, hexadecimal
    std::wstring chipsetSoftwareVersion;  ///< version of the chipset's installation software
    std::wstring caption;                 ///< as WMI gives it; no value carries it
    std::wstring ratedSpeed;              ///< performance rating, hertz; no value carries it

    std::optional<std::int32_t> cores;  ///< as in CpuTopology, as are the next three and the cache
    std::optional<std::int32_t> threads;
    std::optional<std::int32_t> packages;
    std::optional<std::int32_t> efficientCores;
    std::optional<bool> hasSse42;  ///< usable: the system saves its registers; likewise the next four
    std::optional<bool> hasAvx;
    std::optional<bool> hasAvx2;
    std::optional<bool> hasAvx512;
    std::optional<bool> hasAes;
    std::optional<std::int32_t> level;  ///< of x86-64, 1 to 4
    std::optional<bool> isVirtualizationOn;
    std::optional<bool> isVirtualMachine;  ///< false for Hyper-V's own host
    std::optional<Size> largestCache;
    std::optional<bool> hasHypervisor;        ///< no value carries it
    std::optional<bool> firmwareVirtualizes;  ///< virtualization is on in the firmware; no value carries it
};

}  // namespace kel
