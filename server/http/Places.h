#pragma once

#include "server/http/Door.h"

namespace kel::server {

/// A share of what a door allows of something, given back at the end.
class Share {
public:
    explicit Share(Count& total) : total(total) {}
    ~Share() { GiveBack(); }
    Share(const Share&) = delete;
    Share& operator=(const Share&) = delete;

    /// False, and nothing is taken, when it would be more than there is.
    bool Take(std::size_t count, std::size_t most)
    {
        if (count > most || total > most - count)
            return false;
        total += count;
        taken += count;
        return true;
    }

    void GiveBack()
    {
        total -= taken;
        taken = 0;
    }

private:
    Count& total;
    std::size_t taken = 0;
};

/// Stands among those that wait for a request.
class Waiting {
public:
    Waiting(Door& door, boost::asio::ip::tcp::socket& socket) : door(door), socket(&socket)
    {
        door.idle.insert(this->socket);
    }
    ~Waiting() { door.idle.erase(socket); }
    Waiting(const Waiting&) = delete;
    Waiting& operator=(const Waiting&) = delete;

private:
    Door& door;
    boost::asio::ip::tcp::socket* socket;
};

}  // namespace kel::server
