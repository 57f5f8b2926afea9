#pragma once

#include <QString>

namespace ravelcue::media {

// Why a media call failed. number is what the user is shown after "Error - "; 0 is success.
struct MediaError {
    int number = 0;
    QString text;

    bool ok() const { return number == 0; }
    explicit operator bool() const { return number != 0; }

    static MediaError none() { return {}; }
};

// The numbers Ravelcue reports; they stay stable so that a user's report can be read back.
namespace media_error {
inline constexpr int FileNotFound = 53;
inline constexpr int UnreadableFile = 1001;
inline constexpr int NoVideoStream = 1002;
inline constexpr int NoDecoder = 1003;
inline constexpr int NoEncoder = 1004;
inline constexpr int WriteFailed = 1005;
inline constexpr int DiskFull = 1006;
inline constexpr int DeviceUnavailable = 1007;
inline constexpr int Cancelled = 1008;
inline constexpr int NotConnected = 1009;
inline constexpr int Busy = 1010;
} // namespace media_error

} // namespace ravelcue::media
