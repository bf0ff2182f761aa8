#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kel::server {

/// Names and values of headers.
using Headers = std::vector<std::pair<std::string, std::string>>;

/// A request as received.
struct Request {
    std::string method;
    std::string target;  // the bytes of the request line
    std::string body;
    Headers headers = {};  // those of KnownHeaders that it has

    /// The value of a header by its name in KnownHeaders; null when the request lacks it.
    const std::string* Header(std::string_view name) const
    {
        for (const auto& [known, value] : headers) {
            if (known == name)
                return &value;
        }
        return nullptr;
    }
};

/// The headers that answers can depend on. The control's requests have only the type.
inline constexpr std::string_view KnownHeaders[] = {
    "Accept-Language", "Authorization", "Content-Type", "Cookie", "Host",         "If-Match",
    "If-None-Match",   "If-Range",      "Origin",       "Range",  "X-Form-Token", "X-Remote-User"};

/// The answer to a request. One without a body has no content type; many answers may share a body.
struct Answer {
    static constexpr std::size_t Everything = std::string_view::npos;

    int status = 200;
    std::string contentType;
    std::shared_ptr<const std::string> body;
    Headers headers = {};
    bool isShared = false;  // whether the body exists anyway, and costs this answer no memory
    std::size_t first = 0, length = Everything;  // the part of the body that is sent
    /// Makes the next piece of the body, which may be empty, and nothing after the last one. A thread of the
    /// request's place calls it once the piece before is sent. Without it the answer has `body`.
    std::function<std::optional<std::string>()> next = {};

    /// The bytes to send; they last as long as the answer's body.
    std::string_view Sent() const
    {
        return body ? std::string_view(*body).substr(first, length) : std::string_view();
    }

    /// An answer with only a status. The text of any answer to the control reaches a visitor's script, so an
    /// error has no text.
    static Answer Empty(int status) { return {status, {}, nullptr}; }
    /// 200 with a body.
    static Answer Of(std::string contentType, std::string body)
    {
        return {200, std::move(contentType), std::make_shared<const std::string>(std::move(body))};
    }
    /// 200 with a body that is made while it is sent.
    static Answer InPieces(std::string contentType, std::function<std::optional<std::string>()> next)
    {
        Answer answer{200, std::move(contentType), nullptr};
        answer.next = std::move(next);
        return answer;
    }
};

}  // namespace kel::server
