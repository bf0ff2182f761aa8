#include "program/machine/Machine.h"

#include <windows.h>

#include <array>
#include <cstdio>
#include <set>
#include <string_view>
#include <utility>

#include "BuildSettings.h"
#include "program/machine/Progress.h"
#include "program/machine/ServiceCheck.h"
#include "program/text/Characters.h"
#include "program/text/UserError.h"
#include "run/System.h"
#include "service/ServiceHost.h"
#include "service/Utf8.h"
#include "verdict/Catalogue.h"
#include "verdict/files/VerdictJson.h"
#include "verdict/text/Text.h"

namespace kel::program {

namespace {

constexpr int ReleaseId = 73401, WindowsVersionId = 73400, HostProgramId = 73003;
constexpr std::string_view NetworkArea = "network";
constexpr std::string_view SessionArea = "session";  // what a page sets, which this program does not
constexpr std::size_t MaxEcho = 100;                 // bytes of an answer that an error repeats

std::string NowAsText()
{
    SYSTEMTIME now;
    GetSystemTime(&now);
    std::array<char, 32> text = {};
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02dZ", now.wYear, now.wMonth, now.wDay,
                  now.wHour, now.wMinute, now.wSecond);
    return text.data();
}

std::string FindReason(const SystemValueID& id)
{
    const auto reason = System::Instance().Values().FindReason(id);
    return reason ? ToUtf8(reason->ToString()) : std::string();
}

void AddMissing(Snapshot& snapshot)
{
    std::set<int> stored;
    for (const Fact& fact : snapshot.facts)
        stored.insert(fact.id);
    for (const CatalogueValue& value : CatalogueValues) {
        const SystemValueID id{GroupID(static_cast<unsigned>(value.id))};
        if (value.Area() != SessionArea && !stored.contains(value.id))
            snapshot.missing.push_back({value.id, 0, "", FindReason(id)});
    }
}

Snapshot TakeSnapshot()
{
    Snapshot snapshot;
    snapshot.time = NowAsText();
    snapshot.version = KEL_VERSION_TEXT;
    for (const SystemValue& value : System::Instance().Values()) {
        const SystemValueID& id = value.ID();
        snapshot.facts.push_back(
            {static_cast<int>(id.Group().Number()), id.Index(), ToUtf8(value.Text()), FindReason(id)});
    }
    AddMissing(snapshot);
    snapshot.windows = std::string(Trim(snapshot.Text(ReleaseId) + " " + snapshot.Text(WindowsVersionId)));
    snapshot.host = snapshot.Text(HostProgramId);
    return snapshot;
}

}  // namespace

bool UsesNetwork(int group)
{
    const CatalogueValue* known = FindCatalogueValue(group);
    return known != nullptr && known->isGated && known->Area() == NetworkArea;
}

std::vector<unsigned> AllGroups()
{
    std::vector<unsigned> groups;
    for (const CatalogueValue& value : CatalogueValues) {
        if (!UsesNetwork(value.id))
            groups.push_back(static_cast<unsigned>(value.id));
    }
    return groups;
}

Snapshot ReadMachine(std::vector<unsigned> groups)
{
    const Progress progress;
    System::Instance().DetectLocally(std::move(groups));
    return TakeSnapshot();
}

Snapshot CheckByService(const std::string& product)
{
    BeginCheck(product);
    VerdictAnswer answer;
    {
        const Progress progress;
        answer = FetchVerdict();
    }
    Snapshot snapshot = TakeSnapshot();
    snapshot.product = product;
    snapshot.verdict = std::move(answer.verdict);
    if (!snapshot.verdict)
        throw UserError("The service at " + ToUtf8(ServiceHost()) + " gave no verdict for \"" + product +
                        "\": " + answer.state +
                        (answer.text.empty()
                             ? ". Check the product, the connection and the proxy, or use --requirements."
                             : ": \"" + Printable(Shortened(answer.text, MaxEcho)) + "\"."));
    return snapshot;
}

}  // namespace kel::program
