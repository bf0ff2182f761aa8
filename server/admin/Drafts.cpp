#include "server/admin/Drafts.h"

#include "server/admin/DraftCheck.h"
#include "server/base/Log.h"

namespace kel::server {

std::optional<int> Drafts::Save(const std::string& referrer, const std::string& text, int revision)
{
    const auto draft = store.FindDraft(referrer);
    if (draft && draft->revision == revision && draft->text == text)
        return revision;
    const auto saved = store.KeepDraft(referrer, text, revision, account);
    if (saved)
        store.Note(account, "saved draft", referrer);
    return saved;
}

Drafts::Publication Drafts::Publish(const std::string& referrer, int revision)
{
    const auto draft = store.FindDraft(referrer);
    if (!draft || draft->revision != revision)
        return {};
    if (std::string reason = ValidationError(draft->text); !reason.empty())
        return {{}, std::move(reason)};
    const auto version = store.PublishDraft(referrer, revision, account);
    if (!version)
        return {};
    const std::string number = std::to_string(*version);
    store.Note(account, "published", referrer + ", version " + number);
    Log(Level::Info, "published", {{"referrer", referrer}, {"version", number}, {"account", account}});
    return {version, {}};
}

bool Drafts::Drop(const std::string& referrer, int revision)
{
    const bool isDropped = store.DropDraft(referrer, revision);
    if (isDropped)
        store.Note(account, "dropped draft", referrer);
    return isDropped;
}

}  // namespace kel::server
