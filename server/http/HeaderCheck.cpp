#include "server/http/HeaderCheck.h"

namespace kel::server {

bool HeaderCheck::Accept(std::string_view bytes)
{
    for (const char byte : bytes) {
        if (at == At::LineStart && (byte == ' ' || byte == '\t'))
            return false;
        if (at == At::End)
            break;
        if (byte == '\n')
            at = At::LineStart;
        else if (at == At::LineStart)
            at = byte == '\r' ? At::End : At::Line;
    }
    return true;
}

}  // namespace kel::server
