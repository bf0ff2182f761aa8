#pragma once

#include "server/base/Metrics.h"
#include "server/http/Limits.h"

namespace kel::server {

/// The memory for the bodies of an endpoint. One half is for small bodies and one for the others, so that
/// clients that send large ones slowly leave room for usual reports. For the network's thread.
class BodyBudget {
public:
    /// Shows in `total` how much is in use.
    BodyBudget(std::size_t bytes, Count& total) : most(bytes / 2), total(total) {}

    /// Makes room for a body that grows. False, and nothing changes, if there is not enough.
    bool Resize(std::size_t oldSize, std::size_t newSize)
    {
        std::size_t& from = UsedBy(oldSize);
        std::size_t& to = UsedBy(newSize);
        const std::size_t others = to - (&from == &to ? oldSize : 0);
        if (newSize > oldSize && (newSize > most || others > most - newSize))
            return false;
        from -= oldSize;
        to += newSize;
        total += newSize - oldSize;
        return true;
    }

private:
    std::size_t& UsedBy(std::size_t size) { return size <= Limits::SmallBody ? small : large; }

    std::size_t most;  // of each half
    Count& total;
    std::size_t small = 0, large = 0;
};

/// The memory for one body, given back at the end.
class BodyLease {
public:
    explicit BodyLease(BodyBudget& budget) : budget(budget) {}
    ~BodyLease() { GiveBack(); }
    BodyLease(const BodyLease&) = delete;
    BodyLease& operator=(const BodyLease&) = delete;

    /// False, and nothing changes, if the budget does not have that much.
    bool Resize(std::size_t newSize)
    {
        if (!budget.Resize(size, newSize))
            return false;
        size = newSize;
        return true;
    }

    void GiveBack() { Resize(0); }

private:
    BodyBudget& budget;
    std::size_t size = 0;
};

}  // namespace kel::server
