#include "CancelKey.h"

#include <QAbstractButton>
#include <QShortcut>
#include <QWidget>

namespace ravelcue::ui {

CancelKey::CancelKey(QWidget* window)
    : QObject(window)
    , shortcut_(new QShortcut(QKeySequence(Qt::Key_Escape), window)) {
    shortcut_->setContext(Qt::WindowShortcut);
    shortcut_->setEnabled(false);
    connect(shortcut_, &QShortcut::activated, this, [this] {
        if (button_ && button_->isEnabled()) {
            button_->click();
        }
    });
}

void CancelKey::setCancelButton(QAbstractButton* button) {
    button_ = button;
    shortcut_->setEnabled(button != nullptr);
}

} // namespace ravelcue::ui
