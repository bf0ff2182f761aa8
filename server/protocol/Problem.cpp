#include "server/protocol/Problem.h"

#include <nlohmann/json.hpp>

#include "server/base/Fault.h"

namespace kel::server {

Headers PageHeaders()
{
    return {{"Referrer-Policy", "no-referrer"}, {"X-Content-Type-Options", "nosniff"}};
}

Answer Problem(int status, std::string_view title, Headers headers)
{
    Answer answer = Answer::Of("application/problem+json",
                               nlohmann::ordered_json{{"title", title}, {"status", status}}.dump());
    answer.status = status;
    answer.headers = PageHeaders();
    answer.headers.insert(answer.headers.end(), headers.begin(), headers.end());
    return answer;
}

Answer Problem(int status)
{
    if (status == Unavailable)
        return Problem(status, "The service cannot answer at the moment.", {{"Retry-After", "10"}});
    return Problem(status, status < 500 ? "There is no such request." : "The service failed.");
}

}  // namespace kel::server
