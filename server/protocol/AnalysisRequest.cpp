#include "server/protocol/AnalysisRequest.h"

#include "server/base/Fault.h"
#include "server/report/Xml.h"

namespace kel::server {

AnalysisRequest AnalysisRequest::Read(std::string_view xml)
{
    const pugi::xml_document document = ReadXml(xml);
    const pugi::xml_node root = document.document_element();
    if (std::string_view(root.name()) != "System")
        throw Fault(400, "the body is no analysis request");
    return {root.child_value("SessionID"), root.child_value("ItemID"), root.child_value("UserID"),
            root.child_value("Format"), root.child_value("Schema")};
}

}  // namespace kel::server
