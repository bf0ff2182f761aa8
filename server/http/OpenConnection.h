#pragma once

#include <unordered_set>

#include "server/http/Endpoint.h"

namespace kel::server {

/// Keeps an object in a set for a while.
template <typename Object>
class Member {
public:
    Member(std::unordered_set<Object*>& set, Object& object) : set(set), object(&object)
    {
        set.insert(this->object);
    }
    ~Member() { set.erase(object); }
    Member(const Member&) = delete;
    Member& operator=(const Member&) = delete;

private:
    std::unordered_set<Object*>& set;
    Object* object;
};

/// One of an endpoint's connections, until its end.
class OpenConnection {
public:
    OpenConnection(Endpoint& endpoint, boost::asio::ip::tcp::socket& socket)
        : count(endpoint.metrics.connections), member(endpoint.open, socket)
    {
        ++count;
    }
    ~OpenConnection() { --count; }
    OpenConnection(const OpenConnection&) = delete;
    OpenConnection& operator=(const OpenConnection&) = delete;

private:
    Count& count;
    const Member<boost::asio::ip::tcp::socket> member;
};

}  // namespace kel::server
