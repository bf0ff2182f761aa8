#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "diag/Log.h"

namespace kel::test {

/// Turns the log on while it exists, and returns what was written since its construction.
class LogCapture {
public:
    explicit LogCapture(int level = LogMaximum) { Log::Instance().SetLevel(level); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;
    ~LogCapture() { Log::Instance().SetLevel(previousLevel); }

    /// The lines as "WORD message": the level word, then the message without time stamps and indentation.
    std::vector<std::wstring> Lines() const
    {
        std::wistringstream text(Log::Instance().GetText().substr(start));
        std::vector<std::wstring> lines;
        for (std::wstring line; std::getline(text, line);) {
            const std::size_t bar = line.find(L" | ");
            const std::wstring word = line.substr(bar - 5, 5);
            std::wstring message = line.substr(bar + 3);
            while (message.starts_with(L". "))
                message.erase(0, 2);
            lines.push_back(word.substr(0, word.find(L' ')) + L" " + message);
        }
        return lines;
    }

private:
    int previousLevel = Log::Instance().GetLevel();
    std::size_t start = Log::Instance().GetText().size();
};

}  // namespace kel::test
