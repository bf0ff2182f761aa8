// The control on a Windows 7 without the update that brings LOAD_LIBRARY_SEARCH_SYSTEM32.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <vector>

#include "client/ControlDll.h"
#include "client/EdgeFaults.h"
#include "client/Hosts.h"
#include "support/TestFiles.h"
#include "support/TestFolder.h"

namespace kel {
namespace {

/// What differs between two runs: session and machine identifier, clock, available memory, free space.
constexpr int Varying[] = {71424, 71207, 71062, 71382, 72606, 72612, 73500};

/// The values that a DLL gives, each with its id in front.
std::vector<std::wstring> ReadValues(const test::ControlDll& dll)
{
    std::vector<std::wstring> values;
    const auto control = dll.Create();
    for (int id = 71000; id < 74000; ++id) {
        const std::wstring text = std::to_wstring(id);
        if (std::ranges::count(Varying, id) == 0)
            values.push_back(text + L"=" + test::Get(control, &ISysInfo::get_Value, text.c_str()));
    }
    return values;
}

TEST(OldWindows, StoresTheSameValues)
{
    const test::Apartment apartment;
    test::EdgeFaults::Install();
    const test::TestFolder folder;
    const std::filesystem::path copy = folder.Path() / "Detection2.dll";
    std::filesystem::copy_file(test::TestFile(KEL_DLL_PATH), copy);
    const std::vector<std::wstring> expected = ReadValues(test::ControlDll(copy));
    test::EdgeFaults::refusesSystemFlag = true;
    const std::vector<std::wstring> values = ReadValues(test::ControlDll());
    EXPECT_GT(test::EdgeFaults::refusals, 0);
    for (std::size_t place = 0; place < values.size(); ++place)
        EXPECT_EQ(values[place], expected[place]);
}

}  // namespace
}  // namespace kel
