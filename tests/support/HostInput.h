// The native host without a browser and without a service.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "program/host/Conversation.h"
#include "program/host/Frames.h"

namespace kel::test {

/// The frames of an input that arrives in pieces of that size; "FrameError" at the end of one that is
/// refused.
inline std::vector<std::string> ReadAll(std::string_view input, std::size_t piece)
{
    std::vector<std::string> frames;
    try {
        while (auto frame = program::ReadFrame([&](char* bytes, std::size_t count) {
                   count = std::min({count, piece, input.size()});
                   std::copy_n(input.begin(), count, bytes);
                   input.remove_prefix(count);
                   return count;
               }))
            frames.push_back(std::move(*frame));
    } catch (const program::FrameError&) {
        frames.emplace_back("FrameError");
    }
    return frames;
}

/// What the steps of a check answer.
struct FakeSteps {
    program::ServiceAnswer wanted{"71063", "answered"};
    program::VerdictAnswer verdict{
        {"{}", "answered"},
        Verdict{"T",
                {{71063, "M", "at least 2 GB", "7.8 GB", Result::Fail, "Buy.", true, {}, "2 GB"}},
                Result::Fail}};

    program::Conversation Start() const
    {
        return program::Conversation({[](const std::string&, const std::string&) {},
                                      [this] { return wanted; }, [] { return std::vector<int>{71063}; },
                                      [this] { return verdict; }});
    }
};

}  // namespace kel::test
