#include "probes/cpu/CPUID.h"

#ifdef _MSC_VER
#include <intrin.h>
#else
#include <cpuid.h>
#include <immintrin.h>
#endif

#include <algorithm>
#include <iterator>
#include <memory>
#include <utility>

#include "diag/Log.h"
#include "diag/ProcessInstance.h"
#include "probes/Attempt.h"
#include "probes/cpu/CpuFeatures.h"
#include "values/Hexadecimal.h"
#include "values/Text.h"

namespace kel {

namespace {

enum Register { Eax, Ebx, Ecx, Edx };

constexpr std::uint32_t SignatureLeaf = 1;
constexpr std::uint32_t FeatureLeaf = 7;
constexpr std::uint32_t HypervisorLeaf = 0x40000000;
constexpr std::uint32_t PartitionLeaf = 0x40000003;
constexpr std::uint32_t ExtendedLeaf = 0x80000000;
constexpr std::uint32_t ExtendedFeatureLeaf = 0x80000001;
constexpr std::uint32_t UsesSavedState = 1U << 27;  // of ECX of leaf 1
constexpr std::uint32_t HasHypervisor = 1U << 31;   // the same
constexpr std::uint32_t CreatesPartitions = 1;      // of EBX
// "Microsoft Hv" in EBX, ECX and EDX.
constexpr std::uint32_t HyperV[] = {0x7263694D, 0x666F736F, 0x76482074};
constexpr std::size_t ShortIdLength = 6;
constexpr const wchar_t* IntelVendor = L"genuineintel";
constexpr const wchar_t* AmdVendor = L"authenticamd";

constexpr std::pair<const wchar_t*, const wchar_t*> Vendors[] = {
    {IntelVendor, L"Intel"},      {AmdVendor, L"AMD"},
    {L"cyrixinstead", L"Cyrix"},  {L"centaurhauls", L"Centaur"},
    {L"nexgendriven", L"NexGen"}, {L"genuinetmx86", L"Transmeta"},
    {L"riseriserise", L"Rise"},   {L"umc umc umc ", L"UMC"},
    {L"sis sis sis ", L"Sis"},    {L"geode by nsc", L"National Semiconductor"},
};

bool HasByte(std::uint32_t value, int firstByte, std::uint32_t byte)
{
    for (int shift = firstByte * 8; shift < 32; shift += 8) {
        if (((value >> shift) & 0xFF) == byte)
            return true;
    }
    return false;
}

}  // namespace

CpuRegisters RunCpuid(std::uint32_t leaf)
{
    CpuRegisters registers = {};
#ifdef _MSC_VER
    __cpuidex(reinterpret_cast<int*>(registers.data()), static_cast<int>(leaf), 0);
#else
    __cpuid_count(leaf, 0, registers[Eax], registers[Ebx], registers[Ecx], registers[Edx]);
#endif
    return registers;
}

#ifndef _MSC_VER
__attribute__((target("xsave")))
#endif
std::uint64_t
RunXgetbv()
{
    return _xgetbv(0);
}

CPUID& CPUID::Instance()
{
    return ProcessInstance<CPUID>();
}

CPUID::CPUID() : CPUID(Leaves(&RunCpuid), SavedState(&RunXgetbv)) {}

CPUID::CPUID(const Leaves& newLeaves, const SavedState& newSavedState)
    : leaves(newLeaves),
      savedState(newSavedState),
      maxStandardLeaf(leaves(0)[Eax]),
      maxExtendedLeaf(leaves(ExtendedLeaf)[Eax])
{
}

bool CPUID::GetCpuInfo(CpuInfo& info)
{
    Attempt(L"Error in cpuid detection.", [this, &info] { ReadCpuInfo(info); });
    return true;
}

void CPUID::ReadCpuInfo(CpuInfo& info)
{
    const std::wstring vendor = GetVendorString();
    info.vendor = GetVendor(vendor);
    info.isIntel = IsIntel(vendor);
    info.isAmd = IsAmd(vendor);
    info.cacheDescriptor40 = HasCacheDescriptor40();
    CpuRegisters registers;
    if (!Execute(SignatureLeaf, registers))
        return;
    const CpuSignature signature = GetSignature(registers);
    info.stepping = Hexadecimal(signature.stepping, 1);
    info.family = Hexadecimal(signature.family, 2);
    info.model = Hexadecimal(signature.model, 2);
    info.type = Hexadecimal(signature.type, 2);
    WriteLog(LogTrace, L"CPU Type: ", signature.type);
    info.cpuId = Hexadecimal(GetCpuId(registers), 16);
    WriteLog(LogTrace, L"CPU ID: ", info.cpuId);
    info.cpuIdShort = info.cpuId.substr(info.cpuId.size() - ShortIdLength);
    WriteLog(LogTrace, L"CPU ID Short: ", info.cpuIdShort);
    ReadFeatures(registers, info);
}

void CPUID::ReadFeatures(const CpuRegisters& leaf1, CpuInfo& info)
{
    FeatureRegisters found;
    CpuRegisters registers;
    found.leaf1Ecx = leaf1[Ecx];
    if (Execute(FeatureLeaf, registers))
        found.leaf7Ebx = registers[Ebx];
    if (Execute(ExtendedFeatureLeaf, registers))
        found.extendedEcx = registers[Ecx];
    if ((leaf1[Ecx] & UsesSavedState) != 0)
        found.savedState = savedState();
    const CpuFeatures features = DecodeFeatures(found);
    info.hasSse42 = features.hasSse42;
    info.hasAvx = features.hasAvx;
    info.hasAvx2 = features.hasAvx2;
    info.hasAvx512 = features.hasAvx512;
    info.hasAes = features.hasAes;
    info.level = features.level;
    info.hasHypervisor = (leaf1[Ecx] & HasHypervisor) != 0;
    info.isVirtualMachine = *info.hasHypervisor && !IsHypervisorsHost();
}

bool CPUID::IsHypervisorsHost()
{
    const CpuRegisters first = Read(HypervisorLeaf);
    return std::equal(first.begin() + Ebx, first.end(), std::begin(HyperV)) && first[Eax] >= PartitionLeaf &&
           (Read(PartitionLeaf)[Ebx] & CreatesPartitions) != 0;
}

bool CPUID::Execute(std::uint32_t leaf, CpuRegisters& registers)
{
    registers = {};
    const bool isExtended = (leaf & ExtendedLeaf) != 0;
    // Only the low byte of an extended leaf is compared, so no extended leaf is refused. Kept: the service
    // knows the values that this gives.
    if (isExtended ? (leaf & 0xFF) > maxExtendedLeaf : leaf > maxStandardLeaf)
        return false;
    registers = Read(leaf);
    return true;
}

CpuRegisters CPUID::Read(std::uint32_t leaf)
{
    const CpuRegisters registers = leaves(leaf);
    if (Log::Instance().IsEnabled(LogDump))
        WriteLog(LogDump, L"cpuid ", Hexadecimal(leaf, 8), L": ", Hexadecimal(registers[Eax], 8), L' ',
                 Hexadecimal(registers[Ebx], 8), L' ', Hexadecimal(registers[Ecx], 8), L' ',
                 Hexadecimal(registers[Edx], 8));
    return registers;
}

std::wstring CPUID::GetVendorString()
{
    std::wstring vendor;
    CpuRegisters registers;
    if (!Execute(0, registers))
        return vendor;
    for (const Register name : {Ebx, Edx, Ecx}) {
        for (int shift = 0; shift < 32; shift += 8)
            vendor += static_cast<wchar_t>((registers[name] >> shift) & 0xFF);
    }
    return vendor;
}

std::wstring CPUID::GetVendor(const std::wstring& vendorString)
{
    const std::wstring lowerCase = ToLower(vendorString);
    for (const auto& [known, vendor] : Vendors) {
        if (lowerCase == known)
            return vendor;
    }
    return {};
}

bool CPUID::IsIntel(const std::wstring& vendorString)
{
    return ToLower(vendorString) == IntelVendor;
}

bool CPUID::IsAmd(const std::wstring& vendorString)
{
    return ToLower(vendorString) == AmdVendor;
}

CpuSignature CPUID::GetSignature(const CpuRegisters& leaf1)
{
    const std::uint32_t eax = leaf1[Eax];
    const unsigned baseFamily = (eax >> 8) & 0xF;
    const unsigned baseModel = (eax >> 4) & 0xF;
    CpuSignature signature;
    signature.family = baseFamily >= 15 ? ((eax >> 20) & 0xFF) + 15 : baseFamily;
    signature.model = baseFamily == 6 || baseFamily >= 15 ? ((eax >> 12) & 0xF0) + baseModel : baseModel;
    signature.stepping = eax & 0xF;
    signature.type = (eax >> 12) & 0x3;
    return signature;
}

std::uint64_t CPUID::GetCpuId(const CpuRegisters& leaf1)
{
    return static_cast<std::uint64_t>(leaf1[Edx]) << 32 | leaf1[Eax];
}

bool CPUID::HasCacheDescriptor40()
{
    constexpr std::uint32_t Descriptor = 0x40;
    CpuRegisters registers;
    if (!Execute(2, registers))
        return false;
    // The lowest byte of EAX is a repeat count.
    return HasByte(registers[Eax], 1, Descriptor) || HasByte(registers[Ebx], 0, Descriptor) ||
           HasByte(registers[Ecx], 0, Descriptor) || HasByte(registers[Edx], 0, Descriptor);
}

}  // namespace kel
