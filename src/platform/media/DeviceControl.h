#pragma once

#include <utility>
#include <vector>

#include <QString>

namespace ravelcue::media {

// One of a camera's own settings, as its driver describes it: brightness, contrast, exposure,
// focus, white balance, power line frequency and whatever else the camera offers.
struct DeviceControl {
    enum class Kind { Integer, Boolean, Menu };

    unsigned id = 0; // the driver's number for it
    QString name;
    Kind kind = Kind::Integer;
    int minimum = 0;
    int maximum = 0;
    int step = 1;
    int defaultValue = 0;
    int value = 0;
    std::vector<std::pair<int, QString>> menu; // value and name of each entry of a menu
    // Set while an automatic switch decides its value (exposure while auto exposure is on).
    bool inactive = false;

    bool operator==(const DeviceControl&) const = default;
};

} // namespace ravelcue::media
