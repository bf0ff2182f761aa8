#pragma once

#include <boost/core/noncopyable.hpp>
#include <concepts>
#include <string>

#include "diag/Log.h"
#include "diag/LogScope.h"
#include "diag/Timer.h"
#include "run/store/Session.h"

namespace kel {

/// A detector: examines one kind of hardware or software and stores what it finds.
class Component : boost::noncopyable {
public:
    virtual ~Component() = default;

    /// Reads the machine and stores the detector's values in the current session.
    /// @return true, even after a failure, which is logged
    virtual bool Detect() = 0;

    /// One-time preparation.
    virtual void Initialize() {}

    /// Stores a copy of a typed value, or a plain text, under an id.
    /// @param index 0 for the device that matters most, and for facts of the machine as a whole
    template <typename Stored>
    static void AddValue(unsigned id, const Stored& value, int index = 0)
    {
        Session::Current().Values().AddValue(SystemValueID(GroupID(id), index), value);
    }

protected:
    /// Logs a warning for a detector that took too long. The processor's takes two seconds on a healthy
    /// Windows: the clock measurement takes one, and WMI's processor query another.
    static void WarnIfSlow(const wchar_t* scopeName, std::int64_t milliseconds)
    {
        constexpr std::int64_t MaxMilliseconds = 5000;
        if (milliseconds > MaxMilliseconds)
            WriteLog(LogWarning, scopeName, L" took ", milliseconds, L" milliseconds");
    }

    /// Runs the body of a Detect in a trace scope of the given name. When the body throws, what it has stored
    /// stays, and the error line is logged.
    /// @param errorLine null for a detector without an error line
    template <std::invocable Body>
    static bool Guarded(const wchar_t* scopeName, const wchar_t* errorLine, Body body)
    {
        const LogScope trace(scopeName);
        Timer timer;
        timer.Start();
        try {
            body();
        } catch (...) {
            if (errorLine != nullptr)
                ReportFailure(LogError, errorLine);
        }
        timer.Stop();
        WarnIfSlow(scopeName, timer.ElapsedMilliseconds());
        return true;
    }
};

}  // namespace kel
