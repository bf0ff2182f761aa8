#include "server/admin/EditorPage.h"

#include "server/admin/DraftCheck.h"
#include "server/admin/Drafts.h"
#include "server/admin/Layout.h"
#include "server/admin/Trial.h"
#include "verdict/text/Text.h"

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

Answer EditorPage::Act(const Visit& visit) const
{
    const std::string& referrer = visit.Referrer();
    const std::string &text = visit.form.Text("text"), &action = visit.form.Text("do");
    const int revision = visit.form.Number("revision");
    if (revision < 0)
        throw Fault(400, "The form lacks the draft's revision.");
    if (action == "drop")
        return AskToDrop(visit, revision);
    if (Trim(text).empty())
        return page.Edit(visit, text, revision, Wrong("there is no text"), 400);
    Drafts drafts(store, visit.login.account);
    if (action == "save") {
        return drafts.Save(referrer, text, revision) ? Redirect(RequirementsPath(referrer) + "?note=saved")
                                                     : page.Stale(visit, text);
    }
    if (const std::string why = ValidationError(text); !why.empty())
        return page.Edit(visit, text, revision, Wrong(why));
    if (action == "try")
        return page.Edit(visit, text, revision, Trial::Run(store, referrer, Requirements::Read(text)).Show());
    if (action == "publish") {
        const auto saved = drafts.Save(referrer, text, revision);
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
    const std::string& referrer = visit.Referrer();
    const int revision = visit.form.Number("revision");
    const auto publication = Drafts(store, visit.login.account).Publish(referrer, revision);
    if (publication.version)
        return Redirect(RequirementsPath(referrer) + "?note=published");
    const auto draft = store.FindDraft(referrer);
    if (publication.reason.empty() || !draft)
        return page.Stale(visit, visit.form.Text("text"));
    return page.Edit(visit, draft->text, revision, Wrong(publication.reason), 400);
}

Answer EditorPage::Drop(const Visit& visit) const
{
    const std::string& referrer = visit.Referrer();
    if (!Drafts(store, visit.login.account).Drop(referrer, visit.form.Number("revision")))
        return page.Stale(visit, visit.form.Text("text"));
    return Redirect(RequirementsPath(referrer) + "?note=dropped");
}

}  // namespace kel::server
