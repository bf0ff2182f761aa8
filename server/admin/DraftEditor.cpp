#include "server/admin/DraftEditor.h"

#include "server/admin/Layout.h"
#include "server/admin/kit/Table.h"
#include "server/store/RequirementSets.h"

namespace kel::server {

namespace {

Html Help()
{
    return Html::Element(
        "details", {},
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
             "result.")});
}

Html TextArea(const std::string& label, const std::string& name, const std::string& text, bool isFixed)
{
    Html::Attributes attributes{{"id", name}, {"rows", "22"}, {"spellcheck", "false"}};
    if (isFixed)
        attributes.emplace_back("readonly", "");
    else
        attributes.emplace_back("name", name);
    return Html::Element("label", {{"for", name}}, label) + Html::Element("textarea", attributes, text);
}

Html EditorForm(const AdminRequest& request, const std::string& text, int revision)
{
    Html buttons = Button("Check", "plain", "check") + Button("Try", "plain", "try") +
                   Button("Save draft", "primary", "save") + Button("Publish…", "plain", "publish");
    if (revision > 0)
        buttons += Button("Drop draft…", "danger", "drop");
    return PostForm(request, RequirementsPath(request.subject),
                    Hidden("revision", std::to_string(revision)) +
                        TextArea("Draft, as JSON", "text", text, false) +
                        Html::Element("div", {{"class", "buttons"}}, buttons));
}

}  // namespace

Answer DraftEditor(const AdminRequest& request, const std::string& text, int revision, const Html& result,
                   int status)
{
    const std::string& referrer = request.Referrer();
    const Html content = result + EditorForm(request, text, revision) + Help() +
                         VersionsTable(request, referrer) +
                         Html::Element("p", {}, ButtonLink(ProductPath(referrer), "The product's figures"));
    return Page(request, "Requirements of " + referrer, content, status);
}

Answer DraftConflict(const AdminRequest& request, const std::string& text)
{
    const std::string& referrer = request.Referrer();
    const auto draft = RequirementSets(request.database).FindDraft(referrer);
    Html content;
    if (draft) {
        content = Notice("bad", {"Another editor has changed the draft meanwhile. Nothing was overwritten: "
                                 "below are both texts."}) +
                  Html::Element("p", {},
                                {"Theirs was saved ", Moment(draft->changed), " UTC by ",
                                 Html::Stored(draft->author), ". Saving yours replaces it."});
    } else {
        content = Notice(
            "bad",
            "The draft was published or dropped meanwhile. Nothing was overwritten: below are both texts.");
    }
    content += TextArea(draft ? "Their draft" : "The published text", "theirs",
                        draft ? draft->text : NewestText(request.database, referrer), true) +
               Html::Element("h2", {}, "Your text") + EditorForm(request, text, draft ? draft->revision : 0);
    return Page(request, "Edit conflict", content, 409);
}

Html VersionsTable(const AdminRequest& request, const std::string& referrer)
{
    Table table("Published versions, the newest first", {{"Version"}, {"Published (UTC)"}, {"By"}, {"Text"}});
    for (const PublishedSet& set : RequirementSets(request.database).Versions(referrer)) {
        const std::string number = std::to_string(set.version);
        table.Add({number, Moment(set.published), set.author.empty() ? Html("–") : Html::Stored(set.author),
                   Link(ProductPath(referrer) + "/version?number=" + number, "view version " + number)});
    }
    return Html::Element("h2", {}, "Versions") + table.Done("Nothing is published yet.");
}

std::string NewestText(Database& database, const std::string& referrer)
{
    const auto newest = RequirementSets(database).Newest(referrer);
    return newest ? RequirementSets(database).Text(newest->id) : std::string();
}

}  // namespace kel::server
