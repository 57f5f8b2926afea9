#include "Desktop.h"

#include <QDesktopServices>

namespace ravelcue::ui {

bool SystemDesktop::openUrl(const QUrl& url) {
    return QDesktopServices::openUrl(url);
}

} // namespace ravelcue::ui
