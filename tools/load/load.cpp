// The given number of concurrent visitors: each run is a group list, an upload and an analysis, on kept
// connections. Prints one line of JSON: runs per second, failures, and for each kind of request the median,
// the 99th percentile and the longest time in milliseconds.
//     kel_load SECONDS CONNECTIONS REFERRER REPORT PORT...
// The connections are distributed over the ports. In the file REPORT the text SESSION is replaced with the
// run's session.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "tools/load/Client.h"

namespace {

using kel::load::Client;
using Clock = std::chrono::steady_clock;

constexpr std::array Kinds{"group list", "upload", "analysis"};
const std::string Key = "5B3E9A70-2C41-4F8D-A6E2-7D19C04B8E53";

struct Visitors {
    std::array<std::vector<double>, Kinds.size()> milliseconds;
    int runs = 0;
    int failures = 0;
};

std::string Replace(std::string text, const std::string& what, const std::string& by)
{
    const std::size_t at = text.find(what);
    return at == std::string::npos ? text : text.replace(at, what.size(), by);
}

/// Runs one visitor after another until the end, over one connection.
Visitors Visit(std::uint16_t port, Clock::time_point end, const std::string& name,
               const std::string& referrer, const std::string& report)
{
    Visitors visitors;
    Client client(port);
    for (int number = 0; Clock::now() < end; ++number) {
        const std::string session = name + "-" + std::to_string(number);
        const std::array<std::array<std::string, 3>, Kinds.size()> requests{
            {{"GET", "/Data/Service.svc/Group/list?refid=" + referrer + "&apikey=" + Key, ""},
             {"POST", "/Data/Service.svc/upload?apikey=" + Key, Replace(report, "SESSION", session)},
             {"POST", "/service/Analysis/" + referrer,
              "<System><SessionID>" + session +
                  "</SessionID><ItemID/><UserID/><Format>xml</Format><Schema>1</Schema></System>"}}};
        for (std::size_t kind = 0; kind < Kinds.size(); ++kind) {
            const auto start = Clock::now();
            const int status = client.Ask(requests[kind][0], requests[kind][1], requests[kind][2]);
            visitors.milliseconds[kind].push_back(
                std::chrono::duration<double, std::milli>(Clock::now() - start).count());
            visitors.failures += status == 200 ? 0 : 1;
        }
        ++visitors.runs;
    }
    return visitors;
}

void Print(const std::vector<Visitors>& all, double seconds)
{
    int runs = 0;
    int failures = 0;
    for (const Visitors& visitors : all) {
        runs += visitors.runs;
        failures += visitors.failures;
    }
    std::printf("{\"runs\": %.1f, \"failures\": %d", runs / seconds, failures);
    for (std::size_t kind = 0; kind < Kinds.size(); ++kind) {
        std::vector<double> times;
        for (const Visitors& visitors : all)
            times.insert(times.end(), visitors.milliseconds[kind].begin(), visitors.milliseconds[kind].end());
        std::sort(times.begin(), times.end());
        const auto at = [&](double share) {
            return times.empty()
                       ? 0.0
                       : times[static_cast<std::size_t>(share * static_cast<double>(times.size() - 1))];
        };
        std::printf(", \"%s\": [%.3f, %.3f, %.3f]", Kinds[kind], at(0.5), at(0.99), at(1));
    }
    std::puts("}");
}

}  // namespace

int main(int count, char** arguments)
{
    if (count < 6) {
        std::fputs("usage: kel_load SECONDS CONNECTIONS REFERRER REPORT PORT...\n", stderr);
        return 2;
    }
    std::ifstream file(arguments[4], std::ios::binary);
    const std::string report{std::istreambuf_iterator<char>(file), {}};
    const double seconds = std::stod(arguments[1]);
    const auto start = Clock::now();
    const auto end =
        start + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
    std::vector<Visitors> all(std::stoul(arguments[2]));
    std::vector<std::thread> threads;
    for (std::size_t number = 0; number < all.size(); ++number) {
        const auto port = static_cast<std::uint16_t>(
            std::stoul(arguments[5 + number % static_cast<std::size_t>(count - 5)]));
        const std::string name =
            std::to_string(start.time_since_epoch().count()) + "-" + std::to_string(number);
        threads.emplace_back([&, port, number, name] {
            try {
                all[number] = Visit(port, end, name, arguments[3], report);
            } catch (const std::exception& error) {
                std::fprintf(stderr, "%s\n", error.what());
                all[number].failures = 1;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    Print(all, std::chrono::duration<double>(Clock::now() - start).count());
}
