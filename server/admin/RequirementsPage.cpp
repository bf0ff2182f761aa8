
#include <fmt/format.h>
#include <algorithm>
#include <nlohmann/json.hpp>

#include "server/admin/DraftEditor.h"
#include "server/admin/Layout.h"
#include "server/admin/Pages.h"
#include "server/store/RequirementSets.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

constexpr const char* Template =
    "{\n"
    "  \"title\": \"What the product needs\",\n"
    "  \"requirements\": [\n"
    "    { \"id\": 71063, \"label\": \"Memory\", \"comparison\": \"at least\", \"needed\": \"4 GB\",\n"
    "      \"advice\": \"Add memory.\" }\n"
    "  ]\n"
    "}\n";

/// The text in lines, for editing: programs write requirements into a single line.
std::string InLines(const std::string& text)
{
    if (text.empty() || std::find(text.begin(), text.end() - 1, '\n') != text.end() - 1)
        return text;
    const auto content = nlohmann::ordered_json::parse(text, nullptr, false);
    return content.is_discarded() ? text : content.dump(2) + "\n";
}

Html NoteNotice(const AdminRequest& request)
{
    const std::string note = request.Query("note");
    if (note == "saved")
        return Notice("good", "Draft saved. It takes effect when it is published.");
    if (note == "dropped")
        return Notice("good", "The draft is dropped.");
    if (note == "published")
        return Notice("good", "The draft is published. The next verdict uses these requirements.");
    return {};
}

std::string VersionText(Database& database, const std::string& referrer, std::int64_t version)
{
    for (const PublishedSet& set : RequirementSets(database).Versions(referrer)) {
        if (set.version == version)
            return RequirementSets(database).Text(set.id);
    }
    throw Fault(404, "There is no such version.");
}

}  // namespace

Answer ShowRequirements(const AdminRequest& request)
{
    const std::string& referrer = request.Referrer();
    const auto draft = RequirementSets(request.database).FindDraft(referrer);
    const std::string newest = NewestText(request.database, referrer);
    if (!request.IsEditor()) {
        if (newest.empty() && !draft)
            throw Fault(404, "There is no such product.");
        Html content = newest.empty() ? Html()
                                      : Html::Element("h2", {}, "In force") +
                                            Html::Element("pre", {{"tabindex", "0"}}, newest);
        if (draft)
            content +=
                Html::Element("h2", {}, "Draft") + Html::Element("pre", {{"tabindex", "0"}}, draft->text);
        return Page(request, "Requirements of " + referrer, content + VersionsTable(request, referrer));
    }
    Html result = NoteNotice(request);
    if (const std::string from = request.Query("from"); !from.empty()) {
        const std::string text = VersionText(request.database, referrer, WholeNumber(from));
        return DraftEditor(
            request, text, draft ? draft->revision : 0,
            Notice(
                "note",
                fmt::format("This is the text of version {}. It becomes the draft once it is saved.", from)));
    }
    if (draft) {
        result += Html::Element(
            "p", {{"class", "lead"}},
            {"The draft, changed ", Moment(draft->changed), " UTC by ", Html::Stored(draft->author), "."});
        return DraftEditor(request, draft->text, draft->revision, result);
    }
    result += Html::Element(
        "p", {{"class", "lead"}},
        newest.empty() ? "Nothing is published for this product yet. This is an example to begin with."
                       : "There is no draft. The published text is shown as a starting point.");
    return DraftEditor(request, newest.empty() ? Template : InLines(newest), 0, result);
}

Answer ShowVersion(const AdminRequest& request)
{
    const std::string& referrer = request.Referrer();
    const std::string number = request.Query("number");
    const std::string text = VersionText(request.database, referrer, WholeNumber(number));
    Html links = Link(RequirementsPath(referrer), "To the requirements");
    if (request.IsEditor())
        links = ButtonLink(RequirementsPath(referrer) + "?from=" + number, "Load into the draft") + links;
    return Page(
        request, fmt::format("Version {} of {}", number, referrer),
        Html::Element("pre", {{"tabindex", "0"}}, text) + Html::Element("p", {{"class", "buttons"}}, links));
}

Answer BeginProduct(const AdminRequest& request)
{
    const std::string referrer = request.Query("referrer");
    if (!IsReferrer(referrer))
        throw Fault(400, "A referrer's name is 1 to 64 letters, digits, hyphens and underscores.");
    return Redirect(RequirementsPath(referrer));
}

}  // namespace kel::server
