#include "control/RegistrationScript.h"

#include <algorithm>
#include <utility>

namespace kel {

namespace {

constexpr std::wstring_view Blanks = L" \t\r\n";
constexpr int DeepestKey = 32;

struct Token {
    std::wstring text;
    bool isQuoted = false;

    bool Is(std::wstring_view word) const { return !isQuoted && text == word; }
};

/// Recursive descent over the tokens of a script. The token at hand is in `current`; an empty one that is not
/// quoted is the end.
class Parser {
public:
    explicit Parser(std::wstring_view script) : text(script) { Advance(); }

    std::vector<ScriptKey> ParseRoot()
    {
        if (!Accept(L"HKCR") && !Accept(L"HKEY_CLASSES_ROOT"))
            Fail("HKCR is expected");
        Expect(L"{");
        ScriptKey root;
        ParseBody(root, 1);
        if (!AtEnd())
            Fail("nothing may follow the root key");
        return std::move(root.keys);
    }

private:
    bool AtEnd() const { return current.text.empty() && !current.isQuoted; }

    /// The inside of a key, up to and with its closing brace.
    void ParseBody(ScriptKey& key, int depth)
    {
        if (depth > DeepestKey)
            Fail("the keys are nested too deep");
        while (!Accept(L"}")) {
            if (AtEnd())
                Fail("a closing brace is missing");
            if (depth == 1 && current.Is(L"val"))
                Fail("the root key takes no values");
            if (Accept(L"val"))
                key.values.push_back(ParseValue());
            else
                key.keys.push_back(ParseKey(depth));
        }
    }

    ScriptValue ParseValue()
    {
        ScriptValue value;
        value.name = TakeName();
        Expect(L"=");
        value.data = ParseData();
        return value;
    }

    ScriptKey ParseKey(int depth)
    {
        ScriptKey key;
        if (Accept(L"NoRemove"))
            key.rule = KeyRule::NoRemove;
        else if (Accept(L"ForceRemove"))
            key.rule = KeyRule::ForceRemove;
        else if (Accept(L"Delete"))
            key.rule = KeyRule::Delete;
        key.name = TakeName();
        if (Accept(L"="))
            key.defaultValue = ParseData();
        if (Accept(L"{"))
            ParseBody(key, depth + 1);
        return key;
    }

    ScriptData ParseData()
    {
        const bool isNumber = Accept(L"d");
        if (!isNumber && !Accept(L"s"))
            Fail("a type, s or d, is expected");
        if (AtEnd() || IsPunctuation())
            Fail("a value is expected");
        const std::wstring data = Take();
        return isNumber ? ScriptData(ParseNumber(data)) : ScriptData(data);
    }

    std::uint32_t ParseNumber(const std::wstring& number) const
    {
        const bool isHexadecimal = number.starts_with(L"&H") || number.starts_with(L"0x");
        const std::wstring digits = isHexadecimal ? number.substr(2) : number;
        const wchar_t* allowed = isHexadecimal ? L"0123456789ABCDEFabcdef" : L"0123456789";
        try {
            // The conversion alone would skip blanks, and take signs, a second 0x and digits outside ASCII.
            if (digits.find_first_not_of(allowed) == std::wstring::npos)
                return std::stoul(digits, nullptr, isHexadecimal ? 16 : 10);
        } catch (const std::logic_error&) {
            // no digits, or a number that is too large
        }
        Fail("a number is expected");
    }

    std::wstring TakeName()
    {
        if (current.text.empty() || IsPunctuation())
            Fail("a name is expected");
        return Take();
    }

    bool IsPunctuation() const { return current.Is(L"{") || current.Is(L"}") || current.Is(L"="); }

    std::wstring Take()
    {
        std::wstring taken = std::move(current.text);
        Advance();
        return taken;
    }

    bool Accept(std::wstring_view word)
    {
        if (!current.Is(word))
            return false;
        Advance();
        return true;
    }

    void Expect(std::wstring_view word)
    {
        if (!Accept(word))
            Fail(word == L"{" ? "an opening brace is expected" : "an equals sign is expected");
    }

    void Advance()
    {
        position = std::min(text.find_first_not_of(Blanks, position), text.size());
        tokenStart = position;
        current = Token();
        if (position == text.size())
            return;
        if (text[position] == L'\'')
            ReadQuoted();
        else
            ReadWord();
    }

    void ReadQuoted()
    {
        current.isQuoted = true;
        for (++position; position < text.size(); ++position) {
            if (text[position] == L'\'') {
                ++position;
                if (position == text.size() || text[position] != L'\'')
                    return;
            }
            current.text += text[position];
        }
        Fail("a closing quote is missing");
    }

    /// A word ends at a blank, so that a class id in braces is one; a brace alone is a word of its own.
    void ReadWord()
    {
        const std::size_t end = std::min(text.find_first_of(Blanks, position), text.size());
        current.text = text.substr(position, end - position);
        position = end;
    }

    [[noreturn]] void Fail(const char* reason) const
    {
        const auto line =
            std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(tokenStart), L'\n') + 1;
        throw ScriptError("Registration script, line " + std::to_string(line) + ": " + reason + ".");
    }

    std::wstring_view text;
    std::size_t position = 0;
    std::size_t tokenStart = 0;
    Token current;
};

}  // namespace

std::vector<ScriptKey> RegistrationScript::Parse(std::wstring_view text)
{
    return Parser(text).ParseRoot();
}

}  // namespace kel
