#include "server/admin/EditorPage.h"

#include "server/admin/DraftCheck.h"
#include "server/admin/Layout.h"
#include "server/admin/ProductPage.h"
#include "server/admin/Texts.h"
#include "server/admin/Trial.h"
#include "server/base/Log.h"
#include "server/base/Text.h"

namespace kel::server {

namespace {

Html Confirmation(const Visit& visit, const std::string& action, int revision, const std::string& text,
                  const Html& button)
{
    // The text comes along so that it can be shown again when somebody else is faster.
    return PostForm(visit, ProductPath(visit.subject) + "/" + action,
                    Hidden("revision", std::to_string(revision)) + Hidden("text", text) +
                        Html::Element("div", {{"class", "buttons"}},
                                      {button, Link(RequirementsPath(visit.subject), "Back to the draft")}));
}

Html Wrong(const std::string& why)
{
    return Notice("bad", "Not right yet: " + why);
}

}  // namespace

std::optional<int> EditorPage::Save(const Visit& visit, int revision, const std::string& text) const
{
    const auto draft = store.FindDraft(visit.subject);
    if (draft && draft->revision == revision && draft->text == text)
        return revision;
    return store.KeepDraft(visit.subject, text, revision, visit.login.account);
}

Answer EditorPage::Act(const Visit& visit) const
{
    ReferrerIn(visit);
    const std::string &text = visit.form.Text("text"), &action = visit.form.Text("do");
    const int revision = visit.form.Number("revision");
    if (revision < 0)
        throw Fault(400, "The form lacks the draft's revision.");
    if (action == "drop")
        return AskToDrop(visit, revision);
    if (Trim(text).empty())
        return page.Edit(visit, text, revision, Wrong("there is no text"), 400);
    const std::string why = WhyWrong(text);
    if (action == "save") {
        return Save(visit, revision, text) ? Redirect(RequirementsPath(visit.subject) + "?note=saved")
                                           : page.Stale(visit, text);
    }
    if (!why.empty())
        return page.Edit(visit, text, revision, Wrong(why));
    if (action == "try")
        return page.Edit(visit, text, revision,
                         Trial::Run(store, visit.subject, Requirements::Read(text)).Show());
    if (action == "publish") {
        const auto saved = Save(visit, revision, text);
        return saved ? AskToPublish(visit, *saved, text) : page.Stale(visit, text);
    }
    const auto lines = Requirements::Read(text).lines.size();
    return page.Edit(
        visit, text, revision,
        Notice("good", "These requirements can be published. Lines: " + std::to_string(lines) + "."));
}

Answer EditorPage::AskToPublish(const Visit& visit, int revision, const std::string& text) const
{
    const Html content =
        Html::Element("p", {{"class", "lead"}},
                      "The draft is saved. Once it is published, every verdict is by these requirements.") +
        Trial::Run(store, visit.subject, Requirements::Read(text)).Show() +
        Confirmation(visit, "publish", revision, text, Button("Publish", "primary"));
    return Page(visit, "Publish the draft of " + visit.subject, content);
}

Answer EditorPage::AskToDrop(const Visit& visit, int revision) const
{
    const Html content =
        Html::Element("p", {{"class", "lead"}},
                      "The draft's text goes for good. What is published stays as it is.") +
        Confirmation(visit, "drop", revision, visit.form.Text("text"), Button("Drop the draft", "danger"));
    return Page(visit, "Drop the draft of " + visit.subject, content);
}

Answer EditorPage::Publish(const Visit& visit) const
{
    const std::string& referrer = ReferrerIn(visit);
    const int revision = visit.form.Number("revision");
    const auto draft = store.FindDraft(referrer);
    if (!draft || draft->revision != revision)
        return page.Stale(visit, visit.form.Text("text"));
    if (const std::string why = WhyWrong(draft->text); !why.empty())
        return page.Edit(visit, draft->text, revision, Wrong(why), 400);
    const auto version = store.PublishDraft(referrer, revision, visit.login.account);
    if (!version)
        return page.Stale(visit, visit.form.Text("text"));
    Log(Level::Info, "published",
        {{"referrer", referrer}, {"version", std::to_string(*version)}, {"account", visit.login.account}});
    return Redirect(RequirementsPath(referrer) + "?note=published");
}

Answer EditorPage::Drop(const Visit& visit) const
{
    const std::string& referrer = ReferrerIn(visit);
    if (!store.DropDraft(referrer, visit.form.Number("revision"), visit.login.account))
        return page.Stale(visit, visit.form.Text("text"));
    return Redirect(RequirementsPath(referrer) + "?note=dropped");
}

}  // namespace kel::server
