#include <gtest/gtest.h>

#include "control/Registrar.h"
#include "control/RegistrationScript.h"
#include "support/ScratchKey.h"

namespace kel {
namespace {

constexpr const wchar_t* Script =
    LR"(
HKCR
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
})";

TEST(RegistrationScript, ReadsKeysValuesAndRules)
{
    const std::vector<ScriptKey> keys = RegistrationScript::Parse(Script);
    ASSERT_EQ(keys.size(), 2U);
    EXPECT_EQ(keys[0].name, L"Plain.1");
    EXPECT_EQ(std::get<std::wstring>(*keys[0].defaultValue), L"it's");
    ASSERT_EQ(keys[0].keys.size(), 2U);
    EXPECT_EQ(keys[0].keys[0].name, L"a b");
    EXPECT_EQ(std::get<std::uint32_t>(*keys[0].keys[0].defaultValue), 31U);
    EXPECT_FALSE(keys[0].keys[1].defaultValue);
    ASSERT_EQ(keys[0].values.size(), 1U);
    EXPECT_EQ(std::get<std::uint32_t>(keys[0].values[0].data), 7U);
    EXPECT_EQ(keys[1].rule, KeyRule::NoRemove);
    ASSERT_EQ(keys[1].keys.size(), 2U);
    EXPECT_EQ(keys[1].keys[0].rule, KeyRule::ForceRemove);
    EXPECT_EQ(keys[1].keys[0].name, L"{id}");
    EXPECT_EQ(keys[1].keys[1].rule, KeyRule::Delete);
}

TEST(RegistrationScript, NamesTheLineOfAMalformedScript)
{
    std::wstring deep = L"HKCR {";
    for (int i = 0; i < 40; ++i)
        deep += L" a {";
    const std::pair<std::wstring, const char*> rows[] = {
        {L"", "line 1: HKCR is expected"},
        {L"HKLM { }", "HKCR is expected"},
        {L"HKCR", "an opening brace is expected"},
        {L"HKCR {", "a closing brace is missing"},
        {L"HKCR {\n a\n {\n }\n", "line 5: a closing brace is missing"},
        {L"HKCR { } }", "nothing may follow"},
        {L"HKCR { a = }", "a type, s or d, is expected"},
        {L"HKCR { a = s }", "a value is expected"},
        {L"HKCR { a = s", "a value is expected"},
        {L"HKCR { a = d 'x' }", "a number is expected"},
        {L"HKCR { a = d '-1' }", "a number is expected"},
        {L"HKCR { a = d '4294967296' }", "a number is expected"},
        {L"HKCR { a = d '0x0x1' }", "a number is expected"},
        {L"HKCR { a = d '\n1' }", "a number is expected"},
        {L"HKCR { a = d '1\uFF15' }", "a number is expected"},
        {L"HKCR { a = s 'x }", "a closing quote is missing"},
        {L"HKCR { '' = s 'x' }", "a name is expected"},
        {L"HKCR { k { val a } }", "an equals sign is expected"},
        {L"HKCR {\n val a = s 'x' }", "line 2: the root key takes no values"},
        {L"HKCR { NoRemove { } }", "a name is expected"},
        {deep, "nested too deep"},
    };
    for (const auto& [text, message] : rows) {
        try {
            RegistrationScript::Parse(text);
            ADD_FAILURE() << "accepted: " << text.c_str();
        } catch (const ScriptError& error) {
            EXPECT_NE(std::string(error.what()).find(message), std::string::npos) << error.what();
        }
    }
}

TEST(Registrar, WritesTheScriptAndTakesItBack)
{
    const test::ScratchKey root;
    root.Write(L"Kept\\other", L"", L"stays");
    root.Write(L"Kept\\{id}\\left over", L"", L"goes");
    root.Make(L"Kept\\Old\\deep");
    const std::vector<ScriptKey> keys = RegistrationScript::Parse(Script);
    Registrar registrar(root.Key(), {{L"NAME", L"C:\\it's here\\a.dll"}});
    registrar.Register(keys);
    const std::wstring registered = root.Dump();
    EXPECT_EQ(registered,
              L"[]\n[Kept]\n[Kept\\other]\n=stays\n[Kept\\{id}]\n=C:\\it's here\\a.dll, "
              L"50%\n[Kept\\{id}\\1]\n=word\n"
              L"[Plain.1]\n=it's\nNumber=7\n[Plain.1\\a b]\n=31\n[Plain.1\\Empty]\n");
    registrar.Register(keys);
    EXPECT_EQ(root.Dump(), registered);
    registrar.Unregister(keys);
    EXPECT_EQ(root.Dump(), L"[]\n[Kept]\n[Kept\\other]\n=stays\n");
    registrar.Unregister(keys);
}

TEST(Registrar, KeepsAPlainKeyThatHoldsForeignKeys)
{
    const test::ScratchKey root;
    const std::vector<ScriptKey> keys = RegistrationScript::Parse(L"HKCR { a = s 'x' { b } }");
    Registrar registrar(root.Key(), {});
    registrar.Register(keys);
    root.Make(L"a\\foreign");
    registrar.Unregister(keys);
    EXPECT_EQ(root.Dump(), L"[]\n[a]\n=x\n[a\\foreign]\n");
}

TEST(Registrar, LeavesNothingBehindWhenItFails)
{
    const std::wstring tooLong(300, L'k');  // the registry takes names of at most 255 characters
    const std::wstring rows[] = {
        L"HKCR { a = s 'x' { b } " + tooLong + L" }",
        L"HKCR { a = s 'x' b = s '%UNKNOWN%' }",
        L"HKCR { a = s 'x' b { val c = s '%open' } }",
    };
    for (const std::wstring& script : rows) {
        const test::ScratchKey root;
        Registrar registrar(root.Key(), {{L"NAME", L"x"}});
        EXPECT_THROW(registrar.Register(RegistrationScript::Parse(script)), RegistrationError);
        EXPECT_EQ(root.Dump(), L"[]\n") << script.c_str();
    }
}

}  // namespace
}  // namespace kel
