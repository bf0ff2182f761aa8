#include "probes/graphics/FeatureLevel.h"

#include <gtest/gtest.h>

#include <utility>

namespace kel {
namespace {

TEST(FeatureLevel, FollowsFromThePixelShaders)
{
    const std::pair<DWORD, std::uint32_t> rows[] = {{0, 0},
                                                    {0xFFFF0104, 0},
                                                    {0xFFFF01FF, 0},
                                                    {0xFFFF0200, 0x9100},
                                                    {0xFFFF02FF, 0x9100},
                                                    {0xFFFF0300, 0x9300}};
    for (const auto& [version, level] : rows)
        EXPECT_EQ(LevelOfPixelShaders(version), level) << std::hex << version;
}

}  // namespace
}  // namespace kel
