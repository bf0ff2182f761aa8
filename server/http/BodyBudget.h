#pragma once

#include "server/base/Metrics.h"
#include "server/http/Limits.h"

namespace kel::server {

/// The memory for the bodies of an endpoint. One half is for small bodies and one for the others, so that
/// clients that send large ones slowly leave room for usual reports. For the network thread.
class BodyBudget {
public:
    /// Keeps the bytes in use in `total`.
    BodyBudget(std::size_t bytes, Count& total) : maxBytes(bytes / 2), total(total) {}

    /// The memory that one body takes, and from which half.
    struct Use {
        std::size_t size = 0;
        bool isLarge = false;
    };

    /// Changes what a body takes. False, and nothing changes, if there is not enough.
    bool Change(Use from, Use to)
    {
        std::size_t& used = to.isLarge ? large : small;
        const std::size_t others = used - (from.isLarge == to.isLarge ? from.size : 0);
        if (to.size > from.size && (to.size > maxBytes || others > maxBytes - to.size))
            return false;
        (from.isLarge ? large : small) -= from.size;
        used += to.size;
        total += to.size - from.size;
        return true;
    }

private:
    std::size_t maxBytes;  // of each half
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

    /// Announces the length of the body, if it is known before anything is taken.
    void Expect(std::size_t size) { use.isLarge = size > Limits::SmallBody; }

    /// False, and nothing changes, if the budget does not have that much.
    bool Resize(std::size_t size)
    {
        const BodyBudget::Use changed{size, use.isLarge || size > Limits::SmallBody};
        if (!budget.Change(use, changed))
            return false;
        use = changed;
        return true;
    }

    void GiveBack()
    {
        budget.Change(use, {});
        use = {};
    }

private:
    BodyBudget& budget;
    BodyBudget::Use use;
};

}  // namespace kel::server
