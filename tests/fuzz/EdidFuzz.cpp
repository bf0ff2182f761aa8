#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <random>

#include "probes/Edid.h"
#include "support/Edids.h"

namespace kel {
namespace {

std::uint64_t Setting(const char* name, std::uint64_t otherwise)
{
    const char* value = std::getenv(name);
    return value != nullptr ? std::strtoull(value, nullptr, 10) : otherwise;
}

/// Recorded EDIDs with bytes changed, cut and joined, half of them with a sum that is right.
TEST(EdidFuzz, EdidsGiveNothingOrWhatAnEdidCanSay)
{
    const std::uint64_t seed = Setting("KEL_FUZZ_SEED", 73100), count = Setting("KEL_FUZZ_COUNT", 2000);
    std::cout << count << " EDIDs of seed " << seed << std::endl;
    std::mt19937_64 engine(seed);
    const auto below = [&engine](std::size_t limit) { return engine() % limit; };
    const auto edids = test::ReadEdids();
    std::uint64_t answers = 0;
    for (std::uint64_t number = 1; number <= count; ++number) {
        test::Bytes bytes = edids[below(edids.size())].bytes;
        for (std::size_t changes = below(40); changes > 0; --changes)
            bytes[below(bytes.size())] = static_cast<BYTE>(engine());
        if (below(8) != 0)
            std::copy_n(edids[0].bytes.begin(), 8, bytes.begin());
        if (below(2) != 0)
            bytes = test::Summed(bytes);
        if (below(8) == 0)
            bytes.resize(below(300));
        // A buffer of its own of that very size: a read behind it is one that the checked build can see.
        const test::Bytes exact(bytes.begin(), bytes.end());
        const auto monitor = ReadEdid(exact);
        const bool isWhole = exact.size() >= 128 && exact[0] == 0 && exact[7] == 0 &&
                             std::accumulate(exact.begin(), exact.begin() + 128, 0) % 256 == 0 &&
                             std::count(exact.begin() + 1, exact.begin() + 7, 0xFF) == 6;
        ASSERT_EQ(monitor.has_value(), isWhole) << number;
        if (!monitor)
            continue;
        ++answers;
        const std::wstring name = monitor->name.ToString();
        ASSERT_LE(name.size(), 13U) << number;
        ASSERT_EQ(std::ranges::count_if(name, [](wchar_t letter) { return letter < L' '; }), 0) << number;
        ASSERT_LE(monitor->nativeResolution.Width(), 4095U) << number;
        ASSERT_LE(monitor->nativeResolution.Height(), 2 * 4095U) << number;
        ASSERT_EQ(monitor->width.has_value(), monitor->diagonal.has_value()) << number;
    }
    EXPECT_GT(answers, count / 4);
}

}  // namespace
}  // namespace kel
