#pragma once

#include <boost/core/noncopyable.hpp>
#include <concepts>
#include <string>
#include <string_view>

#include "detectors/EmptyValues.h"
#include "diag/Log.h"
#include "diag/LogScope.h"
#include "diag/SourceFailures.h"
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

    /// The detector in the name of its Detect, such as "Bios" in "kel::Bios::Detect".
    static std::wstring_view DetectorOf(std::wstring_view scopeName)
    {
        constexpr std::wstring_view Start = L"kel::";
        constexpr std::wstring_view End = L"::Detect";
        return scopeName.substr(Start.size(), scopeName.size() - Start.size() - End.size());
    }

    /// Runs the body of a Detect in a trace scope of the given name. When the body throws, what it has stored
    /// stays, and the error line is logged. Then notes why values are empty.
    /// @param scopeName "kel::", the detector's class and "::Detect"
    /// @param errorLine null for a detector without an error line
    template <std::invocable Body>
    static bool Guarded(const wchar_t* scopeName, const wchar_t* errorLine, Body body)
    {
        const LogScope trace(scopeName);
        const FailureScope scope;
        Timer timer;
        timer.Start();
        try {
            body();
        } catch (...) {
            FailureScope::NoteException();
            if (errorLine != nullptr)
                ReportFailure(LogError, errorLine);
        }
        timer.Stop();
        NoteReasons(DetectorOf(scopeName), scope.Found());
        WarnIfSlow(scopeName, timer.ElapsedMilliseconds());
        return true;
    }
};

}  // namespace kel
