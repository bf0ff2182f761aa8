#include "server/admin/Layout.h"

#include "server/admin/Pages.h"
#include "server/admin/kit/Texts.h"
#include "server/base/Embedded.h"

namespace kel::server {

namespace {

constexpr const char* SiteName = "Analysis service";

Html Navigation(const AdminRequest& request)
{
    struct Entry {
        const char *path, *label;
    };
    constexpr Entry Entries[] = {{"/", "Overview"},
                                 {"/reports", "Reports"},
                                 {"/check", "Check a file"},
                                 {"/values", "Values"},
                                 {"/audit", "Audit"}};
    Html list;
    for (const Entry& entry : Entries) {
        if (entry.path == std::string_view("/audit") && !request.IsEditor())
            continue;
        Html::Attributes attributes{{"href", entry.path}};
        if (request.target.path == entry.path)
            attributes.emplace_back("aria-current", "page");
        list += Html::Element("li", {}, Html::Element("a", attributes, entry.label));
    }
    return Html::Element("nav", {{"aria-label", "Pages"}}, Html::Element("ul", {}, list));
}

Html PageHeader(const AdminRequest& request)
{
    Html content = Html::Element("a", {{"class", "brand"}, {"href", "/"}}, SiteName);
    if (!request.login.account.empty()) {
        content += Navigation(request);
        Html who = Html::Element(
            "span", {{"class", "who"}},
            {Html::Stored(request.login.account), " (" + std::string(ToString(request.login.role)) + ")"});
        if (!request.isSingleSignOn)
            who += PostForm(request, "/logout", Button("Log out", "plain"));
        content += Html::Element("div", {{"class", "account"}}, who);
    }
    return Html::Element("header", {}, content);
}

}  // namespace

Answer ShowStyle(const AdminRequest&)
{
    return Answer::Of("text/css; charset=utf-8", AdminStyle);
}

Answer Page(const AdminRequest& request, const std::string& title, const Html& content, int status)
{
    const Html head = Html::Element(
        "head", {},
        {Html::Element("meta", {{"charset", "utf-8"}}),
         Html::Element("meta", {{"name", "viewport"}, {"content", "width=device-width, initial-scale=1"}}),
         Html::Element("meta", {{"name", "color-scheme"}, {"content", "light dark"}}),
         Html::Element("title", {}, title + " – " + SiteName),
         Html::Element("link", {{"rel", "stylesheet"}, {"href", "/style.css"}}),
         Html::Element("link", {{"rel", "icon"}, {"href", "data:,"}})});
    const Html body =
        Html::Element("body", {},
                      {Html::Element("a", {{"class", "skip"}, {"href", "#content"}}, "Skip to the content"),
                       PageHeader(request),
                       Html::Element("main", {{"id", "content"}, {"tabindex", "-1"}},
                                     {Html::Element("h1", {}, Html::Stored(title)), content})});
    Answer answer =
        Answer::Of("text/html; charset=utf-8",
                   "<!DOCTYPE html>\n" + Html::Element("html", {{"lang", "en"}}, {head, body}).Markup());
    answer.status = status;
    return answer;
}

Answer ErrorPage(const AdminRequest& request, int status, const std::string& reason)
{
    const char* title = status == 403   ? "Not allowed"
                        : status == 404 ? "Not found"
                        : status == 409 ? "Edit conflict"
                        : status == 429 ? "Too many attempts"
                        : status >= 500 ? "The service cannot answer"
                                        : "The request failed";
    Html content = Notice("bad", reason) + Html::Element("p", {}, Link("/", "To the overview"));
    if (const std::string& text = request.form.Text("text"); !text.empty() && request.IsEditor())
        content += Html::Element("label", {{"for", "typed"}}, "What you typed, to copy it") +
                   Html::Element("textarea", {{"id", "typed"}, {"rows", "20"}, {"readonly", ""}}, text);
    return Page(request, title, content, status);
}

Answer Redirect(std::string path)
{
    Answer answer = Answer::Empty(303);
    answer.headers.emplace_back("Location", std::move(path));
    return answer;
}

void AddSafety(Answer& answer)
{
    answer.headers.emplace_back(
        "Content-Security-Policy",
        "default-src 'none'; style-src 'self'; img-src 'self' data:; form-action 'self'; "
        "frame-ancestors 'none'; base-uri 'none'");
    answer.headers.emplace_back("X-Content-Type-Options", "nosniff");
    answer.headers.emplace_back("X-Frame-Options", "DENY");
    answer.headers.emplace_back("Referrer-Policy", "same-origin");
}

Html Notice(const std::string& kind, const Html& text)
{
    return Html::Element("p", {{"class", "notice " + kind}, {"role", kind == "bad" ? "alert" : "status"}},
                         text);
}

Html Mark(std::optional<Result> result)
{
    if (!result)
        return "–";
    const char* sign = result == Result::Pass ? "✓ " : result == Result::Fail ? "✗ " : "? ";
    const std::string text(ToString(*result));
    return Html::Element("span", {{"class", "mark " + text}}, sign + text);
}

Html LineLabel(const std::string& label, bool recommended)
{
    const Html text = Html::Stored(label);
    return recommended ? text + " " + Html::Element("span", {{"class", "kind"}}, "Recommended") : text;
}

Html Link(const std::string& path, const Html& text)
{
    return Html::Element("a", {{"href", path}}, text);
}

Html ButtonLink(const std::string& path, const std::string& label, const std::string& kind)
{
    return Html::Element("a", {{"class", "button " + kind}, {"href", path}}, label);
}

Html Moment(std::int64_t time)
{
    return Html::Element("time", {{"datetime", IsoTime(time)}}, TimeText(time));
}

Html Figure(const std::string& name, const Html& value)
{
    return Html::Element("div", {}, {Html::Element("b", {}, value), name});
}

Html ProductLink(const std::string& referrer, const std::string& title, const std::string& query)
{
    const Html link = Link(ProductPath(referrer) + (query.empty() ? "" : "?" + query), referrer);
    return title.empty() || title == referrer
               ? link
               : link + " " +
                     Html::Element("span", {{"class", "kind"}, {"title", title}}, Html::Stored(title));
}

std::string ProductPath(const std::string& referrer)
{
    return "/products/" + UrlEncode(referrer);
}

std::string RequirementsPath(const std::string& referrer)
{
    return ProductPath(referrer) + "/requirements";
}

std::string ReportPath(std::int64_t report)
{
    return "/reports/" + std::to_string(report);
}

Html PostForm(const AdminRequest& request, const std::string& path, const Html& content)
{
    return Html::Element("form", {{"method", "post"}, {"action", path}},
                         {Hidden("token", request.login.formToken), content});
}

Html Field(const std::string& label, const std::string& name, const std::string& value,
           const std::string& type, const Html::Attributes& more)
{
    Html::Attributes attributes{{"id", name}, {"name", name}, {"type", type}, {"value", value}};
    attributes.insert(attributes.end(), more.begin(), more.end());
    return Html::Element(
        "div", {{"class", "field"}},
        {Html::Element("label", {{"for", name}}, label), Html::Element("input", attributes)});
}

Html Hidden(const std::string& name, const std::string& value)
{
    return Html::Element("input", {{"type", "hidden"}, {"name", name}, {"value", value}});
}

Html Button(const std::string& label, const std::string& kind, const std::string& value)
{
    Html::Attributes attributes{{"type", "submit"}, {"class", kind}};
    if (!value.empty()) {
        attributes.emplace_back("name", "do");
        attributes.emplace_back("value", value);
    }
    return Html::Element("button", attributes, label);
}

}  // namespace kel::server
