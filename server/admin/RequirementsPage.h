#pragma once

#include <string>

#include "server/admin/Visit.h"
#include "server/store/Store.h"

namespace kel::server {

/// A product's requirements: the versions, the draft, and for editors the form that changes it.
class RequirementsPage {
public:
    explicit RequirementsPage(Store& store) : store(store) {}

    Answer Show(const Visit& visit) const;
    Answer ShowVersion(const Visit& visit) const;
    /// Leads to the page of a product that may not be there yet.
    Answer Begin(const Visit& visit) const;

    /// The page with a text in the editor, a result above it, and the revision that a change is for.
    Answer Edit(const Visit& visit, const std::string& text, int revision, const Html& result,
                int status = 200) const;
    /// 409: the draft is another one by now; both texts.
    Answer Stale(const Visit& visit, const std::string& text) const;

    /// The text of a version; 404 when there is none of that number.
    std::string VersionText(const std::string& referrer, std::int64_t version) const;
    std::string NewestText(const std::string& referrer) const;

private:
    Html VersionsOf(const std::string& referrer) const;

    Store& store;
};

std::string RequirementsPath(const std::string& referrer);

}  // namespace kel::server
