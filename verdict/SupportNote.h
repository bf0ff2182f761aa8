#pragma once

#include <cstdint>
#include <string>

namespace kel {

/// What support needs from a visitor to find a verdict.
struct SupportNote {
    std::string session;    // its short number
    std::int64_t time = 0;  // of the verdict: milliseconds since 1970, UTC
    std::string version;    // of the requirements
};

/// A paragraph with the note and a button that copies it. Markup of HTML, for any browser, without scripts
/// elsewhere on the page.
std::string RenderNote(const SupportNote& note);

}  // namespace kel
