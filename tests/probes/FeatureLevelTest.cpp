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

TEST(FeatureLevel, PromisesAShaderModel)
{
    const std::pair<const wchar_t*, const wchar_t*> rows[] = {{L"9.1", L"2.0"},  {L"9.3", L"3.0"},
                                                              {L"10.0", L"4.0"}, {L"10.1", L"4.1"},
                                                              {L"11.1", L"5.0"}, {L"12.2", L"5.1"}};
    for (const auto& [level, model] : rows)
        EXPECT_EQ(ShaderModelOfLevel(Version(level))->ToString(), std::wstring(model)) << level;
}

}  // namespace
}  // namespace kel
