#include <fmt/format.h>
#include <stdexcept>

#include "server/admin/AddLine.h"
#include "server/admin/DraftEditor.h"
#include "server/admin/DraftPreview.h"
#include "server/admin/Drafts.h"
#include "server/admin/Layout.h"
#include "server/admin/Pages.h"
#include "server/admin/ProductPages.h"
#include "server/store/RequirementSets.h"
#include "verdict/RequirementsCheck.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

Html Confirmation(const AdminRequest& request, const std::string& action, int revision,
                  const std::string& text, const Html& button)
{
    // The form includes the text so that it can be shown again after an edit conflict.
    return PostForm(
        request, ProductPath(request.subject) + "/" + action,
        Hidden("revision", std::to_string(revision)) + Hidden("text", text) +
            Html::Element("div", {{"class", "buttons"}},
                          {button, Link(RequirementsPath(request.subject), "Back to the draft")}));
}

Answer AskToPublish(const AdminRequest& request, int revision, const std::string& text)
{
    const Html content =
        Html::Element("p", {{"class", "lead"}},
                      "The draft is saved. Once it is published, every verdict uses these requirements.") +
        Confirmation(request, "publish", revision, text, Button("Publish", "primary")) +
        DraftPreview::Run(request.database, request.subject, Requirements::Read(text)).Show();
    return PageOfProduct(request, "Publish the draft of " + request.subject, content);
}

Answer AskToDrop(const AdminRequest& request, int revision)
{
    const Html content =
        Html::Element("p", {{"class", "lead"}},
                      "The draft will be permanently deleted. Published versions stay as they are.") +
        Confirmation(request, "drop", revision, request.form.Text("text"),
                     Button("Drop the draft", "danger"));
    return PageOfProduct(request, "Drop the draft of " + request.subject, content);
}

/// The editor with the text and the form's new line, whose fields are then gone, so that nothing adds it
/// twice.
Answer ShowWithLine(const AdminRequest& request, const std::string& text, int revision)
{
    try {
        const std::string longer = AddLine(text, request.form);
        AdminRequest added = request;
        added.form = {};
        return DraftEditor(added, longer, revision,
                           Notice("good", "The line is added to the text. Save the draft to keep it."));
    } catch (const std::runtime_error& error) {
        return DraftEditor(request, text, revision, Notice("bad", error.what()));
    }
}

}  // namespace

Answer EditDraft(const AdminRequest& request)
{
    const std::string& referrer = request.Referrer();
    const std::string &text = request.form.Text("text"), &action = request.form.Text("do");
    const int revision = request.form.Number("revision");
    if (revision < 0)
        throw Fault(400, "The form lacks the draft's revision.");
    if (action == "drop")
        return AskToDrop(request, revision);
    if (Trim(text).empty())
        return DraftEditor(request, text, revision, Notice("bad", "Not valid yet: there is no text"), 400);
    Drafts drafts(request.database, request.login.account);
    if (action == "save") {
        return drafts.Save(referrer, text, revision) ? Redirect(RequirementsPath(referrer) + "?note=saved")
                                                     : DraftConflict(request, text);
    }
    if (action == "add")
        return ShowWithLine(request, text, revision);
    if (action == "find" || action.starts_with(ChooseAction))
        return DraftEditor(request, text, revision, {});
    const CheckedRequirements checked = CheckRequirements(text);
    if (!checked.ErrorText().empty())
        return DraftEditor(request, text, revision, {});
    if (action == "publish") {
        const auto saved = drafts.Save(referrer, text, revision);
        return saved ? AskToPublish(request, *saved, text) : DraftConflict(request, text);
    }
    const auto preview = DraftPreview::Run(request.database, referrer, checked.requirements);
    const Html result = action == "try"
                            ? preview.Show()
                            : Notice("good", fmt::format("These requirements can be published. Lines: {}.",
                                                         checked.requirements.lines.size())) +
                                  preview.ShowValues();
    return DraftEditor(request, text, revision, result, 200, preview.FindUnreported(text));
}

Answer PublishDraft(const AdminRequest& request)
{
    const std::string& referrer = request.Referrer();
    const int revision = request.form.Number("revision");
    const auto publication = Drafts(request.database, request.login.account).Publish(referrer, revision);
    if (publication.version)
        return Redirect(RequirementsPath(referrer) + "?note=published");
    const auto draft = RequirementSets(request.database).FindDraft(referrer);
    if (publication.reason.empty() || !draft)
        return DraftConflict(request, request.form.Text("text"));
    return DraftEditor(request, draft->text, revision, {}, 400);  // which says what is wrong
}

Answer DropDraft(const AdminRequest& request)
{
    const std::string& referrer = request.Referrer();
    if (!Drafts(request.database, request.login.account).Drop(referrer, request.form.Number("revision")))
        return DraftConflict(request, request.form.Text("text"));
    return Redirect(RequirementsPath(referrer) + "?note=dropped");
}

}  // namespace kel::server
