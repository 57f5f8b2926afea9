#pragma once

#include "platform/ui/Desktop.h"

#include <QList>
#include <QUrl>

namespace ravelcue::test {

// A desktop that opens nothing and remembers every address it was given.
class RecordingDesktop final : public ui::Desktop {
public:
    bool openUrl(const QUrl& url) override {
        opened.append(url);
        return true;
    }
    QList<QUrl> opened;
};

} // namespace ravelcue::test
