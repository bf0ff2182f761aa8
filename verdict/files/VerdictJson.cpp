#include "verdict/files/VerdictJson.h"

#include <nlohmann/json.hpp>
#include <string>

namespace kel {

namespace {

using nlohmann::json;

VerdictLine ReadVerdictLine(const json& entry)
{
    VerdictLine line;
    line.label = entry.at("label").get<std::string>();
    line.needed = entry.at("needed").get<std::string>();
    line.found = entry.at("found").get<std::string>();
    line.result = ParseResult(entry.at("result").get<std::string>()).value();
    line.neededText = entry.value("needed text", "");
    line.advice = entry.value("advice", "");
    line.recommended = entry.value("recommended", false);
    for (const json& part : entry.value("any of", json::array()))
        line.parts.push_back({0, part.at("needed").get<std::string>(), part.at("found").get<std::string>(),
                              ParseResult(part.at("result").get<std::string>()).value()});
    return line;
}

}  // namespace

std::optional<Verdict> ReadVerdict(const json& content)
{
    try {
        Verdict verdict;
        verdict.title = content.at("title").get<std::string>();
        verdict.total = ParseResult(content.at("result").get<std::string>()).value();
        for (const json& entry : content.at("requirements"))
            verdict.lines.push_back(ReadVerdictLine(entry));
        return verdict;
    } catch (const json::exception&) {
        return std::nullopt;
    } catch (const std::bad_optional_access&) {
        return std::nullopt;
    }
}

}  // namespace kel
