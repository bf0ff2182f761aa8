#include "verdict/files/SupportFile.h"

#include <charconv>
#include <nlohmann/json.hpp>
#include <sstream>

#include "verdict/Catalogue.h"
#include "verdict/Rendering.h"
#include "verdict/files/FileError.h"
#include "verdict/files/VerdictJson.h"

namespace kel {

namespace {

using nlohmann::json;
using nlohmann::ordered_json;

constexpr int Form = 1;

/// The texts of a snapshot that are members of the file by themselves.
constexpr struct {
    const char* name;
    std::string Snapshot::*text;
} Members[] = {{"time", &Snapshot::time},
               {"version", &Snapshot::version},
               {"windows", &Snapshot::windows},
               {"host", &Snapshot::host},
               {"product", &Snapshot::product}};

ordered_json WriteFact(const Fact& fact, bool isStored)
{
    ordered_json entry{{"id", fact.id}, {"index", fact.index}};
    if (const CatalogueValue* known = FindCatalogueValue(fact.id)) {
        entry["area"] = known->Area();
        entry["name"] = known->Name();
    }
    if (isStored)
        entry["value"] = fact.text;
    if (!fact.reason.empty())
        entry["reason"] = fact.reason;
    return entry;
}

ordered_json SplitLines(const std::string& text)
{
    ordered_json lines = ordered_json::array();
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

/// A number, or a text of one; 0 for any other text: an id that only a page can have.
int ReadId(const json& id)
{
    if (!id.is_string())
        return id.get<int>();
    const auto& text = id.get_ref<const std::string&>();
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? number : 0;
}

}  // namespace

std::string WriteSupportFile(const Snapshot& snapshot)
{
    ordered_json content{{SupportFileMark, Form}};
    for (const auto& member : Members) {
        if (!(snapshot.*member.text).empty())
            content[member.name] = snapshot.*member.text;
    }
    if (snapshot.verdict)
        content["verdict"] = ordered_json::parse(RenderJson(*snapshot.verdict, "requirements", "1.0"));
    content["values"] = ordered_json::array();
    for (const Fact& fact : snapshot.facts)
        content["values"].push_back(WriteFact(fact, true));
    for (const Fact& fact : snapshot.missing)
        content["missing"].push_back(WriteFact(fact, false));
    if (!snapshot.log.empty())
        content["log"] = SplitLines(snapshot.log);
    return content.dump(1, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

Snapshot ReadSupportFile(const json& content)
{
    try {
        if (content.at(SupportFileMark) != Form)
            throw FileError("The file is of another version of kel. Read it with a newer one.");
        Snapshot snapshot;
        for (const auto& member : Members)
            snapshot.*member.text = content.value(member.name, "");
        if (content.contains("verdict") && !(snapshot.verdict = ReadVerdict(content.at("verdict"))))
            throw FileError("The verdict in the file is damaged. Ask for the file again.");
        snapshot.facts = ReadFacts(content.at("values"));
        for (const json& entry : content.value("missing", json::array()))
            snapshot.missing.push_back({ReadId(entry.at("id")), 0, "", entry.value("reason", "")});
        for (const json& line : content.value("log", json::array()))
            snapshot.log += line.get<std::string>() + "\n";
        return snapshot;
    } catch (const json::exception&) {
        throw FileError("The file is not one of kel's, or is damaged. Ask for the file again.");
    }
}

std::vector<Fact> ReadFacts(const json& values)
{
    try {
        std::vector<Fact> facts;
        for (const json& entry : values) {
            const Fact fact{ReadId(entry.at("id")), entry.value("index", 0),
                            entry.at("value").get<std::string>(), entry.value("reason", "")};
            if (fact.id > 0)
                facts.push_back(fact);
        }
        return facts;
    } catch (const json::exception&) {
        throw FileError("The values in the file are damaged. Ask for the file again.");
    }
}

}  // namespace kel
