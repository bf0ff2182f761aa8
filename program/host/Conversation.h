#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "program/machine/ServiceCheck.h"

namespace kel::program {

/// The steps of a check, which a conversation takes one after the other.
struct CheckSteps {
    std::function<void(const std::string& product, const std::string& session)> begin;
    std::function<ServiceAnswer()> fetchWantedGroups;
    std::function<std::vector<int>()> listReportedValues;
    std::function<VerdictAnswer()> fetchVerdict;
};

/// What the extension asks and the program answers, each as JSON. A conversation makes one check:
///
///   {"type": "ask", "product": …, "session": …}   answered by the names of the values that would be read;
///                                                 nothing of the machine is read
///   {"type": "check"}                             answered by the verdict's lines and results
///
/// An error is an answer, too: {"type": "error", "reason": …}, with the "state" of the exchange with the
/// service where that is the reason.
class Conversation {
public:
    explicit Conversation(CheckSteps checkSteps) : steps(std::move(checkSteps)) {}

    /// The answer to a message, of at most MaxAnswer bytes.
    std::string Answer(std::string_view message);

    /// A message on the way to the verdict.
    /// @param area of the machine that is being read; empty once all are
    static std::string Progress(const std::string& area);

private:
    enum class Stage { Begin, Asked, Ended };

    std::string Ask(const std::string& product, const std::string& session);
    std::string Check();

    CheckSteps steps;
    Stage stage = Stage::Begin;
    std::string product, session;
};

}  // namespace kel::program
