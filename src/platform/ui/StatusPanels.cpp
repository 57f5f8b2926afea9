#include "StatusPanels.h"

#include <algorithm>

#include <QLabel>

namespace ravelcue::ui {

namespace {

constexpr int kNarrowest = 60;

// A panel takes the room its text needs from the panels with room to spare, so that a running
// count or "Audio Capture Stopped" is not cut off while the bar is wide enough for them all.
class Panel final : public QLabel {
public:
    using QLabel::QLabel;
    QSize minimumSizeHint() const override {
        QSize size = QLabel::minimumSizeHint();
        size.setWidth(std::max(size.width(), kNarrowest));
        return size;
    }
};

} // namespace

StatusPanels::StatusPanels(QWidget* parent)
    : QStatusBar(parent) {
    setObjectName(QStringLiteral("StatusBar1"));
    setSizeGripEnabled(true);
    const std::array<int, 5> stretch{2, 3, 3, 3, 3};
    for (size_t i = 0; i < panels_.size(); ++i) {
        auto* label = new Panel(this);
        label->setObjectName(QStringLiteral("StatusBar1_%1").arg(i + 1));
        label->setFrameStyle(QFrame::Panel | QFrame::Sunken);
        label->setTextInteractionFlags(Qt::NoTextInteraction);
        addWidget(label, stretch[i]);
        panels_[i] = label;
    }
}

QSize StatusPanels::minimumSizeHint() const {
    // Long texts never widen the window: past its width they are cut off instead.
    return {kNarrowest * static_cast<int>(panels_.size()), QStatusBar::minimumSizeHint().height()};
}

void StatusPanels::setPanel(int panel, const QString& text) {
    if (panel >= 1 && panel <= static_cast<int>(panels_.size())) {
        panels_[static_cast<size_t>(panel - 1)]->setText(text);
    }
}

QString StatusPanels::panel(int panel) const {
    if (panel >= 1 && panel <= static_cast<int>(panels_.size())) {
        return panels_[static_cast<size_t>(panel - 1)]->text();
    }
    return {};
}

void StatusPanels::setActivity(const QString& text) {
    setPanel(1, text);
    for (int i = 2; i <= 5; ++i) {
        setPanel(i, QString());
    }
}

} // namespace ravelcue::ui
