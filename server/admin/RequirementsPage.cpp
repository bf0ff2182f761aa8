
#include <fmt/format.h>

#include "server/admin/DraftEditor.h"
#include "server/admin/Layout.h"
#include "server/admin/LineChanges.h"
#include "server/admin/Pages.h"
#include "server/admin/ProductPages.h"
#include "server/admin/TextDifference.h"
#include "server/store/RequirementSets.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

constexpr std::string_view DraftName = "draft";  // in addresses, in the place of a version's number

constexpr const char* Template =
    "{\n"
    "  \"title\": \"What the product needs\",\n"
    "  \"requirements\": [\n"
    "    {\n"
    "      \"id\": 71063,\n"
    "      \"label\": \"Memory\",\n"
    "      \"comparison\": \"at least\",\n"
    "      \"needed\": \"4 GB\",\n"
    "      \"advice\": \"Add memory.\"\n"
    "    }\n"
    "  ]\n"
    "}\n";

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

/// The text of a version by its number, or of the draft. Throws Fault 404 when there is no such text.
std::string VersionText(Database& database, const std::string& referrer, const std::string& version)
{
    RequirementSets sets(database);
    if (version == DraftName) {
        if (const auto draft = sets.FindDraft(referrer))
            return draft->text;
    }
    for (const PublishedSet& set : sets.Versions(referrer)) {
        if (set.version == WholeNumber(version))
            return sets.Text(set.id);
    }
    throw Fault(404, "There is no such version.");
}

std::string VersionName(const std::string& version)
{
    return version == DraftName ? "the draft" : "version " + version;
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
        return PageOfProduct(request, "Requirements of " + referrer,
                             content + VersionsTable(request, referrer));
    }
    Html result = NoteNotice(request);
    if (const std::string from = request.Query("from"); !from.empty()) {
        const std::string text = VersionText(request.database, referrer, from);
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
    const std::string text = VersionText(request.database, referrer, number);
    Html links = Link(RequirementsPath(referrer), "To the requirements");
    const std::string difference = ProductPath(referrer) + "/difference?";
    if (const auto version = WholeNumber(number); version > 1)
        links += Link(difference + fmt::format("from={}&to={}", version - 1, version),
                      "What differs from the version before");
    if (request.IsEditor())
        links = ButtonLink(RequirementsPath(referrer) + "?from=" + number, "Load into the draft") + links;
    return PageOfProduct(
        request, fmt::format("Version {} of {}", number, referrer),
        Html::Element("p", {{"class", "buttons"}}, links) + Html::Element("pre", {{"tabindex", "0"}}, text));
}

Answer ShowVersionDifference(const AdminRequest& request)
{
    const std::string& referrer = request.Referrer();
    const std::string from = request.Query("from"), to = request.Query("to");
    const std::string before = VersionText(request.database, referrer, from),
                      after = VersionText(request.database, referrer, to);
    std::vector<RequirementsError> errors;
    const Requirements old = Requirements::ReadPartly(before, errors);
    const Requirements now = Requirements::ReadPartly(after, errors);
    Html content;
    if (errors.empty())
        content = ChangesTable(fmt::format("Requirements, from {} to {}", VersionName(from), VersionName(to)),
                               old, now);
    else
        content = Notice("note", "One of the texts has errors, so that only the lines of text are compared.");
    return PageOfProduct(
        request, fmt::format("{}: from {} to {}", referrer, VersionName(from), VersionName(to)),
        content + Html::Element("h2", {}, "Line by line") + ShowDifference(InLines(before), InLines(after)) +
            Html::Element("p", {{"class", "buttons"}},
                          Link(RequirementsPath(referrer), "To the requirements")));
}

Answer BeginProduct(const AdminRequest& request)
{
    const std::string referrer = request.Query("referrer");
    if (!IsReferrer(referrer))
        throw Fault(400, "A referrer's name is 1 to 64 letters, digits, hyphens and underscores.");
    return Redirect(RequirementsPath(referrer));
}

}  // namespace kel::server
