#include "probes/cpu/CpuFeatures.h"

#include <gtest/gtest.h>

namespace kel {
namespace {

/// One bit of a register, and the level of a processor that has all others.
struct Bit {
    std::uint32_t FeatureRegisters::*part;
    int number, level;
};

TEST(CpuFeatures, EndBelowTheLevelThatOneBitIsMissingFor)
{
    constexpr auto Leaf1 = &FeatureRegisters::leaf1Ecx, Leaf7 = &FeatureRegisters::leaf7Ebx,
                   Extended = &FeatureRegisters::extendedEcx;
    constexpr Bit Bits[] = {
        {Leaf1, 0, 1},    {Leaf1, 9, 1},  {Leaf1, 13, 1}, {Leaf1, 19, 1},   {Leaf1, 20, 1}, {Leaf1, 23, 1},
        {Extended, 0, 1}, {Leaf1, 12, 2}, {Leaf1, 22, 2}, {Leaf1, 27, 2},   {Leaf1, 28, 2}, {Leaf1, 29, 2},
        {Leaf7, 3, 2},    {Leaf7, 5, 2},  {Leaf7, 8, 2},  {Extended, 5, 2}, {Leaf7, 16, 3}, {Leaf7, 17, 3},
        {Leaf7, 28, 3},   {Leaf7, 30, 3}, {Leaf7, 31, 3},
    };
    FeatureRegisters whole;
    for (const Bit& bit : Bits)
        whole.*bit.part |= 1U << bit.number;
    whole.savedState = 0b11100110;
    EXPECT_EQ(DecodeFeatures(whole).level, 4) << "with these bits alone";
    for (const Bit& bit : Bits) {
        FeatureRegisters registers = whole;
        registers.*bit.part &= ~(1U << bit.number);
        EXPECT_EQ(DecodeFeatures(registers).level, bit.level) << bit.number;
        const bool isOfAvx = bit.part == Leaf1 && (bit.number == 27 || bit.number == 28);
        EXPECT_EQ(DecodeFeatures(registers).hasAvx, !isOfAvx) << bit.number;
    }
    for (const auto& [number, level] : {std::pair(1, 2), {2, 2}, {5, 3}, {6, 3}, {7, 3}}) {
        FeatureRegisters registers = whole;
        registers.savedState &= ~(1ULL << number);
        const CpuFeatures features = DecodeFeatures(registers);
        EXPECT_EQ(features.level, level) << "state " << number;
        EXPECT_EQ(features.hasAvx, level == 3) << "state " << number;
        EXPECT_FALSE(features.hasAvx512) << "state " << number;
    }
}

}  // namespace
}  // namespace kel
