#include "server/ops/Accounts.h"

#include <fmt/format.h>
#include <algorithm>
#include <istream>
#include <ostream>
#include <stdexcept>

#include "server/admin/kit/Form.h"
#include "server/admin/kit/Html.h"
#include "server/admin/login/Secrets.h"
#include "server/admin/login/Sessions.h"
#include "server/store/Accounts.h"
#include "server/store/Audit.h"

namespace kel::server {

namespace {

constexpr std::size_t MaxNameBytes = 64;
constexpr int MinPasswordCharacters = 12;
constexpr int UsualDays = 365, MaxDays = 3650;

void AddUser(const std::string& roleText, const std::string& name, Database& database, std::istream& input)
{
    const auto role = ParseRole(roleText);
    if (!role)
        throw std::runtime_error(fmt::format("a role is editor or reader, not '{}'", roleText));
    if (name.empty() || name.size() > MaxNameBytes || name != Clean(name) ||
        name.find_first_of("\t\r\n") != name.npos)
        throw std::runtime_error("a name has 1 to 64 bytes and no control characters");
    std::string password;
    std::getline(input, password);
    if (password.ends_with('\r'))
        password.pop_back();
    const auto characters =
        std::count_if(password.begin(), password.end(), [](char c) { return (c & 0xC0) != 0x80; });
    if (characters < MinPasswordCharacters || password.size() > MaxPasswordBytes ||
        password != Clean(password))
        throw std::runtime_error(fmt::format(
            "the password, a line on standard input, needs at least {} characters", MinPasswordCharacters));
    Accounts(database).Save(Account{name, HashPassword(password), *role}, CommandLine);
}

void ListUsers(Database& database, std::ostream& output)
{
    for (const Account& account : Accounts(database).List())
        output << ToString(account.role) << ' ' << account.name << '\n';
}

void RemoveUser(const std::string& name, Database& database)
{
    if (!Accounts(database).Remove(name, CommandLine))
        throw std::runtime_error(fmt::format("there is no account '{}'", name));
}

void AddToken(const std::string& name, const std::string& daysText, Database& database, std::ostream& output)
{
    const std::int64_t days = daysText.empty() ? UsualDays : WholeNumber(daysText);
    if (days < 1 || days > MaxDays)
        throw std::runtime_error(fmt::format("a token lasts 1 to {} days", MaxDays));
    const auto account = Accounts(database).Find(name);
    if (!account)
        throw std::runtime_error(fmt::format("there is no account '{}'", name));
    output << MakeToken(database, *account, static_cast<int>(days)) << '\n';
    Audit(database).Add(CommandLine, "token made", fmt::format("{}, {} days", name, days));
}

}  // namespace

bool RunAccountCommand(const std::vector<std::string>& words,
                       const std::function<std::unique_ptr<Database>()>& open, std::istream& input,
                       std::ostream& output)
{
    const std::string command = words.size() < 2 ? "" : words[0] + " " + words[1];
    if (command == "user add" && words.size() == 4)
        AddUser(words[2], words[3], *open(), input);
    else if (command == "user remove" && words.size() == 3)
        RemoveUser(words[2], *open());
    else if (command == "user list" && words.size() == 2)
        ListUsers(*open(), output);
    else if (command == "token add" && (words.size() == 3 || words.size() == 4))
        AddToken(words[2], words.size() == 4 ? words[3] : "", *open(), output);
    else
        return false;
    return true;
}

}  // namespace kel::server
