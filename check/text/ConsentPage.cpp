#include "check/text/ConsentPage.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "BuildSettings.h"
#include "program/machine/Machine.h"
#include "program/machine/NamesByArea.h"
#include "program/text/Characters.h"
#include "service/ServiceHost.h"
#include "service/Utf8.h"
#include "verdict/text/Text.h"

namespace kel::check {

namespace {

using program::GroupByArea;

constexpr std::size_t MaxNames = 60;       // of values, which a page shows completely
constexpr std::size_t MaxNamesOfArea = 5;  // when there are more
constexpr std::size_t MaxTitle = 120;      // bytes

std::size_t CountNames(const program::NamesByArea& areas)
{
    std::size_t count = 0;
    for (const auto& [area, names] : areas)
        count += names.size();
    return count;
}

std::string Capitalised(std::string text)
{
    if (!text.empty() && text.front() >= 'a' && text.front() <= 'z')
        text.front() = static_cast<char>(text.front() - 'a' + 'A');
    return text;
}

std::string DescribeTransfer(const CheckName& name, const std::string& service,
                             const std::vector<int>& values)
{
    std::string text =
        "The program examines the hardware, Windows and the installed programs. It sends to " + service +
        (IsServiceSecure() ? ", encrypted" : ", without encryption") +
        ":\n• the values that are listed above\n• the product: " + name.product +
        "\n• the identifier of this check, which the page has made: " + name.session +
        "\nAs any server, it sees this computer's internet address. Its answer is the verdict, with the "
        "values that were compared. The page can get it, too.\nNo file, document or password is sent, and "
        "nothing is installed.";
    if (std::ranges::any_of(values, &program::UsesNetwork))
        text += "\nTo measure the connection, a file of 1 MB is downloaded from " + ToUtf8(KEL_CONTENT_HOST) +
                ".";
    return text;
}

}  // namespace

Page WaitingPage(const std::string& service)
{
    return {"Asking which values the check needs",
            "Nothing of this computer has been read. Waiting for " + service + " …"};
}

std::string ListValues(const std::vector<int>& values, std::size_t maxNames)
{
    std::string text;
    for (const auto& [area, names] : GroupByArea(values)) {
        text += (text.empty() ? "" : "\n") + Capitalised(area) + ": ";
        const std::size_t shown = names.size() > maxNames + 1 ? maxNames : names.size();
        for (std::size_t place = 0; place < shown; ++place)
            text += (place > 0 ? "; " : "") + names[place];
        if (shown < names.size())
            text += "; " + std::to_string(names.size() - shown) + " more";
    }
    return text;
}

bool IsShortened(const std::vector<int>& values)
{
    return CountNames(GroupByArea(values)) > MaxNames;
}

Page ConsentPage(const CheckName& name, const std::string& title, const std::string& service,
                 const std::vector<int>& values)
{
    const std::string shown = Shortened(kel::Printable(Trim(title)), MaxTitle);
    const std::size_t maxNames = IsShortened(values) ? MaxNamesOfArea : values.size();
    return {"Check this computer for “" + (shown.empty() ? name.product : shown) + "”?",
            "Nothing has been read yet. These values will be read and sent to " + service + ":\n\n" +
                ListValues(values, maxNames),
            PageIcon::Information, "What is sent?", DescribeTransfer(name, service, values)};
}

Page ProgressPage()
{
    return {"Checking this computer", "Nothing has been sent yet."};
}

std::string ProgressText(const std::string& area)
{
    return area.empty() ? "Sending the values and waiting for the verdict …" : "Reading: " + area + " …";
}

}  // namespace kel::check
