#pragma once

#include <chrono>
#include <functional>

#include "service/ExchangeLimits.h"
#include "service/InternetSession.h"

namespace kel {

/// The time that the exchanges with the analysis service may take together in one call of a member. A call
/// inside a call shares the outer one's. Not locked; the calls of a process take turns.
class CallBudget {
public:
    /// Opens the budget of a call until it is destroyed.
    CallBudget() noexcept
    {
        if (isOutermost)
            current = this;
    }
    CallBudget(const CallBudget&) = delete;
    CallBudget& operator=(const CallBudget&) = delete;
    ~CallBudget()
    {
        if (isOutermost)
            current = nullptr;
    }

    /// The budget of the current call. There has to be one.
    static CallBudget& Current() { return *current; }

    /// Runs an exchange on its own thread, within the rest of the budget.
    /// @return null when it ended in time, else the stage that it was in
    /// @throws as RunWithin
    const char* Run(std::function<void(InternetSession&)> exchange);

    /// Records that an exchange ended at a limit: no other follows in this call.
    void End(const char* stage) { endedIn = stage; }

    /// The stage in which an exchange of this call ended at a limit; null while there was none.
    const char* EndedIn() const { return endedIn; }

private:
    inline static CallBudget* current = nullptr;

    const bool isOutermost = current == nullptr;
    std::chrono::milliseconds left = ExchangeLimits::Call;
    const char* endedIn = nullptr;
};

}  // namespace kel
