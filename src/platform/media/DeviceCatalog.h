#pragma once

#include <QString>
#include <QStringList>

namespace ravelcue::media {

// The machine's cameras and microphones, followed by the demo devices. Device indices are
// positions in these lists.
class DeviceCatalog {
public:
    virtual ~DeviceCatalog() = default;

    // Reads the lists afresh.
    virtual void refresh() = 0;
    virtual int VideoDeviceCount() const = 0;
    virtual QString VideoDeviceName(int index) const = 0;
    virtual int AudioDeviceCount() const = 0;
    virtual QString AudioDeviceName(int index) const = 0;
};

} // namespace ravelcue::media
