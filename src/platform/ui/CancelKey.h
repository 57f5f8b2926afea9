#pragma once

#include <QAbstractButton>
#include <QObject>
#include <QPointer>

class QShortcut;
class QWidget;

namespace ravelcue::ui {

// The Escape key of a window presses its cancel button: one button at a time, or none.
// UI thread only.
class CancelKey : public QObject {
    Q_OBJECT
public:
    explicit CancelKey(QWidget* window);

    // The button Escape now presses; null for none.
    void setCancelButton(QAbstractButton* button);
    QAbstractButton* cancelButton() const { return button_; }

private:
    QShortcut* shortcut_ = nullptr;
    QPointer<QAbstractButton> button_;
};

} // namespace ravelcue::ui
