#pragma once

#include <string>

#include "server/admin/RequirementsPage.h"
#include "server/admin/Visit.h"
#include "server/store/Store.h"

namespace kel::server {

/// What the buttons of the requirements editor do.
class EditorPage {
public:
    EditorPage(Store& store, const RequirementsPage& page) : store(store), page(page) {}

    /// Check, try, save; or asks before it publishes or drops.
    Answer Act(const Visit& visit) const;
    Answer Publish(const Visit& visit) const;
    Answer Drop(const Visit& visit) const;

private:
    Answer AskToPublish(const Visit& visit, int revision, const std::string& text) const;
    Answer AskToDrop(const Visit& visit, int revision) const;

    Store& store;
    const RequirementsPage& page;
};

}  // namespace kel::server
