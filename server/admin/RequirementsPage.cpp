#include "server/admin/RequirementsPage.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "server/admin/Layout.h"
#include "server/admin/Table.h"
#include "server/admin/Texts.h"
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

/// The text as somebody can edit it: programs write requirements into a single line.
std::string InLines(const std::string& text)
{
    if (text.empty() || std::find(text.begin(), text.end() - 1, '\n') != text.end() - 1)
        return text;
    const auto content = nlohmann::ordered_json::parse(text, nullptr, false);
    return content.is_discarded() ? text : content.dump(2) + "\n";
}

Html NoticeOf(const Visit& visit)
{
    const std::string note = visit.Query("note");
    if (note == "saved")
        return Notice("good", "The draft is saved. Visitors notice nothing until it is published.");
    if (note == "dropped")
        return Notice("good", "The draft is dropped.");
    if (note == "published")
        return Notice("good", "The draft is published. The next verdict is by these requirements.");
    return {};
}

Html Help()
{
    return Html::Element(
        "details", {},
        {Html::Element("summary", {}, "How requirements are written"),
         Html::Element("p", {},
                       {"A line has the \"id\" of a value (", Link("/values", "all values"),
                        "), a \"label\", a \"comparison\", what is \"needed\", and an \"advice\" for those "
                        "who do not meet it."}),
         Html::Element(
             "p", {},
             "Comparisons: at least, at most (an amount such as 4 GB, 2 GHz or 3, or a resolution), at least "
             "version, equals, one of (texts between commas), contains, any (known at all), yes, no. In the "
             "place of "
             "id, comparison and needed a line may have \"any of\", a list of such three, of which one has "
             "to "
             "hold. A line with \"recommended\": true is told, and has no say in the result.")});
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

Html Editor(const Visit& visit, const std::string& text, int revision)
{
    Html buttons = Button("Check", "plain", "check") + Button("Try", "plain", "try") +
                   Button("Save draft", "primary", "save") + Button("Publish…", "plain", "publish");
    if (revision > 0)
        buttons += Button("Drop draft…", "danger", "drop");
    return PostForm(visit, RequirementsPath(visit.subject),
                    Hidden("revision", std::to_string(revision)) +
                        TextArea("Draft, as JSON", "text", text, false) +
                        Html::Element("div", {{"class", "buttons"}}, buttons));
}

}  // namespace

std::string RequirementsPath(const std::string& referrer)
{
    return ProductPath(referrer) + "/requirements";
}

std::string RequirementsPage::VersionText(const std::string& referrer, std::int64_t version) const
{
    for (const PublishedSet& set : store.Versions(referrer)) {
        if (set.version == version)
            return store.SetText(set.id);
    }
    throw Fault(404, "There is no such version.");
}

std::string RequirementsPage::NewestText(const std::string& referrer) const
{
    const auto newest = store.NewestSet(referrer);
    return newest ? store.SetText(newest->id) : std::string();
}

Html RequirementsPage::VersionsOf(const std::string& referrer) const
{
    Table table("Published versions, the newest first", {{"Version"}, {"Published (UTC)"}, {"By"}, {"Text"}});
    for (const PublishedSet& set : store.Versions(referrer)) {
        const std::string number = std::to_string(set.version);
        table.Add({number, Moment(set.published), set.author.empty() ? Html("–") : Html::Stored(set.author),
                   Link(ProductPath(referrer) + "/version?number=" + number, "view version " + number)});
    }
    return Html::Element("h2", {}, "Versions") + table.Done("Nothing is published yet.");
}

Answer RequirementsPage::Edit(const Visit& visit, const std::string& text, int revision, const Html& result,
                              int status) const
{
    const std::string& referrer = visit.Referrer();
    const Html content = result + Editor(visit, text, revision) + Help() + VersionsOf(referrer) +
                         Html::Element("p", {}, ButtonLink(ProductPath(referrer), "The product's figures"));
    return Page(visit, "Requirements of " + referrer, content, status);
}

Answer RequirementsPage::Show(const Visit& visit) const
{
    const std::string& referrer = visit.Referrer();
    const auto draft = store.FindDraft(referrer);
    const std::string newest = NewestText(referrer);
    if (!visit.IsEditor()) {
        if (newest.empty() && !draft)
            throw Fault(404, "There is no such product.");
        Html content = newest.empty() ? Html()
                                      : Html::Element("h2", {}, "In force") +
                                            Html::Element("pre", {{"tabindex", "0"}}, newest);
        if (draft)
            content +=
                Html::Element("h2", {}, "Draft") + Html::Element("pre", {{"tabindex", "0"}}, draft->text);
        return Page(visit, "Requirements of " + referrer, content + VersionsOf(referrer));
    }
    Html result = NoticeOf(visit);
    if (const std::string from = visit.Query("from"); !from.empty()) {
        const std::string text = VersionText(referrer, WholeNumber(from));
        return Edit(
            visit, text, draft ? draft->revision : 0,
            Notice("note", "This is the text of version " + from + ". It is no draft until it is saved."));
    }
    if (draft) {
        result += Html::Element(
            "p", {{"class", "lead"}},
            {"The draft, changed ", Moment(draft->changed), " UTC by ", Html::Stored(draft->author), "."});
        return Edit(visit, draft->text, draft->revision, result);
    }
    result += Html::Element(
        "p", {{"class", "lead"}},
        newest.empty() ? "Nothing is published for this product yet. This is an example to begin with."
                       : "There is no draft. This is the text in force, to begin one with.");
    return Edit(visit, newest.empty() ? Template : InLines(newest), 0, result);
}

Answer RequirementsPage::ShowVersion(const Visit& visit) const
{
    const std::string& referrer = visit.Referrer();
    const std::string number = visit.Query("number");
    const std::string text = VersionText(referrer, WholeNumber(number));
    Html links = Link(RequirementsPath(referrer), "To the requirements");
    if (visit.IsEditor())
        links = ButtonLink(RequirementsPath(referrer) + "?from=" + number, "Take into the draft") + links;
    return Page(
        visit, "Version " + number + " of " + referrer,
        Html::Element("pre", {{"tabindex", "0"}}, text) + Html::Element("p", {{"class", "buttons"}}, links));
}

Answer RequirementsPage::Begin(const Visit& visit) const
{
    const std::string referrer = visit.Query("referrer");
    if (!IsReferrer(referrer))
        throw Fault(400, "A referrer's name is 1 to 64 letters, digits, hyphens and underscores.");
    return Redirect(RequirementsPath(referrer));
}

Answer RequirementsPage::Stale(const Visit& visit, const std::string& text) const
{
    const std::string& referrer = visit.Referrer();
    const auto draft = store.FindDraft(referrer);
    Html content;
    if (draft) {
        content = Notice("bad", {"Somebody else has changed the draft meanwhile. Nothing was overwritten: "
                                 "below are both texts."}) +
                  Html::Element("p", {},
                                {"Theirs was saved ", Moment(draft->changed), " UTC by ",
                                 Html::Stored(draft->author), ". Saving yours replaces it."});
    } else {
        content = Notice(
            "bad",
            "The draft was published or dropped meanwhile. Nothing was overwritten: below are both texts.");
    }
    content += TextArea(draft ? "Their draft" : "The text in force", "theirs",
                        draft ? draft->text : NewestText(referrer), true) +
               Html::Element("h2", {}, "Your text") + Editor(visit, text, draft ? draft->revision : 0);
    return Page(visit, "Somebody was faster", content, 409);
}

}  // namespace kel::server
