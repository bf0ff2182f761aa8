#include "support/LogCapture.h"

#include <sstream>

#include "diag/Log.h"

namespace kel::test {

LogCapture::LogCapture(int level)
    : previousLevel(Log::Instance().GetLevel()), start(Log::Instance().GetText().size())
{
    Log::Instance().SetLevel(level);
}

LogCapture::~LogCapture()
{
    Log::Instance().SetLevel(previousLevel);
}

std::vector<std::wstring> LogCapture::Lines() const
{
    std::wistringstream text(Log::Instance().GetText().substr(start));
    std::vector<std::wstring> lines;
    std::wstring line;
    while (std::getline(text, line)) {
        const std::size_t bar = line.find(L" | ");
        const std::wstring word = line.substr(bar - 5, 5);
        std::wstring message = line.substr(bar + 3);
        while (message.starts_with(L". "))
            message.erase(0, 2);
        lines.push_back(word.substr(0, word.find(L' ')) + L" " + message);
    }
    return lines;
}

}  // namespace kel::test
