#include "detectors/Facts.h"

#include <gtest/gtest.h>

#include "support/LogCapture.h"
#include "support/TestSession.h"
#include "values/DeviceID.h"
#include "values/Name.h"
#include "values/Size.h"

namespace kel {
namespace {

struct Thing {
    std::wstring key;
    Name name;
    bool isBig = false;
    std::optional<Size> size;
    std::optional<bool> isNew;
    DeviceID id;
};

constexpr FactTable Things(Fact{NotStored, &Thing::key}, Fact{2, &Thing::name, L"name"},
                           Fact{1, &Thing::isBig}, Fact{3, &Thing::size, L"size"}, Fact{4, &Thing::isNew},
                           Fact{5, &Thing::id});
using Device = decltype(Things)::Device;

Thing Named(const wchar_t* key, const wchar_t* name)
{
    Thing thing;
    thing.key = key;
    thing.name = name;
    return thing;
}

TEST(Facts, TakeTheFirstSourceThatKnowsAndSayWhichItWas)
{
    test::TestSession session;
    const test::LogCapture log(3);
    Thing first = Named(L"", L""), second = Named(L"k", L"second"), third = Named(L"", L"third");
    first.isNew = false;
    second.isBig = true;
    second.isNew = true;
    third.size = Size(0);
    third.id = DeviceID(L"PCI\\VEN_8086&DEV_1916\\3&1");
    Device device;
    const wchar_t* names[] = {L"A", L"B", L"C"};
    const Thing* sources[] = {&first, &second, &third};
    for (std::size_t source = 0; source < 3; ++source)
        Things.Merge(device, *sources[source], names[source]);
    Things.Store(device, L"Thing", 7);
    EXPECT_EQ(log.Lines(),
              (std::vector<std::wstring>{L"TRACE Thing[7] name from B", L"TRACE Thing[7] size from C",
                                         L"TRACE Adding value: second to 2", L"TRACE Adding value: Yes to 1",
                                         L"TRACE Adding value: 0.0 B to 3", L"TRACE Adding value: No to 4",
                                         L"TRACE Adding value: PCI\\VEN_8086&DEV_1916 to 5"}));
    EXPECT_EQ(session.Text(2), L"(none)");  // only under its index
    Things.Store(Thing());
    EXPECT_EQ(session.Texts({2, 1, 3, 4, 5}), L"|No||||");
}

TEST(Facts, AreJoinedByTheirKeyAndEqualKeysOfOneSourceStayTwo)
{
    const auto isSame = [](const Thing& one, const Thing& other) {
        return !one.key.empty() && one.key == other.key;
    };
    std::vector<Device> devices;
    Things.Join(devices, {Named(L"k", L""), Named(L"k", L"2"), Named(L"", L"none")}, L"A", isSame);
    Things.Join(devices, {Named(L"", L"other"), Named(L"k", L"x"), Named(L"k", L"y"), Named(L"k", L"z")},
                L"B", isSame);
    std::wstring joined;
    for (const Device& device : devices)
        joined += device.record.key + L"=" + device.record.name.ToString() + L" ";
    EXPECT_EQ(joined, L"k=x k=2 =none =other k=z ");
}

}  // namespace
}  // namespace kel
