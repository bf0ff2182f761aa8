#pragma once

#include <optional>
#include <string>

#include "server/admin/kit/Html.h"
#include "server/admin/login/AdminRequest.h"
#include "verdict/Result.h"

namespace kel::server {

/// A whole page. Its title is also the heading.
Answer Page(const AdminRequest& request, const std::string& title, const Html& content, int status = 200);

/// A page with a sentence that says why something was not done, and with the typed text, so that it is not
/// lost.
Answer ErrorPage(const AdminRequest& request, int status, const std::string& reason);

/// 303 to a path of this site.
Answer Redirect(std::string path);

/// Adds the headers that keep a browser from doing anything with an answer except showing it.
void AddSafety(Answer& answer);

/// A sentence that stands out. Kinds: note, good, bad.
Html Notice(const std::string& kind, const Html& text);

/// "✓ pass", "✗ fail", "? unknown", "–" when there is no verdict.
Html Mark(std::optional<Result> result);

/// A requirement's label, with a word when it is a recommendation.
Html LineLabel(const std::string& label, bool recommended);

Html Link(const std::string& path, const Html& text);

/// A link that looks like a button; the kinds are a button's.
Html ButtonLink(const std::string& path, const std::string& label, const std::string& kind = "plain");

/// A moment, in UTC.
Html Moment(std::int64_t time);

/// A large figure above its name.
Html Figure(const std::string& name, const Html& value);

/// A product's name as a link to its page, and its title beside it unless that is empty or the same.
Html ProductLink(const std::string& referrer, const std::string& title, const std::string& query = "");

std::string ProductPath(const std::string& referrer);
std::string RequirementsPath(const std::string& referrer);
std::string ReportPath(std::int64_t report);

/// A form that posts, with the token that proves that it comes from the service.
Html PostForm(const AdminRequest& request, const std::string& path, const Html& content);

/// An input field under its label. Further attributes may follow.
Html Field(const std::string& label, const std::string& name, const std::string& value,
           const std::string& type = "text", const Html::Attributes& more = {});

Html Hidden(const std::string& name, const std::string& value);

/// A button that sends its form; the kinds are classes of the style sheet: primary, danger, plain.
Html Button(const std::string& label, const std::string& kind, const std::string& value = "");

}  // namespace kel::server
