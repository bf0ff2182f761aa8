#include <gtest/gtest.h>

#include <limits>

#include "support/LogCapture.h"
#include "values/Bandwidth.h"
#include "values/Count.h"
#include "values/Size.h"
#include "values/Speed.h"

namespace kel {
namespace {

constexpr std::uint64_t Largest = std::numeric_limits<std::uint64_t>::max();

struct ParseRow {
    const wchar_t* text;
    std::uint64_t amount;
};

TEST(Size, ReadsTextsWithUnits)
{
    const ParseRow rows[] = {
        {L"  2 GB\t", 2147483648},
        {L"512", 512},
        {L"1.5KB", 1536},
        {L"4 kb", 4096},
        {L"1 TB", 1099511627776},
        {L"3 MB of KB", 3072},
        {L"2 GB of 3 MB", 2097152},
        {L"-0.5", 0},
        {L"-5", 0},
        {L"", 0},
        {L"   ", 0},
        {L"GB", 0},
        {L"1.9", 1},
        {L"+7", 7},
        {L"1.2.3", 1},
        {L"--4", 0},
        {L"1e3", 1},
        {L"9223372036854775808", 9223372036854775808ULL},
        {L"99999999999999999999", Largest},
        {L"20000000 TB", Largest},
    };
    for (const ParseRow& row : rows) {
        Size size(77);
        EXPECT_TRUE(size.Initialize(row.text)) << row.text;
        EXPECT_EQ(size.Bytes(), row.amount) << row.text;
    }
}

TEST(Size, RefusesANullTextWithAWarning)
{
    const test::LogCapture log;
    Size size(77);
    EXPECT_FALSE(size.Initialize(nullptr));
    EXPECT_EQ(size.Bytes(), 0U);
    EXPECT_EQ(log.Lines(), std::vector<std::wstring>{L"WARN NULL parameter."});
}

TEST(Size, PrintsTheLargestFittingUnit)
{
    const std::pair<std::uint64_t, const wchar_t*> rows[] = {
        {0, L"0.0 B"},           {512, L"512.0 B"},          {1023, L"1023.0 B"},
        {1024, L"1.0 KB"},       {1536, L"1.5 KB"},          {1048575, L"1024.0 KB"},
        {8589934592, L"8.0 GB"}, {1ULL << 50, L"1024.0 TB"}, {Largest, L"16777216.0 TB"},
    };
    for (const auto& [bytes, text] : rows)
        EXPECT_STREQ(Size(bytes).ToString(), text);
}

TEST(Speed, ReadsAndPrintsFrequencies)
{
    const struct {
        const wchar_t* text;
        std::uint64_t hertz;
        const wchar_t* printed;
    } rows[] = {
        {L"2.4 GHz", 2400000000, L"2.4 GHz"},
        {L"3200 MHz", 3200000000, L"3.2 GHz"},
        {L"  800", 800, L"800.0 Hz"},
        {L"1 kHz", 1000, L"1.0 KHz"},
        {L"2 GHz 3 MHz", 2000000, L"2.0 MHz"},
        {L"fast", 0, L"0.0 Hz"},
        {L"", 0, L"0.0 Hz"},
        {L"-1 GHz", 0, L"0.0 Hz"},
        {L"5000 GHz", 5000000000000, L"5000.0 GHz"},
        {L"999", 999, L"999.0 Hz"},
        {L"1e400 GHz", Largest, L"18446744073.7 GHz"},
    };
    for (const auto& row : rows) {
        Speed speed;
        EXPECT_TRUE(speed.Initialize(row.text)) << row.text;
        EXPECT_EQ(speed.Hertz(), row.hertz) << row.text;
        EXPECT_EQ(speed.HasValue(), row.hertz != 0) << row.text;
        EXPECT_STREQ(speed.ToString(), row.printed);
    }
    const test::LogCapture log;
    EXPECT_FALSE(Speed().Initialize(nullptr));
    EXPECT_TRUE(log.Lines().empty());
}

TEST(Bandwidth, ReadsAndPrintsRatesInStepsOf1024)
{
    const struct {
        const wchar_t* text;
        std::uint64_t rate;
        const wchar_t* printed;
    } rows[] = {
        {L"10 mbPS", 10485760, L"10.0 Mbps"},
        {L"1.5 Mbps", 1572864, L"1.5 Mbps"},
        {L"2 Kbps", 2048, L"2.0 Kbps"},
        {L"3 Gbps", 3221225472, L"3.0 Gbps"},
        {L"16000000 bps", 16000000, L"15.3 Mbps"},
        {L"", 0, L"0.0 bps"},
        {L"4096 Gbps", 4398046511104, L"4096.0 Gbps"},
    };
    for (const auto& row : rows) {
        const Bandwidth bandwidth{row.text};
        EXPECT_EQ(bandwidth.BitsPerSecond(), row.rate) << row.text;
        EXPECT_STREQ(bandwidth.ToString(), row.printed);
    }
    EXPECT_FALSE(Bandwidth(L"1").Initialize(nullptr));
}

TEST(Count, PrintsSignAndNoGrouping)
{
    EXPECT_STREQ(Count(-1234567).ToString(), L"-1234567");
    EXPECT_STREQ(Count(std::numeric_limits<std::int64_t>::min()).ToString(), L"-9223372036854775808");
    EXPECT_STREQ(Count(0).ToString(), L"0");
}

TEST(Quantities, CloneAndShareOneTextPerClass)
{
    const std::unique_ptr<Size> size(Size(2048).Clone());
    const std::unique_ptr<Count> count(Count(3).Clone());
    const wchar_t* shared = size->ToString();
    EXPECT_STREQ(shared, L"2.0 KB");
    Size(1).ToString();
    EXPECT_STREQ(shared, L"1.0 B");
    EXPECT_STREQ(count->ToString(), L"3");
    Speed speed;
    speed.Initialize(L"1 GHz");
    EXPECT_EQ(std::unique_ptr<Speed>(speed.Clone())->Hertz(), 1000000000U);
    EXPECT_EQ(std::unique_ptr<Bandwidth>(Bandwidth(L"7").Clone())->BitsPerSecond(), 7U);
}

}  // namespace
}  // namespace kel
