#include "StatusPopup.h"

#include "Clock.h"

#include <QGuiApplication>
#include <QLabel>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>
#include <QWidget>

namespace ravelcue::ui {

StatusPopup::StatusPopup(const Clock& clock)
    : clock_(clock) {}

StatusPopup::~StatusPopup() {
    delete window_.data();
}

void StatusPopup::load() {
    auto* window = new QWidget(nullptr, Qt::Dialog | Qt::WindowStaysOnTopHint |
                                            Qt::CustomizeWindowHint | Qt::WindowTitleHint);
    window->setObjectName(QStringLiteral("frmStatusPopup"));
    window->setWindowTitle(QStringLiteral("Status"));
    window->setAttribute(Qt::WA_DeleteOnClose);
    lblText_ = new QLabel(window);
    lblText_->setObjectName(QStringLiteral("lblText"));
    lblText_->setAlignment(Qt::AlignCenter);
    lblText_->setWordWrap(true);
    QFont font = lblText_->font();
    font.setPointSize(font.pointSize() + 2);
    lblText_->setFont(font);
    auto* layout = new QVBoxLayout(window);
    layout->addWidget(lblText_);
    window->setFixedSize(420, 90);
    tmrDelay_ = new QTimer(window);
    tmrDelay_->setObjectName(QStringLiteral("tmrDelay"));
    tmrDelay_->setSingleShot(false);
    QObject::connect(tmrDelay_, &QTimer::timeout, window, [this] {
        tmrDelay_->stop();
        unload();
    });
    // Centre on the screen: half of the free width and height, in whole pixels.
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        const QRect area = screen->availableGeometry();
        window->move(area.left() + (area.width() - window->width()) / 2,
                     area.top() + (area.height() - window->height()) / 2);
    }
    window_ = window;
}

void StatusPopup::unload() {
    if (window_) {
        window_->close();
    }
    window_ = nullptr;
    lblText_ = nullptr;
    tmrDelay_ = nullptr;
}

void StatusPopup::ShowPopup(const QString& text, int seconds) {
    if (!window_) {
        load();
    }
    lblText_->setText(text);
    if (seconds >= 1) {
        clock_.setInterval(*tmrDelay_, seconds * 1000);
        tmrDelay_->start();
    } else if (seconds == -1) {
        tmrDelay_->setInterval(1);
        tmrDelay_->start();
    } else {
        tmrDelay_->stop();
    }
    window_->show();
    window_->raise();
    // The caller goes on with long work on this thread: paint now, or nothing would show.
    window_->repaint();
}

} // namespace ravelcue::ui
