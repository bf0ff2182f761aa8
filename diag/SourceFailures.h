#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace kel {

/// A source of facts that could not be read.
struct SourceFailure {
    std::wstring source;      ///< such as "WMI Win32_BIOS"; its first word says of which kind it is
    std::uint32_t error = 0;  ///< the system's error or HRESULT; 0 for a failure without one
};

/// Adds the failures of another source of the same device.
void AddFailures(std::vector<SourceFailure>& failures, const std::vector<SourceFailure>& others);

/// What went wrong in a piece of work.
struct Failures {
    std::vector<SourceFailure> sources;
    bool hasException = false;  ///< a part of the work threw

    bool AreNone() const { return sources.empty() && !hasException; }
};

/// Collects what could not be read while it exists: probes note it where they see it, for every caller. A
/// scope inside another one keeps what it collects. Not locked: detectors run on one thread.
class FailureScope {
public:
    FailureScope() noexcept : outer(current) { current = this; }
    FailureScope(const FailureScope&) = delete;
    FailureScope& operator=(const FailureScope&) = delete;
    ~FailureScope() { current = outer; }

    /// Notes a failure in the innermost scope; without one, and without memory, it is lost.
    static void Note(std::wstring_view source, std::uint32_t error) noexcept;
    /// Notes that a part of the work threw.
    static void NoteException() noexcept;
    /// Notes what was collected before.
    static void Note(const Failures& collected) noexcept;

    const Failures& Found() const { return found; }

private:
    inline static FailureScope* current = nullptr;

    FailureScope* const outer;
    Failures found;
};

/// Does a piece of work that concerns one device, and adds what could not be read to the device's failures:
/// it explains nothing about other devices. An exception that the work caught is noted in the outer scope.
void CollectFailures(std::vector<SourceFailure>& failures, const std::function<void()>& work);

}  // namespace kel
