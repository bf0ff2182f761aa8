#pragma once

#include <array>
#include <boost/function.hpp>
#include <cstdint>
#include <string>

#include "probes/Source.h"
#include "probes/cpu/CpuInfo.h"

namespace kel {

/// EAX, EBX, ECX and EDX.
using CpuRegisters = std::array<std::uint32_t, 4>;

/// Runs `cpuid` for a leaf, with ECX = 0.
CpuRegisters RunCpuid(std::uint32_t leaf);
/// Runs `xgetbv` for XCR0; only where bit 27 of ECX of leaf 1 says that the system uses it.
std::uint64_t RunXgetbv();

/// The processor signature of leaf 1, decoded.
struct CpuSignature {
    unsigned family = 0;
    unsigned model = 0;
    unsigned stepping = 0;
    unsigned type = 0;
};

/// Reads the processor's own description with the instructions `cpuid` and `xgetbv`.
class CPUID : public Source {
public:
    /// Answers a leaf, with ECX = 0.
    using Leaves = boost::function<CpuRegisters(std::uint32_t)>;
    /// Answers XGETBV for XCR0, which is called only where the system uses it.
    using SavedState = boost::function<std::uint64_t()>;

    static CPUID& Instance();

    /// Runs the instruction.
    CPUID();
    /// Reads the leaves and the state from functions instead of the instructions.
    explicit CPUID(const Leaves& newLeaves, const SavedState& newSavedState);

    /// Vendor, signature, cache descriptor and instructions of the processor. Always true; a refused leaf
    /// leaves its fields empty.
    bool GetCpuInfo(CpuInfo& info);

    /// Reads a leaf.
    /// @return false, with the registers cleared, for a leaf above the highest standard one. Only the low
    /// byte of an extended leaf is compared with the highest, so that no extended leaf is refused where there
    /// are some.
    bool Execute(std::uint32_t leaf, CpuRegisters& registers);

    /// The 12 characters of leaf 0; empty when it cannot be read.
    std::wstring GetVendorString();
    /// The vendor's usual name for a vendor string in any case; empty for an unknown one.
    static std::wstring GetVendor(const std::wstring& vendorString);
    static bool IsIntel(const std::wstring& vendorString);
    static bool IsAmd(const std::wstring& vendorString);
    /// Decodes EAX of leaf 1.
    static CpuSignature GetSignature(const CpuRegisters& leaf1);
    /// EDX of leaf 1 in the high half, EAX in the low one.
    static std::uint64_t GetCpuId(const CpuRegisters& leaf1);
    /// Whether leaf 2 reports the descriptor byte 0x40.
    bool HasCacheDescriptor40();

private:
    void ReadCpuInfo(CpuInfo& info);
    void ReadFeatures(const CpuRegisters& leaf1, CpuInfo& info);
    CpuRegisters Read(std::uint32_t leaf);
    /// Whether this system is the hypervisor's host and not one of its guests, as with Hyper-V.
    bool IsHypervisorsHost();

    Leaves leaves;
    SavedState savedState;
    std::uint32_t maxStandardLeaf;
    std::uint32_t maxExtendedLeaf;
};

}  // namespace kel
