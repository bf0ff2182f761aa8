#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kel::server {

/// A field of a form that a browser sent as multipart/form-data.
struct FormPart {
    std::string name;
    bool isFile = false;
    std::string_view content;  // of the body, byte for byte
};

/// Whether the type of a body is multipart/form-data.
bool IsMultipart(std::string_view contentType);

/// The parts of such a body (RFC 7578), in order. Nothing when it is not well-formed, or has more parts than
/// `max`. The body has to outlive them.
std::optional<std::vector<FormPart>> ReadParts(std::string_view body, std::string_view contentType,
                                               std::size_t max);

}  // namespace kel::server
