#pragma once

#include <array>
#include <boost/function.hpp>
#include <cstdint>
#include <string>

#include "probes/CpuInfo.h"
#include "probes/Source.h"

namespace kel {

/// EAX, EBX, ECX and EDX.
using CpuRegisters = std::array<std::uint32_t, 4>;

/// What leaf 1 says of the processor, decoded.
struct CpuSignature {
    unsigned family = 0;
    unsigned model = 0;
    unsigned stepping = 0;
    unsigned type = 0;
};

/// Decodes EAX of leaf 1.
CpuSignature DecodeSignature(std::uint32_t eax);

/// Reads the processor's own description with the `cpuid` instruction.
class CPUID : public Source {
public:
    /// Answers a leaf, with ECX = 0.
    using Leaves = boost::function<CpuRegisters(std::uint32_t)>;

    static CPUID& Instance();

    /// Runs the instruction.
    CPUID();
    /// Reads the leaves from a table in place of the instruction.
    explicit CPUID(const Leaves& newLeaves);

    /// Vendor, signature and cache descriptor of the processor. Always true; a refused leaf leaves its fields
    /// empty.
    bool GetCpuInfo(CpuInfo& info);

    /// Reads a leaf.
    /// @return false, with the registers cleared, for a leaf above the highest standard one. Extended leaves
    /// are
    ///         compared by their low byte only, which refuses none of them.
    bool Execute(std::uint32_t leaf, CpuRegisters& registers);

    /// The 12 characters of leaf 0; empty when it cannot be read.
    std::wstring GetVendorString();
    /// The maker's usual name; empty when it is not known.
    std::wstring GetVendor();
    bool IsIntel();
    bool IsAmd();
    /// @return whether leaf 1 could be read
    bool GetSignature(CpuSignature& signature);
    /// EDX of leaf 1 in the high half, EAX in the low one.
    /// @return whether leaf 1 could be read
    bool GetCpuId(std::uint64_t& cpuId);
    /// Whether leaf 2 reports the descriptor byte 0x40.
    bool HasCacheDescriptor40();

private:
    bool IsVendor(const wchar_t* lowerCaseVendor);

    Leaves leaves;
    std::uint32_t maxStandardLeaf;
    std::uint32_t maxExtendedLeaf;
};

}  // namespace kel
