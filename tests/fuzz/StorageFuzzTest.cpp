#include <gtest/gtest.h>

#include <random>

#include "support/ShowAnswers.h"
#include "support/StorageAnswers.h"

namespace kel {
namespace {

using namespace test;

std::uint64_t Setting(const char* name, std::uint64_t otherwise)
{
    const char* value = std::getenv(name);
    return value != nullptr ? std::strtoull(value, nullptr, 10) : otherwise;
}

/// A real answer with bytes changed, cut out and put in, and cut or grown at its end; the same for the same
/// engine.
std::string Mutated(std::string answer, std::mt19937_64& engine)
{
    const auto below = [&engine](std::size_t limit) { return static_cast<std::size_t>(engine() % limit); };
    const std::uint64_t edges[] = {0,    1,          31,         32,         40,      0x7F,
                                   0xFF, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, engine()};
    for (std::size_t mutations = below(6) + 1; mutations > 0; --mutations) {
        const std::size_t place = below(answer.size() + 1);
        const std::uint64_t number = edges[below(std::size(edges))];
        const int size = 1 << below(4);
        const std::string bytes = below(2) == 0 ? Little(number, size) : Big(number, size);
        answer.replace(place, below(3) == 0 ? below(16) : bytes.size(),
                       below(4) == 0 ? std::string() : bytes);
    }
    answer.resize(below(4) == 0 ? below(answer.size() + 40) : answer.size(), static_cast<char>(engine()));
    return answer;
}

/// Whether what is read is in the answer, is what the readers promise, and does not come from behind it.
bool IsPossible(const std::string& answer)
{
    const Bytes bytes = std::as_bytes(std::span(answer));
    const auto device = ReadStorageDescriptor(bytes).value_or(StorageDescriptor());
    for (const std::wstring& text : {device.vendor, device.product, device.revision}) {
        if (answer.find(std::string(text.begin(), text.end())) == std::string::npos)
            return false;
    }
    constexpr auto Most = std::numeric_limits<std::int32_t>::max();
    return ReadDeviceNumber(bytes).value_or(DeviceNumber()).number <= Most &&
           ReadDiskGeometry(bytes).value_or(DiskGeometry()).bytes >> 63 == 0 &&
           ReadExtentDisks(bytes).size() <= answer.size() / 24 + 1 && !ShowBounded(answer)[OfDevice].empty();
}

TEST(StorageFuzz, GivesAnAnswerThatItMayGive)
{
    const std::string samples[] = {
        Descriptor(11, "ATA     ", "ST1000DM010-2EP102", "CC43"),
        Descriptor(17, nullptr, "Samsung SSD 970 EVO Plus 1TB", "2B2QEXM7"),
        Flag(true),
        Geometry(4000787030016),
        Number(FILE_DEVICE_DISK, 3),
        HotplugInfo(true, true),
        Extents({0, 2, 70000}),
        Profiles({0x08, 0x09, 0x0A, 0x10, 0x11, 0x15, 0x1B, 0x2B, 0x40, 0x43}),
        MediaTypes(FILE_DEVICE_DVD, {{DVD_ROM, MEDIA_READ_ONLY}, {CD_R, MEDIA_WRITE_ONCE}}),
    };
    std::mt19937_64 engine(Setting("KEL_FUZZ_SEED", 71060));
    const std::uint64_t count = Setting("KEL_FUZZ_COUNT", 2000);
    for (const std::string& sample : samples) {
        for (std::uint64_t number = 1; number <= count; ++number) {
            const std::string answer = Mutated(sample, engine);
            ASSERT_TRUE(IsPossible(answer)) << number << ": " << testing::PrintToString(answer);
        }
    }
}

}  // namespace
}  // namespace kel
