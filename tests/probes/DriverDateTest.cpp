#include "probes/setup/DriverDate.h"

#include <gtest/gtest.h>

#include <utility>

namespace kel {
namespace {

TEST(DriverDate, IsWrittenWithTheYearFirst)
{
    const std::pair<const wchar_t*, const wchar_t*> rows[] = {
        {L"5-1-2024", L"2024-05-01"},
        {L"12-31-1999", L"1999-12-31"},
        {L"9-10-2024", L"2024-09-10"},
        {L"5x-1-2024", L""},
        {L"5-1x-2024", L""},
        {L"5-1-20x4", L""},
        {L"13-1-2024", L""},
        {L"0-1-2024", L""},
        {L"1-32-2024", L""},
        {L"1-0-2024", L""},
        {L"001-1-2024", L""},
        {L"5-1", L""},
        {L"", L""},
    };
    for (const auto& [text, date] : rows)
        EXPECT_EQ(ReadDriverDate(text), date) << text;
}

}  // namespace
}  // namespace kel
