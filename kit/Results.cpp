#include "kit/Results.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "masking/Masker.h"
#include "service/Utf8.h"
#include "verdict/files/FileError.h"
#include "verdict/text/Printable.h"
#include "verdict/text/Utf8.h"

namespace kel::kit {

namespace {

using nlohmann::ordered_json;

constexpr const char* StateWords[] = {"ok", "wrong", "not here"};

const char* WordOf(State state)
{
    return StateWords[static_cast<std::size_t>(state)];
}

State StateOf(const std::string& word)
{
    const auto found = std::ranges::find(StateWords, word);
    if (found == std::end(StateWords))
        throw FileError("The file has a state that is not known.");
    return static_cast<State>(found - std::begin(StateWords));
}

}  // namespace

std::size_t Results::Count(State state) const
{
    return static_cast<std::size_t>(std::ranges::count(rows, state, &Row::state));
}

void MaskResults(Results& results, const Snapshot& snapshot)
{
    Masker masker = Masker::OfSystem();
    for (const Fact& fact : snapshot.facts)
        masker.Keep(FromUtf8(fact.text));
    masker.Keep(FromUtf8(results.version));
    for (Row& row : results.rows) {
        for (std::string* const text : {&row.expected, &row.found})
            *text = ToUtf8(masker.Mask(FromUtf8(*text)));
    }
}

std::string WriteResults(const Results& results)
{
    ordered_json content{{"kit", results.version}, {"time", results.time}, {"windows", results.windows}};
    for (const State state : {State::Ok, State::Wrong, State::NotHere})
        content["counts"][WordOf(state)] = results.Count(state);
    content["rows"] = ordered_json::array();
    for (const Row& row : results.rows)
        content["rows"].push_back({{"part", row.part},
                                   {"name", row.name},
                                   {"state", WordOf(row.state)},
                                   {"expected", XmlText(row.expected)},
                                   {"found", XmlText(row.found)},
                                   {"seconds", row.seconds}});
    return content.dump(1) + "\n";
}

Rows ReadRows(const std::string& json)
{
    Rows rows;
    try {
        const nlohmann::json content = nlohmann::json::parse(json);
        for (const auto& row : content.at("rows"))
            rows.push_back({row.at("part"), row.at("name"), StateOf(row.at("state")), row.at("expected"),
                            row.at("found"), row.at("seconds")});
    } catch (const nlohmann::json::exception&) {
        throw FileError("The file has no rows of results.");
    }
    return rows;
}

}  // namespace kel::kit
