#include "service/InternetHandles.h"

#include <utility>

namespace kel {

HINTERNET InternetHandles::Keep(HINTERNET opened)
{
    OwnedInternet handle(opened);
    const std::lock_guard lock(guard);
    if (closed || !handle)
        return nullptr;
    handles.push_back(std::move(handle));
    return opened;
}

void InternetHandles::CloseAll() noexcept
{
    std::vector<OwnedInternet> closing;
    {
        const std::lock_guard lock(guard);
        closed = true;
        closing.swap(handles);
    }
    while (!closing.empty())
        closing.pop_back();
}

bool InternetHandles::AreClosed() const
{
    const std::lock_guard lock(guard);
    return closed;
}

}  // namespace kel
