#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>

#include "server/store/SqlConnection.h"

namespace kel::server {

/// How much may be stored. In bytes; 0 means no bound.
struct Bounds {
    static constexpr std::int64_t Megabyte = 1024 * 1024;

    std::int64_t minFree = 512 * Megabyte;  // on the file system of an SQLite file, for reports to be taken
    std::int64_t maxStored = 0;             // by the whole database
    std::int64_t sessionReports = 1000;     // of one session
};

/// The room for what is stored. Reports are refused first, verdicts are no longer kept at half of `minFree`,
/// and what is left is the operator's. For a disk that others fill, a reserve file stands beside an SQLite
/// file: the operator's changes, deletions above all, are made in its room. Any thread may call.
class Room {
public:
    /// `file` is empty for a database on a server, whose disk is not seen from here.
    Room(std::string file, const Bounds& bounds);

    /// Throws NoRoom when a report must not be stored.
    void RequireForReport(SqlConnection& connection);
    /// Throws NoRoom when a verdict must not be stored.
    void RequireForVerdict(SqlConnection& connection);
    /// Measures the database, and makes the reserve when it is missing and there is room for it.
    void Measure(SqlConnection& connection);
    /// Gives the reserve's room to others; false when there is none.
    bool ReleaseReserve() const;

    /// Whether reports are taken, as far as is known without asking the database.
    bool TakesReports() const;
    /// Bytes that are free on the file system and inside the file; -1 when not known.
    std::int64_t Free() const;

private:
    using Clock = std::chrono::steady_clock;

    void MeasureSometimes(SqlConnection& connection);
    std::int64_t FreeOnDisk() const;
    bool HasFree(std::int64_t minBytes) const;
    bool IsTooLarge() const { return bounds.maxStored > 0 && used >= bounds.maxStored; }
    void KeepReserve() const;

    const std::string file;
    const Bounds bounds;
    const std::int64_t reserveBytes;
    std::atomic<std::int64_t> used = 0, reusable = 0;
    std::atomic<Clock::time_point> measured = Clock::time_point();
};

}  // namespace kel::server
