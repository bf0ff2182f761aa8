#pragma once

#include <string>

#include "run/store/SystemValues.h"

namespace kel {

/// Renders a value store as the report: flat XML text without declaration or line breaks, one group element
/// per value that the current session wants.
class XMLReport {
public:
    /// The option that callers pass to GetReport.
    static constexpr int StandardOption = 1;

    /// @param store must outlive this object
    explicit XMLReport(const SystemValues& store) : values(store) {}

    /// Replaces the text with the report.
    /// @param option accepted and without effect; callers pass StandardOption
    void GetReport(int option, std::wstring& report) const;

private:
    const SystemValues& values;
};

}  // namespace kel
