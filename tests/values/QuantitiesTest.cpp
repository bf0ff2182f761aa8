#include <gtest/gtest.h>

#include <limits>
#include <span>

#include "support/LogCapture.h"
#include "values/Bandwidth.h"
#include "values/Count.h"
#include "values/Size.h"
#include "values/Speed.h"

namespace kel {
namespace {

constexpr std::uint64_t Largest = std::numeric_limits<std::uint64_t>::max();

/// A text, the amount in it, and how that prints.
using Row = std::tuple<const wchar_t*, std::uint64_t, const wchar_t*>;

/// Reads each text over an older amount, and prints it.
template <typename Quantity>
void CheckRows(Quantity quantity, std::uint64_t (Quantity::*amount)() const, std::span<const Row> rows)
{
    for (const auto& [text, parsed, printed] : rows) {
        EXPECT_TRUE(quantity.Initialize(text)) << text;
        EXPECT_EQ((quantity.*amount)(), parsed) << text;
        EXPECT_STREQ(quantity.ToString(), printed) << text;
    }
}

TEST(Size, ReadsAndPrintsAmountsInStepsOf1024)
{
    const Row rows[] = {
        {L"", 0, L"0.0 B"},          {L"1023", 1023, L"1023.0 B"},
        {L"-5", 0, L"0.0 B"},        {L"3 MB of KB", 3072, L"3.0 KB"},
        {L"GB", 0, L"0.0 B"},        {L"8 GB", 8589934592, L"8.0 GB"},
        {L"   ", 0, L"0.0 B"},       {L"1048575", 1048575, L"1024.0 KB"},
        {L"1.9", 1, L"1.0 B"},       {L"  2 GB\t", 2147483648, L"2.0 GB"},
        {L"1e3", 1, L"1.0 B"},       {L"2 GB of 3 MB", 2097152, L"2.0 MB"},
        {L"512", 512, L"512.0 B"},   {L"1024 TB", 1ULL << 50, L"1024.0 TB"},
        {L"1024", 1024, L"1.0 KB"},  {L"20000000 TB", Largest, L"16777216.0 TB"},
        {L"4 kb", 4096, L"4.0 KB"},  {L"9223372036854775808", 1ULL << 63, L"8388608.0 TB"},
        {L"1.5KB", 1536, L"1.5 KB"},
    };
    CheckRows(Size(77), &Size::Bytes, rows);
}

TEST(Speed, ReadsAndPrintsFrequenciesInStepsOf1000)
{
    const Row rows[] = {
        {L"", 0, L"0.0 Hz"},          {L"2.4 GHz", 2400000000, L"2.4 GHz"},
        {L"fast", 0, L"0.0 Hz"},      {L"3200 MHz", 3200000000, L"3.2 GHz"},
        {L"-1 GHz", 0, L"0.0 Hz"},    {L"2 GHz 3 MHz", 2000000, L"2.0 MHz"},
        {L"999", 999, L"999.0 Hz"},   {L"5000 GHz", 5000000000000, L"5000.0 GHz"},
        {L"1 kHz", 1000, L"1.0 KHz"}, {L"1e400 GHz", Largest, L"18446744073.7 GHz"},
        {L"  800", 800, L"800.0 Hz"},
    };
    CheckRows(Speed(), &Speed::Hertz, rows);
}

TEST(Bandwidth, ReadsAndPrintsRatesInStepsOf1024)
{
    const Row rows[] = {
        {L"4096 Gbps", 4398046511104, L"4096.0 Gbps"}, {L"1.5 Mbps", 1572864, L"1.5 Mbps"},
        {L"16000000 bps", 16000000, L"15.3 Mbps"},     {L"2 Kbps", 2048, L"2.0 Kbps"},
        {L"10 mbPS", 10485760, L"10.0 Mbps"},          {L"", 0, L"0.0 bps"},
        {L"3 Gbps", 3221225472, L"3.0 Gbps"},
    };
    CheckRows(Bandwidth(L"7"), &Bandwidth::BitsPerSecond, rows);
}

TEST(Quantities, RefuseANullTextSizeAloneWithAWarning)
{
    const test::LogCapture log;
    EXPECT_FALSE(Speed().Initialize(nullptr));
    EXPECT_FALSE(Bandwidth(L"1").Initialize(nullptr));
    EXPECT_TRUE(log.Lines().empty());
    Size size(77);
    EXPECT_FALSE(size.Initialize(nullptr));
    EXPECT_EQ(size.Bytes(), 0U);
    EXPECT_EQ(log.Lines(), std::vector<std::wstring>{L"WARN NULL parameter."});
}

TEST(Quantities, CloneAndShareOneTextPerClass)
{
    const std::unique_ptr<Size> size(Size(2048).Clone());
    const wchar_t* shared = size->ToString();
    EXPECT_STREQ(shared, L"2.0 KB");
    Size(1).ToString();
    EXPECT_STREQ(shared, L"1.0 B");
    EXPECT_STREQ(std::unique_ptr<Count>(Count(-1234567).Clone())->ToString(), L"-1234567");
    EXPECT_STREQ(Count(std::numeric_limits<std::int64_t>::min()).ToString(), L"-9223372036854775808");
    Speed speed;
    speed.Initialize(L"1 GHz");
    EXPECT_TRUE(speed.HasValue() && !Speed().HasValue());
    EXPECT_EQ(std::unique_ptr<Speed>(speed.Clone())->Hertz(), 1000000000U);
    EXPECT_EQ(std::unique_ptr<Bandwidth>(Bandwidth(L"7").Clone())->BitsPerSecond(), 7U);
}

}  // namespace
}  // namespace kel
