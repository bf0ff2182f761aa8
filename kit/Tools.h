// The system's own tools, whose answers the product's values are compared with.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace kel::kit {

/// What a tool says: a text for each device.
struct Answer {
    std::vector<std::string> texts;
    std::string problem;  ///< why there is none
};

/// Asks the tools by name:
/// - "wmi": a query for one property, with "sum", "count" or "max" before it where that is meant;
/// - "powershell": an expression;
/// - "systeminfo": the number of a column of its list, counted from 0;
/// - "dxdiag": the name of an element of its XML file;
/// - "powercfg": the name of an element of its battery report.
/// Each tool that takes a while runs once.
class Tools {
public:
    /// @param newFolder for the tools' files, which are removed after they have been read: they have serial
    /// numbers
    explicit Tools(std::wstring newFolder) : folder(std::move(newFolder)) {}

    /// Runs all these expressions in one PowerShell, which takes a second to start.
    void RunPowerShell(const std::vector<std::string>& expressions);

    Answer Ask(const std::string& tool, const std::string& expression);

    /// Whether this is a PowerShell that runs scripts; Wine's only ends.
    bool HasPowerShell();

private:
    const std::string& FileOf(const std::string& tool);
    Answer AskSystemInfo(const std::string& column);

    std::wstring folder;
    std::map<std::string, Answer> scripted;    // by expression
    std::map<std::string, std::string> files;  // by tool
    std::optional<bool> hasPowerShell;
};

/// The texts of the elements of this name, in their order.
std::vector<std::string> ElementsOf(const std::string& xml, const std::string& name);

/// The cells of a line of comma-separated values.
std::vector<std::string> CsvCells(const std::string& line);

}  // namespace kel::kit
