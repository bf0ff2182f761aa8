#pragma once

#include <memory>
#include <string>

namespace kel::server {

/// A request as it came, without its headers: nothing that is answered here depends on them.
struct Request {
    std::string method;
    std::string target;  // the bytes of the request line
    std::string body;
};

/// What goes back. An answer without a body has no content type; the body may be shared by many answers.
struct Answer {
    int status = 200;
    std::string contentType;
    std::shared_ptr<const std::string> body;

    /// An answer with a status alone. The text of any answer reaches a visitor's script, so an error has
    /// none.
    static Answer Empty(int status) { return {status, {}, nullptr}; }
    /// 200 with a body.
    static Answer Of(std::string contentType, std::string body)
    {
        return {200, std::move(contentType), std::make_shared<const std::string>(std::move(body))};
    }
};

}  // namespace kel::server
