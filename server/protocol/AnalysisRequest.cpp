#include "server/protocol/AnalysisRequest.h"

#include <fmt/format.h>
#include <cstring>

#include "server/base/Fault.h"
#include "server/report/Xml.h"

namespace kel::server {

namespace {

constexpr std::size_t MaxTextBytes =
    1024;  // bytes; the answer repeats some of the texts, and a verdict stores one

}  // namespace

AnalysisRequest AnalysisRequest::Read(std::string_view xml)
{
    const pugi::xml_document document = ReadXml(xml);
    const pugi::xml_node root = document.document_element();
    if (std::string_view(root.name()) != "System")
        throw Fault(400, "the body is not an analysis request");
    for (const char* name : {"SessionID", "ItemID", "UserID", "Format", "Schema"}) {
        if (std::strlen(root.child_value(name)) > MaxTextBytes)
            throw Fault(400, fmt::format("the request's {} is too long", name));
    }
    return {root.child_value("SessionID"), root.child_value("ItemID"), root.child_value("UserID"),
            root.child_value("Format"), root.child_value("Schema")};
}

}  // namespace kel::server
