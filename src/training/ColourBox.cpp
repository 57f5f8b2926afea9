#include "ColourBox.h"

#include <QMouseEvent>
#include <QPalette>

namespace ravelcue::training {

ColourBox::ColourBox(QWidget* parent, const QString& name, const QString& toolTip)
    : QFrame(parent) {
    setObjectName(name);
    setToolTip(toolTip);
    setFrameStyle(QFrame::Box | QFrame::Plain);
    setAutoFillBackground(true);
    setColour(Qt::black);
}

void ColourBox::setColour(const QColor& colour) {
    QPalette p = palette();
    p.setColor(QPalette::Window, colour);
    setPalette(p);
}

QColor ColourBox::colour() const {
    return palette().color(QPalette::Window);
}

void ColourBox::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint())) {
        emit clicked();
    }
    QFrame::mouseReleaseEvent(event);
}

} // namespace ravelcue::training
