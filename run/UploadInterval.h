#pragma once

#include <cstdint>

namespace kel {

/// Decides when a session's report is due for upload again.
class UploadInterval {
public:
    /// The minimum time between two uploads of a session, in seconds.
    static constexpr std::int64_t Seconds = 600;

    /// @param now seconds since 1970
    bool IsDue(std::int64_t now) const { return !uploaded || now - lastUpload >= Seconds; }

    /// Records an upload.
    /// @param now seconds since 1970, as read when the upload was found to be due
    void MarkUploaded(std::int64_t now)
    {
        uploaded = true;
        lastUpload = now;
    }

    /// Makes the next upload due at once.
    void Reset() { uploaded = false; }

private:
    bool uploaded = false;
    std::int64_t lastUpload = 0;
};

}  // namespace kel
