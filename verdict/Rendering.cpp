#include "verdict/Rendering.h"

#include <nlohmann/json.hpp>
#include <span>

#include "verdict/PageStyle.h"
#include "verdict/text/Text.h"

namespace kel {

namespace {

using nlohmann::ordered_json;

std::string Element(const std::string& name, const std::string& text)
{
    return "<" + name + ">" + Escape(text) + "</" + name + ">";
}

std::string Mark(Result result)
{
    return result == Result::Pass ? "✓ Meets" : result == Result::Fail ? "✗ Does not meet" : "? Not known";
}

/// A line's alternatives; none for a plain line.
std::span<const VerdictPart> Alternatives(const VerdictLine& line)
{
    return line.parts.size() > 1 ? std::span(line.parts) : std::span<const VerdictPart>();
}

std::string RenderRow(const VerdictLine& line)
{
    const std::string found = line.found.empty() ? "–" : Escape(line.found);
    std::string row =
        "<tr class=\"" + std::string(ToString(line.result)) + "\"><th scope=\"row\">" + Escape(line.label) +
        (line.recommended ? " <span class=\"kind\">Recommended</span>" : "") +
        "</th><td data-label=\"Needed\">" + Escape(line.ShownNeeded()) + "</td><td data-label=\"Found\">" +
        found + "</td><td><span class=\"mark\">" + Mark(line.result) + "</span>";
    if (!line.advice.empty() && line.result != Result::Pass)
        row += "<span class=\"advice\">" + Escape(line.advice) + "</span>";
    return row + "</td></tr>\n";
}

ordered_json LinesAsJson(const Verdict& verdict)
{
    ordered_json lines = ordered_json::array();
    for (const VerdictLine& line : verdict.lines) {
        ordered_json entry{{"result", ToString(line.result)},
                           {"label", line.label},
                           {"needed", line.needed},
                           {"found", line.found}};
        if (!line.neededText.empty())
            entry["needed text"] = line.neededText;
        if (!line.advice.empty())
            entry["advice"] = line.advice;
        if (line.recommended)
            entry["recommended"] = true;
        for (const VerdictPart& part : Alternatives(line))
            entry["any of"].push_back(
                {{"result", ToString(part.result)}, {"needed", part.needed}, {"found", part.found}});
        lines.push_back(std::move(entry));
    }
    return lines;
}

}  // namespace

std::string RenderXml(const Verdict& verdict, const std::string& item, const std::string& schema)
{
    std::string text = "<analysis result=\"" + std::string(ToString(verdict.total)) + "\" item=\"" +
                       Escape(item) + "\" schema=\"" + Escape(schema) + "\">" +
                       Element("title", verdict.title);
    for (const VerdictLine& line : verdict.lines) {
        text += "<requirement result=\"" + std::string(ToString(line.result)) + "\">" +
                Element("label", line.label) + Element("needed", line.needed) + Element("found", line.found);
        if (!line.advice.empty())
            text += Element("advice", line.advice);
        // An element, not an attribute: pages find a requirement by its exact tag.
        text += line.recommended ? "<recommended/>" : "";
        if (!line.neededText.empty())
            text += Element("neededtext", line.neededText);
        text += "</requirement>";
    }
    return text + "</analysis>";
}

std::string RenderJson(const Verdict& verdict, const std::string& item, const std::string& schema)
{
    ordered_json content{
        {"result", ToString(verdict.total)}, {"item", item}, {"schema", schema}, {"title", verdict.title}};
    content["requirements"] = LinesAsJson(verdict);
    return content.dump();
}

std::string RenderForPage(const Verdict& verdict, const std::string& product, const std::string& session)
{
    ordered_json content{{"product", product},
                         {"session", session},
                         {"result", ToString(verdict.total)},
                         {"title", verdict.title}};
    content["requirements"] = LinesAsJson(verdict);
    return content.dump();
}

std::string RenderPage(const Verdict& verdict, const SupportNote* note)
{
    const std::string total(ToString(verdict.total));
    std::string page =
        "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\"><title>" +
        Escape(verdict.title) + "</title>\n<style>" + PageStyle + "</style></head>\n<body><main><h1>" +
        Escape(verdict.title) + "</h1>\n<p class=\"total " + total + "\">Result: " + total +
        "</p>\n<table><caption>What is needed, and what this machine has</caption>\n<thead><tr>"
        "<th scope=\"col\">Requirement</th><th scope=\"col\">Needed</th><th scope=\"col\">Found</th>"
        "<th scope=\"col\">Result</th></tr></thead>\n<tbody>\n";
    for (const VerdictLine& line : verdict.lines)
        page += RenderRow(line);
    page += "</tbody></table>\n";
    if (note != nullptr)
        page += RenderNote(*note);
    return page + "</main></body></html>\n";
}

std::string RenderLines(const Verdict& verdict)
{
    ordered_json lines = ordered_json::array();
    for (const VerdictLine& line : verdict.lines) {
        ordered_json entry{{"id", line.group}, {"found", line.found}, {"result", ToString(line.result)}};
        if (line.recommended)
            entry["recommended"] = true;
        for (const VerdictPart& part : Alternatives(line))
            entry["any of"].push_back({{"id", part.group},
                                       {"needed", part.needed},
                                       {"found", part.found},
                                       {"result", ToString(part.result)}});
        lines.push_back(std::move(entry));
    }
    return lines.dump();
}

}  // namespace kel
