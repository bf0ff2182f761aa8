#include "probes/cpu/CpuFeatures.h"

#include <initializer_list>

namespace kel {

namespace {

constexpr std::uint32_t Bits(std::initializer_list<int> places)
{
    std::uint32_t bits = 0;
    for (const int place : places)
        bits |= 1U << place;
    return bits;
}

constexpr bool HasAll(std::uint64_t value, std::uint64_t bits)
{
    return (value & bits) == bits;
}

namespace Leaf1 {
constexpr std::uint32_t Sse3 = Bits({0}), Ssse3 = Bits({9}), Fma = Bits({12}), Cmpxchg16b = Bits({13}),
                        Sse41 = Bits({19}), Sse42 = Bits({20}), Movbe = Bits({22}), Popcnt = Bits({23}),
                        Aes = Bits({25}), Osxsave = Bits({27}), Avx = Bits({28}), F16c = Bits({29});
}  // namespace Leaf1

namespace Leaf7 {
constexpr std::uint32_t Bmi1 = Bits({3}), Avx2 = Bits({5}), Bmi2 = Bits({8}), Avx512F = Bits({16}),
                        Avx512Dq = Bits({17}), Avx512Cd = Bits({28}), Avx512Bw = Bits({30}),
                        Avx512Vl = Bits({31});
}  // namespace Leaf7

constexpr std::uint32_t Lahf = Bits({0}), Lzcnt = Bits({5});  // of the extended leaf

// The halves of the AVX registers, then the masks and the further halves of AVX-512.
constexpr std::uint64_t AvxState = Bits({1, 2});
constexpr std::uint64_t Avx512State = AvxState | Bits({5, 6, 7});

/// The instructions that a level of x86-64 adds to the one below it.
struct Level {
    std::uint32_t leaf1Ecx;
    std::uint32_t leaf7Ebx;
    std::uint32_t extendedEcx;
    std::uint64_t savedState;
};

/// The second level and on.
constexpr Level Levels[] = {
    {Leaf1::Sse3 | Leaf1::Ssse3 | Leaf1::Cmpxchg16b | Leaf1::Sse41 | Leaf1::Sse42 | Leaf1::Popcnt, 0, Lahf,
     0},
    {Leaf1::Fma | Leaf1::Movbe | Leaf1::Osxsave | Leaf1::Avx | Leaf1::F16c,
     Leaf7::Bmi1 | Leaf7::Avx2 | Leaf7::Bmi2, Lzcnt, AvxState},
    {0, Leaf7::Avx512F | Leaf7::Avx512Dq | Leaf7::Avx512Cd | Leaf7::Avx512Bw | Leaf7::Avx512Vl, 0,
     Avx512State},
};

}  // namespace

CpuFeatures DecodeFeatures(const FeatureRegisters& registers)
{
    const std::uint32_t leaf1 = registers.leaf1Ecx;
    const std::uint32_t leaf7 = registers.leaf7Ebx;
    CpuFeatures features;
    features.hasSse42 = HasAll(leaf1, Leaf1::Sse42);
    features.hasAes = HasAll(leaf1, Leaf1::Aes);
    features.hasAvx = HasAll(leaf1, Leaf1::Avx | Leaf1::Osxsave) && HasAll(registers.savedState, AvxState);
    features.hasAvx2 = features.hasAvx && HasAll(leaf7, Leaf7::Avx2);
    features.hasAvx512 =
        features.hasAvx && HasAll(leaf7, Leaf7::Avx512F) && HasAll(registers.savedState, Avx512State);
    for (const Level& level : Levels) {
        if (!HasAll(leaf1, level.leaf1Ecx) || !HasAll(leaf7, level.leaf7Ebx) ||
            !HasAll(registers.extendedEcx, level.extendedEcx) ||
            !HasAll(registers.savedState, level.savedState))
            break;
        ++features.level;
    }
    return features;
}

}  // namespace kel
