#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <list>
#include <mutex>
#include <string>
#include <unordered_map>

namespace kel::server {

/// Counts how far the checks of visitors get whose page waits for the verdict: each step once for a session.
/// Knows the sessions that were last named by a download or a page's question. For any thread.
class CheckSteps {
public:
    /// A report was uploaded; the program was given its verdict; the page was given it.
    enum Step : std::size_t { Begun, Finished, Shown };

    static constexpr std::array Names{"begun", "finished", "shown"};
    static constexpr std::size_t MaxSessions =
        20'000;  // beyond it the one that was named longest ago is dropped

    /// Counts the session's steps from now on.
    void Expect(const std::string& session);
    /// Does nothing for other sessions.
    void Reach(const std::string& session, Step step);
    std::uint64_t Of(Step step) const { return counts.at(step); }

private:
    struct Entry {
        std::string session;
        std::array<bool, Names.size()> isReached = {};
    };

    std::mutex turn;
    std::list<Entry> entries;  // the one that was named last first
    std::unordered_map<std::string, std::list<Entry>::iterator> places;
    std::array<std::atomic<std::uint64_t>, Names.size()> counts = {};
};

}  // namespace kel::server
