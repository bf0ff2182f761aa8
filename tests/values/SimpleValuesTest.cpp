#include <comdef.h>
#include <gtest/gtest.h>

#include "values/Exists.h"
#include "values/Name.h"

namespace kel {
namespace {

TEST(Exists, SharesOneTextAmongAllObjects)
{
    const Exists no;
    Exists yes(true);
    const wchar_t* first = no.ToString();
    EXPECT_STREQ(first, L"No");
    EXPECT_STREQ(yes.ToString(), L"Yes");
    EXPECT_STREQ(first, L"Yes");
    const std::unique_ptr<Exists> clone(yes.Clone());
    EXPECT_FALSE((yes = false).Get());
    EXPECT_TRUE(clone->Get());
    EXPECT_TRUE((yes = *clone).Get());
}

TEST(Name, KeepsTextsUnchangedUpToTheFirstZero)
{
    const wchar_t* nothing = nullptr;
    const std::pair<Name, const wchar_t*> rows[] = {
        {Name(), L""},
        {Name(nothing), L""},
        {Name(L" a<b "), L" a<b "},
        {Name(std::wstring(L"ab\0cd", 5)), L"ab"},
        {Name(SharedText(L"shared")), L"shared"},
        {Name(SharedText()), L""},
    };
    for (const auto& [name, text] : rows) {
        EXPECT_STREQ(name.ToString(), text);
        EXPECT_EQ(name.HasValue(), *text != L'\0');
    }
    Name assigned(L"x");
    EXPECT_STREQ((assigned = nothing).ToString(), L"");
}

TEST(Name, SharesItsTextWithClonesUntilOneIsAssigned)
{
    Name name(L"text");
    const std::unique_ptr<Name> clone(name.Clone());
    EXPECT_EQ(clone->ToString(), name.ToString());
    name = L"other";
    EXPECT_STREQ(clone->ToString(), L"text");
    EXPECT_STREQ(name.ToString(), L"other");
}

TEST(Name, ComparesExactlyAndRefusesANameWithoutBuffer)
{
    EXPECT_TRUE(Name(L"abc") == Name(L"abc"));
    EXPECT_FALSE(Name(L"abc") == Name(L"ABC"));
    EXPECT_FALSE(Name(L"abc") == Name(L"abcd"));
    EXPECT_FALSE(Name(SharedText()) == Name(L"abc"));
    try {
        EXPECT_FALSE(Name(L"abc") == Name(SharedText()));
        FAIL() << "nothing was thrown";
    } catch (const _com_error& error) {
        EXPECT_EQ(error.Error(), E_FAIL);
    }
}

}  // namespace
}  // namespace kel
