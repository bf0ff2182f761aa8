#include "program/host/Conversation.h"

#include <nlohmann/json.hpp>

#include "program/host/Frames.h"
#include "program/host/Message.h"
#include "program/machine/NamesByArea.h"
#include "service/ServiceHost.h"
#include "service/Utf8.h"
#include "verdict/text/Text.h"
#include "verdict/text/Uuid.h"

namespace kel::program {

namespace {

using nlohmann::ordered_json;

std::string Error(const char* reason)
{
    return ordered_json{{"type", "error"}, {"reason", reason}}.dump();
}

/// The service has not answered as it does for a check.
std::string ServiceError(const std::string& state)
{
    return ordered_json{{"type", "error"}, {"reason", "service"}, {"state", state}}.dump();
}

ordered_json NamesAsJson(const std::vector<int>& values)
{
    ordered_json areas = ordered_json::array();
    for (const auto& [area, names] : GroupByArea(values))
        areas.push_back({{"area", area}, {"names", names}});
    return areas;
}

/// The lines without what was found: a page learns which requirements are met, not what the machine has.
ordered_json LinesAsJson(const Verdict& verdict)
{
    ordered_json lines = ordered_json::array();
    for (const VerdictLine& line : verdict.lines) {
        ordered_json entry{{"result", ToString(line.result)}, {"label", line.label}, {"needed", line.needed}};
        if (!line.neededText.empty())
            entry["needed text"] = line.neededText;
        if (!line.advice.empty())
            entry["advice"] = line.advice;
        if (line.recommended)
            entry["recommended"] = true;
        lines.push_back(std::move(entry));
    }
    return lines;
}

std::string Member(const Message& message, std::string_view name)
{
    const auto member = message.find(name);
    return member != message.end() ? member->second : std::string();
}

}  // namespace

std::string Conversation::Answer(std::string_view message)
{
    const auto members = ParseMessage(message);
    if (!members)
        return Error("message");
    const std::string type = Member(*members, "type");
    if (type == "ask" && members->size() == 3)
        return Ask(Member(*members, "product"), Member(*members, "session"));
    if (type == "check" && members->size() == 1)
        return Check();
    return Error("message");
}

std::string Conversation::Progress(const std::string& area)
{
    return ordered_json{{"type", "progress"}, {"area", area}}.dump();
}

std::string Conversation::Ask(const std::string& newProduct, const std::string& newSession)
{
    if (!IsReferrer(newProduct) || !IsUuid(newSession))
        return Error("message");
    if (stage != Stage::Begin)
        return Error("order");
    stage = Stage::Ended;  // until the service knows the product
    product = newProduct;
    session = newSession;
    steps.begin(product, session);
    const ServiceAnswer wanted = steps.fetchWantedGroups();
    if (!IsGroupList(wanted))
        return ServiceError(wanted.state);
    stage = Stage::Asked;
    ordered_json answer{{"type", "values"}, {"service", ToUtf8(ServiceHost())}};
    answer["encrypted"] = IsServiceSecure();
    answer["areas"] = NamesAsJson(steps.listReportedValues());
    return answer.dump();
}

std::string Conversation::Check()
{
    if (stage != Stage::Asked)
        return Error("order");
    stage = Stage::Ended;
    const VerdictAnswer answer = steps.fetchVerdict();
    if (!answer.verdict)
        return ServiceError(answer.state);
    ordered_json verdict{{"product", product},
                         {"session", session},
                         {"result", ToString(answer.verdict->total)},
                         {"title", answer.verdict->title}};
    verdict["requirements"] = LinesAsJson(*answer.verdict);
    std::string text = ordered_json{{"type", "verdict"}, {"verdict", std::move(verdict)}}.dump();
    return text.size() <= MaxAnswer ? text : Error("length");
}

}  // namespace kel::program
