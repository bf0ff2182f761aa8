#include "program/machine/ServiceCheck.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "run/System.h"
#include "run/store/FixedGroups.h"
#include "service/AnalysisRequest.h"
#include "service/CallBudget.h"
#include "service/ExchangeState.h"
#include "service/PathText.h"
#include "service/Utf8.h"
#include "service/WebService.h"
#include "verdict/Catalogue.h"
#include "verdict/files/VerdictJson.h"

namespace kel::program {

namespace {

/// Asks for the title of the referrer's requirements.
class TitleRequest : public WebService {
public:
    TitleRequest() : WebService(L"GET", L"/service/Title/" + PathText(System::Instance().ReferrerID()), L"")
    {
    }
};

std::string ExchangeStateText()
{
    const SystemValue* state =
        System::Instance().Values().TryGetValue(SystemValueID{GroupID(ExchangeStateGroup)});
    return state != nullptr ? ToUtf8(state->Text()) : std::string();
}

}  // namespace

void BeginCheck(const std::string& product, const std::string& session)
{
    System& system = System::Instance();
    system.SetReferrerID(FromUtf8(product));
    system.SetSessionID(FromUtf8(session));
}

ServiceAnswer FetchWantedGroups()
{
    const std::wstring answer = System::Instance().FetchWantedGroups();
    const std::string state = ExchangeStateText();
    const bool isAnswered = state == ToUtf8(ExchangeState::Answered);
    return {ToUtf8(answer), state, isAnswered && !System::Instance().HasWantedGroups()};
}

CheckOffer FetchOffer()
{
    const CallBudget budget;  // of both exchanges together
    CheckOffer offer{FetchWantedGroups(), ""};
    if (!IsGroupList(offer.wanted))
        return offer;
    TitleRequest request;
    request.Call();
    if (request.IsAnswered() && ExchangeStateText() == ToUtf8(ExchangeState::Answered))
        offer.title = ToUtf8(request.GetResult());
    return offer;
}

bool IsGroupList(const ServiceAnswer& answer)
{
    return answer.state == ToUtf8(ExchangeState::Answered) && !answer.isRefused &&
           answer.text.find_first_not_of("0123456789|, \r\n") == answer.text.npos;
}

std::vector<int> ListReportedValues()
{
    std::vector<int> values;
    for (const CatalogueValue& value : CatalogueValues) {
        const GroupID group(static_cast<unsigned>(value.id));
        if (System::Instance().IsWanted(group) || IsInEveryReport(group.Number()))
            values.push_back(value.id);
    }
    return values;
}

VerdictAnswer FetchVerdict()
{
    const CallBudget budget;  // of all exchanges together, as of a member of the control
    System::Instance().Detect();
    AnalysisRequest request;
    request.SetItemID(L"requirements");
    request.SetMessageFormat(L"json");
    request.SetFormatVersion(L"1.0");
    request.Call();
    VerdictAnswer answer;
    answer.text = ToUtf8(request.GetResult());
    answer.state = ExchangeStateText();
    answer.verdict = ReadVerdict(nlohmann::json::parse(answer.text, nullptr, false));
    return answer;
}

}  // namespace kel::program
