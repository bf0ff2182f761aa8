#pragma once

#include <string>
#include <vector>

namespace kel::test {

/// Turns the log on while it lives and tells what was written since it was made.
class LogCapture {
public:
    explicit LogCapture(int level = 7);
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;
    ~LogCapture();

    /// The lines written since construction, as "WORD message": the level word, then the message without time
    /// stamps and indentation.
    std::vector<std::wstring> Lines() const;

private:
    int previousLevel;
    std::size_t start;
};

}  // namespace kel::test
