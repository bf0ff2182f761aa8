#include "server/store/Room.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>

#include "server/base/Fault.h"

namespace kel::server {

namespace {

// Enough for deletions: the write-ahead log grows by some megabytes before it is reused from its start.
constexpr std::int64_t MaxReserve = 16 * Bounds::Megabyte;
// The size of a file is known at once; a server adds up the sizes of many.
constexpr std::chrono::milliseconds FileInterval{100}, ServerInterval{10'000};

}  // namespace

Room::Room(std::string file, const Bounds& bounds)
    : file(std::move(file)), bounds(bounds), reserveBytes(std::min(MaxReserve, bounds.minFree / 4))
{
}

void Room::RequireForReport(SqlConnection& connection)
{
    MeasureSometimes(connection);
    if (IsTooLarge())
        throw NoRoom("the database has reached max_database_mb");
    if (!HasFree(bounds.minFree))
        throw NoRoom("less than min_free_mb is free for the database");
}

void Room::RequireForVerdict(SqlConnection& connection)
{
    MeasureSometimes(connection);
    if (!HasFree(bounds.minFree / 2))
        throw NoRoom("less than half of min_free_mb is free for the database");
}

void Room::Measure(SqlConnection& connection)
{
    measured = Clock::now();
    if (file.empty() && bounds.maxStored == 0)
        return;
    const DatabaseSize size = connection.Size();
    used = size.used;
    reusable = size.reusable;
    if (!file.empty())
        KeepReserve();
}

bool Room::ReleaseReserve() const
{
    return !file.empty() && unlink((file + "-reserve").c_str()) == 0;
}

bool Room::TakesReports() const
{
    return !IsTooLarge() && HasFree(bounds.minFree);
}

std::int64_t Room::Free() const
{
    const std::int64_t free = FreeOnDisk();
    return free < 0 ? free : free + reusable;
}

void Room::MeasureSometimes(SqlConnection& connection)
{
    if (Clock::now() - measured.load() >= (file.empty() ? ServerInterval : FileInterval))
        Measure(connection);
}

std::int64_t Room::FreeOnDisk() const
{
    struct statvfs disk {};
    if (file.empty() || statvfs(file.c_str(), &disk) != 0)
        return -1;
    return static_cast<std::int64_t>(disk.f_bavail) * static_cast<std::int64_t>(disk.f_frsize);
}

bool Room::HasFree(std::int64_t minBytes) const
{
    // The write-ahead log cannot use free space inside the file.
    const std::int64_t free = FreeOnDisk();
    return free < 0 || (free >= reserveBytes / 2 && free + reusable >= minBytes);
}

void Room::KeepReserve() const
{
    if (reserveBytes == 0 || FreeOnDisk() < 2 * reserveBytes)
        return;
    const std::string path = file + "-reserve";
    struct stat found {};
    if (stat(path.c_str(), &found) == 0 && found.st_size >= reserveBytes)
        return;
    const int reserve = open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (reserve < 0)
        return;
    if (posix_fallocate(reserve, 0, reserveBytes) != 0)
        unlink(path.c_str());
    close(reserve);
}

}  // namespace kel::server
