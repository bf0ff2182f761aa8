#pragma once

#include <string>
#include <string_view>

namespace kel::server {

/// The contents of an analysis request. Pages choose the texts, which may be anything.
struct AnalysisRequest {
    std::string session, item, user, format, schema;

    /// Reads `<System><SessionID>…</SessionID><ItemID/><UserID/><Format/><Schema/></System>`; a missing text
    /// is empty. Throws Fault 400 when the body is not such a request, or one of the five is longer than 1
    /// KB.
    static AnalysisRequest Read(std::string_view xml);
};

}  // namespace kel::server
