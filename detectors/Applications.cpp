#include <algorithm>

#include "detectors/Detectors.h"
#include "detectors/Facts.h"
#include "detectors/ProductFacts.h"
#include "detectors/ProductTables.h"
#include "probes/software/Office.h"

namespace kel {

namespace {

constexpr FactTable OfficeFacts(Fact{73530, &OfficeInfo::generation}, Fact{73531, &OfficeInfo::bitness});

/// Word, Excel, PowerPoint, Outlook, Access.
constexpr unsigned OfficePrograms[] = {73210, 73212, 73214, 73216, 73218};

/// Whether one of them is stored as installed.
bool HasOffice()
{
    return std::ranges::any_of(OfficePrograms, [](unsigned id) {
        const SystemValue* const value = Session::Current().Values().TryGetValue(SystemValueID(GroupID(id)));
        return value != nullptr && value->Text() == L"Yes";
    });
}

}  // namespace

bool Applications::Detect()
{
    return Detect(SoftwareFunctions::OfSystem());
}

bool Applications::Detect(const SoftwareFunctions& functions)
{
    return Guarded(L"kel::Applications::Detect", L"Error with Applications detection.", [&] {
        StoreNewest(L"Applications", functions, table);
        OfficeFacts.StoreDefaults();
        if (HasOffice())
            OfficeFacts.Store(ReadOffice(functions));
    });
}

void Applications::Initialize()
{
    const LogScope trace(L"kel::Applications::Initialize");
    table = ApplicationTable();
}

StoredFacts Applications::ListFacts()
{
    StoredFacts facts;
    AddFacts(facts, ApplicationTable());
    OfficeFacts.List(facts);
    return facts;
}

}  // namespace kel
