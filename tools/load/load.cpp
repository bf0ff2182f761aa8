// The given number of concurrent visitors: each run is a group list, an upload and an analysis, on kept
// connections; and beside them pages that wait, each of which asks for a verdict once in two seconds. Prints
// one line of JSON: runs per second, failures, and for each kind of request the median, the 99th percentile
// and the longest time in milliseconds.
//     kel_load SECONDS CONNECTIONS PAGES REFERRER REPORT PORT...
// The connections are distributed over the ports. In the file REPORT the text SESSION is replaced with the
// run's session.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tools/load/Client.h"

namespace {

using kel::load::Client;
using Clock = std::chrono::steady_clock;

constexpr std::array Kinds{"group list", "upload", "analysis", "question"};
constexpr std::size_t Question = 3;  // the kind of request that a waiting page makes
constexpr std::size_t Requests = 3;  // of a run
constexpr std::size_t WaitingThreads = 50;
constexpr std::chrono::seconds Pause{2};  // between two questions of a page
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
        const std::array<std::array<std::string, 3>, Requests> requests{
            {{"GET", "/Data/Service.svc/Group/list?refid=" + referrer + "&apikey=" + Key, ""},
             {"POST", "/Data/Service.svc/upload?apikey=" + Key, Replace(report, "SESSION", session)},
             {"POST", "/service/Analysis/" + referrer,
              "<System><SessionID>" + session +
                  "</SessionID><ItemID/><UserID/><Format>xml</Format><Schema>1</Schema></System>"}}};
        for (std::size_t kind = 0; kind < Requests; ++kind) {
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

/// Keeps a number of pages waiting until the end, each on a connection of its own. Their questions are spread
/// over the pause.
Visitors Wait(std::uint16_t port, Clock::time_point end, std::size_t pages, const std::string& referrer)
{
    Visitors visitors;
    std::vector<std::unique_ptr<Client>> clients;
    for (std::size_t page = 0; page < pages; ++page)
        clients.push_back(std::make_unique<Client>(port));
    for (auto round = Clock::now(); round < end; round += Pause) {
        for (std::size_t page = 0; page < pages; ++page) {
            const auto start = round + Pause * page / pages;
            if (start > end)
                return visitors;
            std::this_thread::sleep_until(start);
            std::string number = std::to_string(page);
            number.insert(0, 12 - number.size(), '0');
            const auto sent = Clock::now();
            const int status = clients[page]->Ask(
                "GET", "/v1/verdicts/" + referrer + "/00000000-0000-4000-8000-" + number, "");
            visitors.milliseconds[Question].push_back(
                std::chrono::duration<double, std::milli>(Clock::now() - sent).count());
            visitors.failures += status == 404 ? 0 : 1;
        }
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
    if (count < 7) {
        std::fputs("usage: kel_load SECONDS CONNECTIONS PAGES REFERRER REPORT PORT...\n", stderr);
        return 2;
    }
    std::ifstream file(arguments[5], std::ios::binary);
    const std::string report{std::istreambuf_iterator<char>(file), {}};
    const double seconds = std::stod(arguments[1]);
    const auto start = Clock::now();
    const auto end =
        start + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
    const std::size_t connections = std::stoul(arguments[2]), pages = std::stoul(arguments[3]);
    std::vector<Visitors> all(connections + (pages > 0 ? WaitingThreads : 0));
    std::vector<std::thread> threads;
    for (std::size_t number = 0; number < all.size(); ++number) {
        const auto port = static_cast<std::uint16_t>(
            std::stoul(arguments[6 + number % static_cast<std::size_t>(count - 6)]));
        const std::string name =
            std::to_string(start.time_since_epoch().count()) + "-" + std::to_string(number);
        threads.emplace_back([&, port, number, name] {
            try {
                all[number] = number < connections ? Visit(port, end, name, arguments[4], report)
                                                   : Wait(port, end, pages / WaitingThreads, arguments[4]);
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
