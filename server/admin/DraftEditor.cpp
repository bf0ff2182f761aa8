#include "server/admin/DraftEditor.h"

#include <fmt/format.h>
#include <algorithm>
#include <nlohmann/json.hpp>

#include "server/admin/AddLine.h"
#include "server/admin/EditorText.h"
#include "server/admin/Layout.h"
#include "server/admin/ProductPages.h"
#include "server/admin/TextDifference.h"
#include "server/admin/kit/Table.h"
#include "server/store/RequirementSets.h"

namespace kel::server {

namespace {

Html Help()
{
    return Html::Element(
        "details", {{"class", "help"}},
        {Html::Element("summary", {}, "How requirements are written"),
         Html::Element("p", {},
                       {"A line has the \"id\" of a value (", Link("/values", "all values"),
                        "), a \"label\", a \"comparison\", what is \"needed\", and an \"advice\" that is "
                        "shown when it is not met."}),
         Html::Element(
             "p", {},
             "Comparisons: at least, at most (an amount such as 4 GB, 2 GHz or 3; at least also a "
             "resolution), "
             "at least version, compatible version (of the same major version), at most version, equals, one "
             "of, none of (texts between commas), contains, any (known at all), yes, no."),
         Html::Element(
             "p", {},
             "If a value has several devices, the first one counts; with \"of\": \"any\" any one may "
             "hold. In the place of id, comparison and needed a line may have \"any of\", a list of "
             "such three, of which one has to hold; one of them may be \"all of\", a list of which "
             "each has to hold. A line with \"recommended\": true is shown but does not affect the "
             "result."),
         Html::Element("p", {}, "A line with several ways, as a recommendation:"),
         Html::Element(
             "pre", {{"tabindex", "0"}},
             "{ \"label\": \"Graphics\", \"recommended\": true, \"any of\": [\n"
             "    { \"id\": 72004, \"comparison\": \"at least\", \"needed\": \"6 GB\", \"of\": \"any\" },\n"
             "    { \"label\": \"NVIDIA with 4 GB\", \"all of\": [\n"
             "        { \"id\": 72010, \"comparison\": \"yes\" },\n"
             "        { \"id\": 72004, \"comparison\": \"at least\", \"needed\": \"4 GB\" } ] } ] }"),
         Html::Element(
             "p", {},
             "\"needed text\" is shown to visitors in place of what is needed. The title, \"label\", "
             "\"needed text\" and \"advice\" may have a text for each language; visitors get the first "
             "that their browser asks for, or else the English one:"),
         Html::Element(
             "pre", {{"tabindex", "0"}},
             "{ \"id\": 73400, \"label\": \"Windows\", \"comparison\": \"at least version\", "
             "\"needed\": \"10.0\",\n"
             "  \"needed text\": { \"en\": \"Windows 10 or later\", \"de\": \"Windows 10 oder neuer\" } }"),
         Html::Element(
             "p", {},
             "\"pages\" beside the title lists the origins whose scripts may read verdicts, such as "
             "\"https://shop.example\".")});
}

Html FixedText(const std::string& label, const std::string& name, const std::string& text)
{
    return Html::Element("label", {{"for", name}}, label) +
           Html::Element(
               "textarea",
               {{"id", name}, {"class", "fixed"}, {"rows", "22"}, {"spellcheck", "false"}, {"readonly", ""}},
               text);
}

Html EditorForm(const AdminRequest& request, const std::string& text, int revision,
                const CheckedRequirements& checked)
{
    Html buttons = Button("Check", "plain", "check") + Button("Try", "plain", "try") +
                   Button("Save draft", "primary", "save") + Button("Publish…", "plain", "publish");
    if (revision > 0)
        buttons += Button("Drop draft…", "danger", "drop");
    const Html editor =
        NumberedText(text, checked.findings) + Html::Element("div", {{"class", "buttons"}}, buttons);
    return PostForm(request, RequirementsPath(request.subject),
                    {Hidden("revision", std::to_string(revision)) +
                     Html::Element("div", {{"class", "workbench"}},
                                   {Html::Element("div", {}, editor),
                                    Html::Element("div", {{"class", "card"}},
                                                  LineList(text, checked) + AddLineFields(request.form))})});
}

/// What a page says of a text that was saved meanwhile.
Html ConflictNotice(const AdminRequest& request, const std::optional<Draft>& draft)
{
    if (!draft)
        return Notice(
            "bad",
            "The draft was published or dropped meanwhile. Nothing was overwritten: below are both texts.");
    if (draft->author == request.login.account)
        return Notice("bad",
                      "You have changed the draft in another tab or window meanwhile. Nothing was "
                      "overwritten: below are both texts.") +
               Html::Element("p", {},
                             {"The other text was saved ", Moment(draft->changed),
                              " UTC with your own account. Saving this one replaces it."});
    return Notice("bad",
                  "Another editor has changed the draft meanwhile. Nothing was overwritten: "
                  "below are both texts.") +
           Html::Element("p", {},
                         {"Theirs was saved ", Moment(draft->changed), " UTC by ",
                          Html::Stored(draft->author), ". Saving yours replaces it."});
}

}  // namespace

Answer DraftEditor(const AdminRequest& request, const std::string& text, int revision, const Html& result,
                   int status, const std::vector<Finding>& more)
{
    const std::string& referrer = request.Referrer();
    CheckedRequirements checked;
    if (!Trim(text).empty())
        checked = CheckRequirements(text);
    checked.findings.insert(checked.findings.end(), more.begin(), more.end());
    const Html content = FindingsBox(text, checked.findings) + result +
                         EditorForm(request, text, revision, checked) + Help() +
                         VersionsTable(request, referrer);
    return PageOfProduct(request, "Requirements of " + referrer, content, status);
}

Answer DraftConflict(const AdminRequest& request, const std::string& text)
{
    const std::string& referrer = request.Referrer();
    const auto draft = RequirementSets(request.database).FindDraft(referrer);
    const std::string theirs = draft ? draft->text : NewestText(request.database, referrer);
    const Html content = ConflictNotice(request, draft) + Html::Element("h2", {}, "What differs") +
                         Html::Element("p", {}, "From the saved text (−) to yours (+).") +
                         ShowDifference(InLines(theirs), InLines(text)) +
                         FixedText(draft ? "The saved draft" : "The published text", "theirs", theirs) +
                         Html::Element("h2", {}, "Your text") +
                         EditorForm(request, text, draft ? draft->revision : 0, CheckRequirements(text));
    return PageOfProduct(request, "Edit conflict", content, 409);
}

Html VersionsTable(const AdminRequest& request, const std::string& referrer)
{
    Table table("Published versions, the newest first",
                {{"Version"}, {"Published (UTC)"}, {"By"}, {"Text"}, {"What differs"}});
    const auto link = [&](int from, const std::string& to, const std::string& label) {
        return Link(ProductPath(referrer) + fmt::format("/difference?from={}&to={}", from, to), label);
    };
    RequirementSets sets(request.database);
    const auto versions = sets.Versions(referrer);
    const bool hasDraft = sets.FindDraft(referrer).has_value();
    for (std::size_t i = 0; i < versions.size(); ++i) {
        const PublishedSet& set = versions[i];
        const std::string number = std::to_string(set.version);
        Html differences;
        if (i + 1 < versions.size())
            differences += link(versions[i + 1].version, number,
                                fmt::format("from version {}", versions[i + 1].version));
        if (hasDraft)
            differences +=
                (differences.IsEmpty() ? Html() : Html(", ")) + link(set.version, "draft", "to the draft");
        table.Add({number, Moment(set.published), set.author.empty() ? Html("–") : Html::Stored(set.author),
                   Link(ProductPath(referrer) + "/version?number=" + number, "view version " + number),
                   differences.IsEmpty() ? Html("–") : differences});
    }
    Html figures;  // of a product that has a page
    if (hasDraft || !versions.empty())
        figures = Html::Element("p", {}, ButtonLink(ProductPath(referrer), "The product's figures"));
    return Html::Element("h2", {}, "Versions") + table.Done("Nothing is published yet.") + figures;
}

std::string NewestText(Database& database, const std::string& referrer)
{
    const auto newest = RequirementSets(database).Newest(referrer);
    return newest ? RequirementSets(database).Text(newest->id) : std::string();
}

std::string InLines(const std::string& text)
{
    if (text.empty() || std::find(text.begin(), text.end() - 1, '\n') != text.end() - 1)
        return text;
    const auto content = nlohmann::ordered_json::parse(text, nullptr, false);
    return content.is_discarded() ? text : content.dump(2) + "\n";
}

}  // namespace kel::server
