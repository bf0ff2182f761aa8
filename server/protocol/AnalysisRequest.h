#pragma once

#include <string>
#include <string_view>

namespace kel::server {

/// What an analysis asks for. The texts are a page's own, and may be anything.
struct AnalysisRequest {
    std::string session, item, user, format, schema;

    /// Reads `<System><SessionID>…</SessionID><ItemID/><UserID/><Format/><Schema/></System>`; what it lacks
    /// is empty. Throws Fault 400 when the text is not such a request, or one of the five is longer than 1
    /// KB.
    static AnalysisRequest Read(std::string_view xml);
};

}  // namespace kel::server
