#pragma once

#include <map>
#include <regex>

#include "fuzz/Generator.h"

namespace kel::test {

/// What the walk of a groups text answers, worked out a second time in the simplest way and shown as one
/// text.
struct Rules {
    /// What the group of a pattern holds, each time that it matches.
    static Texts All(const Text& text, const Text& pattern)
    {
        static std::map<Text, std::wregex> regexes;
        const std::wregex& regex = regexes.try_emplace(pattern, pattern).first->second;
        return {std::wsregex_token_iterator(text.begin(), text.end(), regex, 1), {}};
    }
    static Text First(const Text& text, const Text& pattern) { return All(text, pattern + L"|$").front(); }
    static Text Inside(const Text& text, const Text& open, const Text& close)
    {
        const std::size_t start = text.find(open), end = text.find(close, start);
        return end == Text::npos ? L"" : text.substr(start + open.size(), end - start - open.size());
    }

    static Text Groups(const Text& text)
    {
        Text rest = text.substr(std::min(text.find(L"<groups>"), text.size())), shown;
        for (std::size_t end = 0; rest.find(L"<group ") != Text::npos; rest.erase(0, end + 8)) {
            end = rest.find(L"</group>");
            if (end == Text::npos)
                break;
            const Text group = rest.substr(0, end), token = L"[<>= '\"]*([^<>= '\"]+)";
            shown += First(group, L"id" + token) + L"[" + First(group, L"index" + token) + L"]=";
            const Text value = Inside(rest, L"<value>", L"</value>");
            shown += value.substr(0, value.find(L'\0')) + L";";
        }
        return shown;
    }
};

}  // namespace kel::test
