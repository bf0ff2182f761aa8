#include <gmock/gmock.h>

#include "control/Registrar.h"
#include "control/RegistrationScript.h"
#include "support/ScratchKey.h"

namespace kel {
namespace {

TEST(RegistrationScript, NamesTheLineOfAMalformedScript)
{
    std::wstring deep = L"HKCR {";
    for (int i = 0; i < 40; ++i)
        deep += L" a {";
    const std::pair<std::wstring, const char*> rows[] = {
        {L"HKCR { '' = s 'x' }", "a name"},           {deep, "too deep"},
        {L"HKCR { a = d 'x' }", "a number"},          {L"", "line 1: HKCR"},
        {L"HKCR { a = d '-1' }", "a number"},         {L"HKLM { }", "HKCR is"},
        {L"HKCR { NoRemove { } }", "a name"},         {L"HKCR", "opening brace"},
        {L"HKCR { a = d '\n1' }", "a number"},        {L"HKCR { a = }", "a type"},
        {L"HKCR { a = s 'x }", "closing quote"},      {L"HKCR { a = s", "a value"},
        {L"HKCR { a = d '0x0x1' }", "a number"},      {L"HKCR { } }", "may follow"},
        {L"HKCR { k { val a } }", "equals sign"},     {L"HKCR { a = s }", "a value"},
        {L"HKCR { a = d '1\uFF15' }", "a number"},    {L"HKCR {\n a\n {\n }\n", "line 5: a closing brace"},
        {L"HKCR { a = d '4294967296' }", "a number"}, {L"HKCR {\n val a = s 'x' }", "line 2: the root key"},
    };
    for (const auto& [text, message] : rows)
        EXPECT_THAT([&script = text] { RegistrationScript::Parse(script); },
                    testing::ThrowsMessage<ScriptError>(testing::HasSubstr(message)));
}

TEST(Registrar, WritesTheScriptAndTakesItBack)
{
    const test::ScratchKey root;
    root.Write(L"Kept", L"other", L"stays");
    root.Write(L"Kept\\{id}\\left over", L"", L"goes");
    root.Make(L"Kept\\Old\\deep");
    const std::vector<ScriptKey> keys = RegistrationScript::Parse(
        LR"(HKCR
{
    Plain.1 = s 'it''s'
    {
        'a b' = d '0x1F'
        val Number = d 7
        Empty
    }
    NoRemove Kept
    {
        ForceRemove {id} = s '%NAME%, 50%%'
        {
            '1' = s word
        }
        Delete Old
    }
})");
    Registrar registrar(root.Key(), {{L"NAME", L"C:\\it's here\\a.dll"}});
    registrar.Register(keys);
    const std::wstring registered = root.Dump();
    EXPECT_EQ(registered,
              L"[]\n[Kept]\nother=stays\n"
              L"[Kept\\{id}]\n=C:\\it's here\\a.dll, 50%\n[Kept\\{id}\\1]\n=word\n"
              L"[Plain.1]\n=it's\nNumber=7\n[Plain.1\\a b]\n=31\n[Plain.1\\Empty]\n");
    registrar.Register(keys);
    EXPECT_EQ(root.Dump(), registered);
    registrar.Unregister(keys);
    EXPECT_EQ(root.Dump(), L"[]\n[Kept]\nother=stays\n");
    root.Make(L"Plain.1\\Empty");
    root.Make(L"Plain.1\\foreign");
    registrar.Unregister(keys);
    EXPECT_EQ(root.Dump(), L"[]\n[Kept]\nother=stays\n[Plain.1]\n[Plain.1\\foreign]\n");
}

TEST(Registrar, LeavesNothingBehindWhenItFails)
{
    const std::wstring tooLong(300, L'k');  // the registry takes names of at most 255 characters
    for (const std::wstring& script :
         {L"HKCR { a = s 'x' { b } " + tooLong + L" }", std::wstring(L"HKCR { a = s 'x' b = s '%UNKNOWN%' }"),
          std::wstring(L"HKCR { a = s 'x' b { val c = s '%open' } }")}) {
        const test::ScratchKey root;
        Registrar registrar(root.Key(), {});
        EXPECT_THROW(registrar.Register(RegistrationScript::Parse(script)), RegistrationError);
        EXPECT_EQ(root.Dump(), L"[]\n") << script.c_str();
    }
}

}  // namespace
}  // namespace kel
