// The processor's instructions that programs can use, from the registers of `cpuid`.
#pragma once

#include <cstdint>

namespace kel {

/// The registers that report instructions, and the parts of a thread's registers that the system saves
/// (XCR0), without which an instruction cannot be used.
struct FeatureRegisters {
    std::uint32_t leaf1Ecx = 0;
    std::uint32_t leaf7Ebx = 0;
    std::uint32_t extendedEcx = 0;  ///< of leaf 0x80000001
    std::uint64_t savedState = 0;   ///< XCR0; 0 where the system does not use it
};

/// Instructions that the processor has and programs can use.
struct CpuFeatures {
    bool hasSse42 = false;
    bool hasAvx = false;
    bool hasAvx2 = false;
    bool hasAvx512 = false;  ///< its foundation
    bool hasAes = false;
    int level = 1;  ///< of x86-64, 1 to 4, by the lists of the psABI
};

/// Decodes the registers of a 64-bit processor, which has at least level 1.
CpuFeatures DecodeFeatures(const FeatureRegisters& registers);

}  // namespace kel
