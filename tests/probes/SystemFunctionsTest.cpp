#include <gmock/gmock.h>

#include "probes/GraphicsFunctions.h"
#include "probes/OSInfo.h"
#include "support/LogCapture.h"

namespace kel {
namespace {

/// Of the functions that are looked up when they are needed, Wine lacks one.
TEST(SystemFunctions, AreFoundByTheirNames)
{
    const test::LogCapture log(LogWarning);
    EXPECT_EQ(OSFunctions::OfSystem().getUserDefaultLCID(), GetUserDefaultLCID());
    const GraphicsFunctions graphics = GraphicsFunctions::OfSystem();
    graphics.getDriverModel({});
    OSVERSIONINFOW version = {};
    graphics.getVersion(version);
    EXPECT_THAT(log.Lines(),
                testing::IsSubsetOf({L"WARN The system has no function D3DKMTQueryAdapterInfo"}));
    EXPECT_GE(version.dwMajorVersion, 6U);
}

}  // namespace
}  // namespace kel
