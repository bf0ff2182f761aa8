#include "server/admin/Drafts.h"

#include "server/base/Log.h"
#include "server/store/RequirementSets.h"
#include "verdict/RequirementsCheck.h"

namespace kel::server {

std::optional<int> Drafts::Save(const std::string& referrer, const std::string& text, int revision)
{
    const auto draft = RequirementSets(database).FindDraft(referrer);
    if (draft && draft->revision == revision && draft->text == text)
        return revision;
    return RequirementSets(database).SaveDraft(referrer, text, revision, account);
}

Drafts::Publication Drafts::Publish(const std::string& referrer, int revision)
{
    const auto draft = RequirementSets(database).FindDraft(referrer);
    if (!draft || draft->revision != revision)
        return {};
    if (std::string reason = CheckRequirements(draft->text).ErrorText(); !reason.empty())
        return {{}, std::move(reason)};
    const auto version = RequirementSets(database).PublishDraft(referrer, revision, account);
    if (!version)
        return {};
    const std::string number = std::to_string(*version);
    Log(Level::Info, "published", {{"referrer", referrer}, {"version", number}, {"account", account}});
    return {version, {}};
}

bool Drafts::Drop(const std::string& referrer, int revision)
{
    return RequirementSets(database).DropDraft(referrer, revision, account);
}

}  // namespace kel::server
