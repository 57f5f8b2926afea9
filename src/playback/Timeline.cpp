#include "Timeline.h"

#include "platform/media/VideoView.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QProxyStyle>
#include <QStyleOptionSlider>
#include <QStylePainter>
#include <QToolTip>

namespace ravelcue::playback {

namespace {

// A left press on the groove moves the thumb there, as on every video timeline, instead of
// paging towards it.
class TimelineStyle final : public QProxyStyle {
public:
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returnData) const override {
        if (hint == QStyle::SH_Slider_AbsoluteSetButtons) {
            return Qt::LeftButton;
        }
        return QProxyStyle::styleHint(hint, option, widget, returnData);
    }
};

bool isSeekKey(int key) {
    switch (key) {
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        return true;
    default:
        return false;
    }
}

} // namespace

Timeline::Timeline(QWidget* parent)
    : QSlider(Qt::Horizontal, parent) {
    auto* style = new TimelineStyle;
    style->setParent(this);
    setStyle(style);
    // The timeline lies over the foot of the player panes; drawn straight onto the picture its
    // groove and ticks would be lost in the video.
    setAutoFillBackground(true);
    connect(this, &QAbstractSlider::valueChanged, this, [this] {
        if (!quiet_) {
            emit scrolled();
        }
    });
}

void Timeline::setSelection(int selStart, int selLength) {
    if (selStart != selStart_ || selLength != selLength_) {
        selStart_ = selStart;
        selLength_ = selLength;
        update();
    }
}

void Timeline::setRegionInForce(bool inForce) {
    if (inForce != inForce_) {
        inForce_ = inForce;
        update();
    }
}

void Timeline::moveThumb(int value) {
    quiet_ = true;
    setValue(value);
    quiet_ = false;
}

void Timeline::setSteps(int max) {
    quiet_ = true;
    setRange(0, std::max(max, 0));
    quiet_ = false;
    // A tick each second, or each 5, 10 or 30 seconds or minutes, whichever leaves at most 60.
    static constexpr int kTickSteps[] = {10, 50, 100, 300, 600, 3000, 6000, 18000};
    int interval = kTickSteps[0];
    for (int steps : kTickSteps) {
        interval = steps;
        if (maximum() / steps <= 60) {
            break;
        }
    }
    setTickInterval(interval);
}

void Timeline::setText(const QString& text) {
    text_ = text;
    if (isVisible() && (isSliderDown() || hasFocus())) {
        const QPoint at(pixelOf(value()), 0);
        QToolTip::showText(mapToGlobal(at), text_, this);
    }
}

int Timeline::pixelOf(int step) const {
    QStyleOptionSlider option;
    initStyleOption(&option);
    const QRect groove =
        style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderGroove, this);
    const QRect handle =
        style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this);
    const int span = groove.width() - handle.width();
    return groove.left() + handle.width() / 2 +
           QStyle::sliderPositionFromValue(minimum(), maximum(), step, std::max(span, 0));
}

bool Timeline::event(QEvent* event) {
    // With the timeline in focus the arrow and page keys seek here rather than step the video.
    if (event->type() == QEvent::ShortcutOverride &&
        isSeekKey(static_cast<QKeyEvent*>(event)->key())) {
        event->accept();
        return true;
    }
    return QSlider::event(event);
}

void Timeline::paintEvent(QPaintEvent*) {
    QStylePainter painter(this);
    QStyleOptionSlider option;
    initStyleOption(&option);
    if (isSliderDown()) {
        option.activeSubControls = QStyle::SC_SliderHandle;
        option.state |= QStyle::State_Sunken;
    }

    option.subControls = QStyle::SC_SliderGroove;
    if (tickPosition() != QSlider::NoTicks) {
        option.subControls |= QStyle::SC_SliderTickmarks;
    }
    painter.drawComplexControl(QStyle::CC_Slider, option);

    if (selLength_ > 0) {
        const QRect groove =
            style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderGroove, this);
        const int left = pixelOf(selStart_);
        const int right = pixelOf(selStart_ + selLength_);
        const QRect band(left, groove.center().y() - 5, std::max(right - left, 2), 11);
        const QColor colour(230, 126, 34);
        painter.setPen(QPen(colour.darker(130), 1));
        if (inForce_) {
            painter.setBrush(colour);
        } else {
            painter.setBrush(QBrush(colour, Qt::BDiagPattern));
        }
        painter.drawRect(band);
    }

    option.subControls = QStyle::SC_SliderHandle;
    painter.drawComplexControl(QStyle::CC_Slider, option);
}

void Timeline::mousePressEvent(QMouseEvent* event) {
    QSlider::mousePressEvent(event);
    event->accept();
    emit mousePressed(media::mouseButtonCode(event->button()),
                      media::shiftCode(event->modifiers()));
}

void Timeline::mouseMoveEvent(QMouseEvent* event) {
    QSlider::mouseMoveEvent(event);
    emit mouseMoved(media::mouseButtonCode(event->buttons()), media::shiftCode(event->modifiers()));
}

void Timeline::mouseReleaseEvent(QMouseEvent* event) {
    QSlider::mouseReleaseEvent(event);
    emit mouseReleased(media::mouseButtonCode(event->button()),
                       media::shiftCode(event->modifiers()));
}

} // namespace ravelcue::playback
