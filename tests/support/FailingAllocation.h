#pragma once

namespace kel::test {

/// Lets one allocation of this thread by `operator new` throw.
class FailingAllocation {
public:
    /// @param place 1 for the next allocation
    explicit FailingAllocation(int place);
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;
    ~FailingAllocation();

    /// Whether an allocation has failed.
    static bool IsOver();
};

}  // namespace kel::test
