#include "server/admin/ProductPages.h"

#include "server/admin/Layout.h"
#include "server/store/RequirementSets.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

constexpr std::size_t MaxTitleBytes = 120;  // beside a name

}  // namespace

Answer PageOfProduct(const AdminRequest& request, const std::string& heading, const Html& content, int status)
{
    const std::string& referrer = request.Referrer();
    const std::string title = RequirementSets(request.database).Titles({referrer})[referrer];
    const Html below = title.empty() || title == referrer
                           ? Html()
                           : Html::Element("p", {{"class", "title"}}, Html::Stored(title));
    return Page(request, heading, below + content, status);
}

std::string NameAndTitle(const std::string& referrer, const std::string& title)
{
    return title.empty() || title == referrer ? referrer : referrer + " – " + Shortened(title, MaxTitleBytes);
}

}  // namespace kel::server
