#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>

#include "server/store/SqlConnection.h"

namespace kel::server {

/// How much may be stored. Sizes are in bytes; 0 means no bound.
struct Bounds {
    static constexpr std::int64_t Megabyte = 1024 * 1024;

    std::int64_t minFree = 512 * Megabyte;  // for an SQLite file; with less, reports are refused
    std::int64_t maxStored = 0;             // in the whole database
    std::int64_t sessionReports = 1000;     // of one session
};

/// The room for stored data. Reports are refused first, verdicts are no longer stored at half of `minFree`,
/// and the rest is for the operator. In case other programs fill the disk, there is a reserve file beside an
/// SQLite file: releasing it makes room for the operator's changes, above all deletions. Any thread may call.
class Room {
public:
    /// `file` is empty for a database on a server, whose disk is not visible from here.
    Room(std::string file, const Bounds& bounds);

    /// Throws NoRoom when a report must not be stored.
    void RequireForReport(SqlConnection& connection);
    /// Throws NoRoom when a verdict must not be stored.
    void RequireForVerdict(SqlConnection& connection);
    /// Measures the database, and creates the reserve when it is missing and there is room for it.
    void Measure(SqlConnection& connection);
    /// Frees the reserve; false when there is none.
    bool ReleaseReserve() const;

    /// Whether reports are accepted, as far as is known without asking the database.
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
