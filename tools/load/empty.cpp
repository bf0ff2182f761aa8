// A service that reads every request and does nothing, to show what the library itself costs.
#include <fstream>
#include <string>

#include "server/http/Server.h"

int main(int count, char** arguments)
{
    if (count != 2)
        return 2;
    const std::string portFile = arguments[1];
    const auto answer = [](const kel::server::Request&) {
        return kel::server::Answer::Of("text/plain; charset=utf-8", "OK");
    };
    const auto place = [](const kel::server::Request&) { return kel::server::Place::Workers; };
    kel::server::Metrics metrics;
    kel::server::Serve({"127.0.0.1", 0, 0, 2, {}}, metrics, answer, place, answer, place,
                       [&](std::uint16_t port, std::uint16_t) { std::ofstream(portFile) << port; });
}
