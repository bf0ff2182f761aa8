#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace kel::server {

/// The fields of a form that a browser sent: application/x-www-form-urlencoded, or multipart/form-data, which
/// can have files.
class Form {
public:
    static constexpr std::size_t MaxFields = 32;

    /// Reads a body. Nothing when it has too many fields, or one twice, or is not well-formed. Values are
    /// printable UTF-8, as Clean returns it, with line ends as single line feeds; files are left as they are.
    static std::optional<Form> Read(std::string_view body, std::string_view contentType = {});

    /// The value of a field; empty when it is missing.
    const std::string& Text(const std::string& name) const;
    /// The bytes of a file; empty when it is missing.
    const std::string& File(const std::string& name) const;
    /// The value as a whole number from 0 on; -1 when it is not one.
    int Number(const std::string& name) const;

private:
    static std::optional<Form> ReadFields(std::string_view body);

    std::map<std::string, std::string> fields, files;
};

/// The text as a whole number from 0 on; -1 when it is not one.
std::int64_t WholeNumber(std::string_view text);

}  // namespace kel::server
