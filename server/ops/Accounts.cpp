#include "server/ops/Accounts.h"

#include <algorithm>
#include <istream>
#include <ostream>
#include <stdexcept>

#include "server/admin/Form.h"
#include "server/admin/Html.h"
#include "server/admin/Secrets.h"
#include "server/admin/Sessions.h"

namespace kel::server {

namespace {

constexpr std::size_t MaxNameBytes = 64;
constexpr int MinPasswordCharacters = 12;
constexpr int UsualDays = 365, MaxDays = 3650;

void AddUser(const std::string& role, const std::string& name, Store& store, std::istream& input)
{
    if (role != "editor" && role != "reader")
        throw std::runtime_error("a role is editor or reader, not '" + role + "'");
    if (name.empty() || name.size() > MaxNameBytes || name != Clean(name) ||
        name.find_first_of("\t\r\n") != name.npos)
        throw std::runtime_error("a name has 1 to 64 bytes and no control characters");
    std::string password;
    std::getline(input, password);
    if (password.ends_with('\r'))
        password.pop_back();
    const auto characters =
        std::count_if(password.begin(), password.end(), [](char c) { return (c & 0xC0) != 0x80; });
    if (characters < MinPasswordCharacters || password.size() > MaxPasswordBytes || password != Clean(password))
        throw std::runtime_error("the password, a line on standard input, needs at least 12 characters");
    store.Keep(Account{name, HashPassword(password), role == "editor" ? Role::Editor : Role::Reader},
               CommandLine);
}

void RemoveUser(const std::string& name, Store& store)
{
    if (!store.RemoveAccount(name, CommandLine))
        throw std::runtime_error("there is no account '" + name + "'");
}

void AddToken(const std::string& name, const std::string& daysText, Store& store, std::ostream& output)
{
    const std::int64_t days = daysText.empty() ? UsualDays : WholeNumber(daysText);
    if (days < 1 || days > MaxDays)
        throw std::runtime_error("a token lasts 1 to 3650 days");
    const auto account = store.FindAccount(name);
    if (!account)
        throw std::runtime_error("there is no account '" + name + "'");
    output << MakeToken(store, *account, static_cast<int>(days)) << '\n';
    store.Note(CommandLine, "token made", name + ", " + std::to_string(days) + " days");
}

}  // namespace

bool RunAccountCommand(const std::vector<std::string>& words,
                       const std::function<std::unique_ptr<Store>()>& open, std::istream& input,
                       std::ostream& output)
{
    const std::string command = words.size() < 2 ? "" : words[0] + " " + words[1];
    if (command == "user add" && words.size() == 4)
        AddUser(words[2], words[3], *open(), input);
    else if (command == "user remove" && words.size() == 3)
        RemoveUser(words[2], *open());
    else if (command == "user list" && words.size() == 2)
        for (const Account& account : open()->Accounts())
            output << (account.role == Role::Editor ? "editor " : "reader ") << account.name << '\n';
    else if (command == "token add" && (words.size() == 3 || words.size() == 4))
        AddToken(words[2], words.size() == 4 ? words[3] : "", *open(), output);
    else
        return false;
    return true;
}

}  // namespace kel::server
