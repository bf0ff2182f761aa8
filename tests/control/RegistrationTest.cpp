#include <gmock/gmock.h>

#include "control/Registrar.h"
#include "control/RegistrationScript.h"
#include "support/ScratchKey.h"

namespace kel {
namespace {

TEST(RegistrationScript, NamesTheLineOfAMalformedScript)
{
    const std::pair<const wchar_t*, const char*> rows[] = {
        {L"", "line 1: HKCR is expected."},
        {L"HKCR { } }", "line 1: nothing may follow the root key."},
        {L"HKCR {\n a\n {\n }\n", "line 5: a name or a closing brace is expected."},
        {L"HKCR { NoRemove ForceRemove a }", "a name"},
        {L"HKCR { { } }", "line 1: a name"},
        {L"HKCR { k { val a } }", "an equals sign is expected."},
        {L"HKCR { k=x }", "line 1: a name"},
        {L"HKCR {\n a = 'x' }", "line 2: the type s is expected."},
        {L"HKCR\n a { }", "line 2: an opening brace is expected."},
        {L"HKCR { a = s x }", "a text in quotes is expected."},
        {L"HKCR {\n a = s 'x }", "line 2: a closing quote is missing."},
        {L"HKCR { a = s '%MODULE' }", "a closing percent sign is missing."},
        {L"HKCR {\n b = s 'x %NAME%' }", "line 2: a known parameter is expected."},
    };
    for (const auto& [text, message] : rows) {
        const auto parse = [&script = text] { RegistrationScript::Parse(script, {{L"MODULE", L"x"}}); };
        EXPECT_THAT(parse, testing::ThrowsMessage<ScriptError>(testing::HasSubstr(message))) << text;
    }
}

TEST(Registrar, WritesTheScriptAndRemovesItAgain)
{
    const test::ScratchKey root;
    root.Write(L"Kept", L"other", L"stays");
    root.Write(L"Kept\\{id}\\left over", L"", L"goes");
    const std::vector<ScriptKey> keys = RegistrationScript::Parse(
        L"HKCR {\n Plain.1 = s '' { val Name = s '%NAME%' Empty }\n"
        L" NoRemove Kept { ForceRemove {id} = s 'at %NAME%, 50' { 1 = s 'word' } } }",
        {{L"NAME", L"C:\\it's %here%\\a.dll"}});
    const Registrar registrar(root.Key());
    registrar.Register(keys);
    registrar.Register(keys);
    const std::wstring kept = L"[]\n[Kept]\nother=stays\n",
                       plain = L"[Plain.1]\n=\nName=C:\\it's %here%\\a.dll\n";
    EXPECT_EQ(root.Dump(), kept + L"[Kept\\{id}]\n=at C:\\it's %here%\\a.dll, 50\n[Kept\\{id}\\1]\n=word\n" +
                               plain + L"[Plain.1\\Empty]\n");
    root.Make(L"Plain.1\\foreign");
    registrar.Unregister(keys);
    EXPECT_EQ(root.Dump(), kept + plain + L"[Plain.1\\foreign]\n");
    RegDeleteKeyW(root.Key(), L"Plain.1\\foreign");
    registrar.Unregister(keys);
    EXPECT_EQ(root.Dump(), kept);

    // The registry takes names of at most 255 characters.
    const std::wstring failing = L"HKCR { a = s 'x' { b } " + std::wstring(300, L'k') + L" }";
    EXPECT_THAT(
        [&] { registrar.Register(RegistrationScript::Parse(failing, {})); },
        testing::ThrowsMessage<RegistrationError>(testing::HasSubstr("A registry key cannot be created.")));
    EXPECT_EQ(root.Dump(), kept);
}

}  // namespace
}  // namespace kel
