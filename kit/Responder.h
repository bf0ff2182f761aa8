#pragma once

#include <string>
#include <thread>
#include <vector>

namespace kel::kit {

/// Answers requests on loopback with files, in the place of the service: one connection after the other. It
/// also answers as a proxy, so that the control reaches it under the service's name.
class Responder {
public:
    /// Begins to listen.
    /// @param folder of the answers: answers.tsv has the method, how the path begins, the status, the
    /// content's type, and the file with the content
    /// @param port 0 for a free one
    /// @throws UserError when the table cannot be read or the port is taken
    Responder(const std::string& folder, unsigned short port);
    Responder(const Responder&) = delete;
    Responder& operator=(const Responder&) = delete;
    /// Ends with the request that is being answered.
    ~Responder();

    unsigned short Port() const { return port; }

    /// Waits until the process ends.
    void Wait() { thread.join(); }

private:
    struct Prepared {
        std::string method;
        std::string path;
        std::string answer;  ///< with its head
    };

    void Serve();
    void AnswerOne(std::uintptr_t connection) const;

    std::vector<Prepared> answers;
    std::uintptr_t listener = 0;
    unsigned short port = 0;
    std::thread thread;
};

/// The path of a request's first line, without the scheme and the host that a proxy is given.
std::string RequestPath(const std::string& line);

}  // namespace kel::kit
