#include "control/RegistrationScript.h"

#include <algorithm>
#include <utility>

namespace kel {

namespace {

constexpr std::wstring_view Blanks = L" \t\r\n";

/// Recursive-descent parser over the words and quoted texts of a script. `current` is the current one; an
/// empty word is the end.
class Parser {
public:
    Parser(std::wstring_view newScript, const RegistrationScript::Parameters& newParameters)
        : script(newScript), parameters(newParameters)
    {
        Advance();
    }

    std::vector<ScriptKey> ParseRoot()
    {
        Expect(L"HKCR", "HKCR is expected");
        Expect(L"{", "an opening brace is expected");
        std::vector<ScriptKey> keys;
        while (!Accept(L"}"))
            keys.push_back(ParseKey());
        if (isQuoted || !current.empty())
            Fail("nothing may follow the root key");
        return keys;
    }

private:
    ScriptKey ParseKey()
    {
        ScriptKey key;
        if (Accept(L"NoRemove"))
            key.rule = KeyRule::NoRemove;
        else if (Accept(L"ForceRemove"))
            key.rule = KeyRule::ForceRemove;
        key.name = TakeName();
        if (current == L"=")
            key.values.push_back({L"", ParseText()});
        if (Accept(L"{"))
            ParseBody(key);
        return key;
    }

    /// The contents of a key, through its closing brace.
    void ParseBody(ScriptKey& key)
    {
        while (!Accept(L"}")) {
            if (Accept(L"val")) {
                std::wstring name = TakeName();
                key.values.push_back({std::move(name), ParseText()});
            } else {
                key.keys.push_back(ParseKey());
            }
        }
    }

    std::wstring ParseText()
    {
        Expect(L"=", "an equals sign is expected");
        Expect(L"s", "the type s is expected");
        if (!isQuoted)
            Fail("a text in quotes is expected");
        std::wstring text = Expand(current);
        Advance();
        return text;
    }

    /// Words of the grammar are not allowed as names, so that a misplaced one is not taken for a key.
    std::wstring TakeName()
    {
        constexpr std::wstring_view Reserved[] = {L"", L"{", L"}", L"val", L"NoRemove", L"ForceRemove"};
        if (isQuoted || std::ranges::count(Reserved, current) != 0 ||
            current.find_first_of(L"='") != std::wstring_view::npos)
            Fail("a name or a closing brace is expected");
        std::wstring name(current);
        Advance();
        return name;
    }

    bool Accept(std::wstring_view word)
    {
        if (isQuoted || current != word)
            return false;
        Advance();
        return true;
    }

    void Expect(std::wstring_view word, const char* reason)
    {
        if (!Accept(word))
            Fail(reason);
    }

    /// A word ends at a blank, so that a class id in braces is one.
    void Advance()
    {
        start = std::min(script.find_first_not_of(Blanks, next), script.size());
        isQuoted = script.substr(start).starts_with(L'\'');
        next = isQuoted ? script.find(L'\'', start + 1) : script.find_first_of(Blanks, start);
        if (isQuoted && next == std::wstring_view::npos)
            Fail("a closing quote is missing");
        next = std::min(next, script.size());
        current = script.substr(start, next - start);
        if (isQuoted) {
            current.remove_prefix(1);
            ++next;
        }
    }

    /// The parameters go into the parsed text, so that what they contain needs no quoting.
    std::wstring Expand(std::wstring_view text) const
    {
        std::wstring expanded;
        for (;;) {
            const std::size_t open = text.find(L'%');
            expanded += text.substr(0, open);
            if (open == std::wstring_view::npos)
                return expanded;
            const std::size_t close = text.find(L'%', open + 1);
            if (close == std::wstring_view::npos)
                Fail("a closing percent sign is missing");
            const auto parameter = parameters.find(std::wstring(text.substr(open + 1, close - open - 1)));
            if (parameter == parameters.end())
                Fail("a known parameter is expected");
            expanded += parameter->second;
            text.remove_prefix(close + 1);
        }
    }

    [[noreturn]] void Fail(const char* reason) const
    {
        const auto line = std::ranges::count(script.substr(0, start), L'\n') + 1;
        throw ScriptError("Registration script, line " + std::to_string(line) + ": " + reason + ".");
    }

    std::wstring_view script;
    const RegistrationScript::Parameters& parameters;
    std::size_t start = 0;  ///< of the current word
    std::size_t next = 0;   ///< after the current word
    std::wstring_view current;
    bool isQuoted = false;
};

}  // namespace

std::vector<ScriptKey> RegistrationScript::Parse(std::wstring_view script, const Parameters& parameters)
{
    return Parser(script, parameters).ParseRoot();
}

}  // namespace kel
