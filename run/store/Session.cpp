#include "run/store/Session.h"

#include <stdexcept>

namespace kel {

namespace {

Session* current = nullptr;

}  // namespace

Session::~Session()
{
    if (current == this)
        current = nullptr;
}

Session& Session::Current()
{
    if (current == nullptr)
        throw std::logic_error("No session is running.");
    return *current;
}

void Session::MakeCurrent()
{
    current = this;
}

}  // namespace kel
