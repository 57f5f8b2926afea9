#include "DemoScene.h"

#include "DemoStamp.h"

#include <cmath>
#include <numbers>

#include <QFont>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

namespace ravelcue::media {

namespace {

constexpr double kPi = std::numbers::pi;

// A position that runs back and forth between 0 and span at the given speed (units a second).
double bounce(double start, double speed, double span, std::int64_t clockMs) {
    if (span <= 0) {
        return 0;
    }
    const double travelled = std::fmod(start + speed * double(clockMs) / 1000.0, 2 * span);
    const double wrapped = travelled < 0 ? travelled + 2 * span : travelled;
    return wrapped <= span ? wrapped : 2 * span - wrapped;
}

// A disc with hard edges, the same pixels wherever it stands: targets must show one exact
// colour, and the training search takes the topmost, then leftmost pixel of it.
void fillDisc(QImage& frame, QPoint centre, int radius, QRgb colour) {
    for (int dy = -radius; dy <= radius; ++dy) {
        const int y = centre.y() + dy;
        if (y < 0 || y >= frame.height()) {
            continue;
        }
        const int half = static_cast<int>(std::floor(std::sqrt(double(radius * radius - dy * dy))));
        const int x0 = std::max(0, centre.x() - half);
        const int x1 = std::min(frame.width() - 1, centre.x() + half);
        auto* row = reinterpret_cast<QRgb*>(frame.scanLine(y));
        for (int x = x0; x <= x1; ++x) {
            row[x] = colour;
        }
    }
}

} // namespace

DemoArmPose demoArmPose(std::int64_t clockMs) {
    const double phase = 2 * kPi * double(clockMs % kDemoArmCycleMs) / kDemoArmCycleMs;
    const double swing = std::sin(phase);
    // Squared, so the wrist lingers near the good position before it swings through.
    const int offset = static_cast<int>(std::lround(16.0 * swing * std::abs(swing)));
    return {QPoint(305, 205), QPoint(305 + offset, 355), QPoint(485, 355)};
}

DemoScene::DemoScene(int demoNumber, QSize size)
    : demoNumber_(demoNumber)
    , size_(size)
    , scaleX_(size.width() / 640.0)
    , scaleY_(size.height() / 480.0) {
    drawBackground();
}

void DemoScene::drawBackground() {
    background_ = QImage(size_, QImage::Format_RGB32);
    QPainter painter(&background_);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(scaleX_, scaleY_);
    switch (demoNumber_) {
    case 1: {
        QLinearGradient wall(0, 0, 0, 480);
        wall.setColorAt(0, QColor(92, 96, 108));
        wall.setColorAt(1, QColor(48, 50, 58));
        painter.fillRect(QRectF(0, 0, 640, 480), wall);
        // The player's back in a dark shirt, the right shoulder by the middle.
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(38, 44, 66));
        QPainterPath back;
        back.moveTo(60, 480);
        back.lineTo(90, 120);
        back.quadTo(200, 70, 350, 100);
        back.lineTo(330, 480);
        back.closeSubpath();
        painter.drawPath(back);
        // The reference pole that carries the side target.
        painter.setBrush(QColor(150, 150, 156));
        painter.drawRect(QRectF(481, 355, 8, 125));
        break;
    }
    case 2: {
        painter.fillRect(QRectF(0, 0, 640, 480), QColor(92, 56, 30));    // rails
        painter.fillRect(QRectF(30, 30, 580, 420), QColor(28, 84, 150)); // cloth
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::black);
        for (const QPointF pocket : {QPointF(30, 30), QPointF(320, 26), QPointF(610, 30),
                                     QPointF(30, 450), QPointF(320, 454), QPointF(610, 450)}) {
            painter.drawEllipse(pocket, 16, 16);
        }
        break;
    }
    case 3:
        painter.fillRect(QRectF(0, 0, 640, 480), QColor(20, 20, 24));
        break;
    default: {
        pattern_ = QImage(size_ * 2, QImage::Format_RGB32);
        QPainter tile(&pattern_);
        const int square = std::max(4, size_.width() / 10);
        for (int y = 0; y < pattern_.height(); y += square) {
            for (int x = 0; x < pattern_.width(); x += square) {
                const bool light = ((x / square) + (y / square)) % 2 == 0;
                tile.fillRect(x, y, square, square,
                              light ? QColor(200, 190, 120) : QColor(70, 40, 90));
            }
        }
        painter.fillRect(QRectF(0, 0, 640, 480), Qt::black);
        break;
    }
    }
}

QImage DemoScene::render(std::uint32_t frameCounter, std::int64_t clockMs) {
    QImage frame = background_.copy();
    switch (demoNumber_) {
    case 1:
        drawArm(frame, clockMs);
        break;
    case 2:
        drawTable(frame, clockMs);
        break;
    case 3:
        drawBars(frame, clockMs);
        break;
    default:
        drawPattern(frame, clockMs);
        break;
    }
    drawCaption(frame, frameCounter, clockMs);
    drawDemoStampBand(frame, frameCounter, static_cast<std::uint32_t>(clockMs));
    return frame;
}

void DemoScene::drawArm(QImage& frame, std::int64_t clockMs) const {
    const DemoArmPose pose = demoArmPose(clockMs);
    {
        QPainter painter(&frame);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(scaleX_, scaleY_);
        const QColor sleeve(44, 52, 78);
        const QColor skin(222, 170, 138);
        painter.setPen(QPen(sleeve, 46, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(QPointF(338, 108), pose.upperTarget);
        painter.setPen(QPen(skin, 34, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(pose.upperTarget, pose.lowerTarget);
        painter.setPen(Qt::NoPen);
        painter.setBrush(skin);
        painter.drawEllipse(QPointF(pose.lowerTarget) + QPointF(0, 26), 22, 24);
        // The cue seen from behind: its butt comes towards the camera from the hand.
        painter.setPen(QPen(QColor(186, 146, 92), 14, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(QPointF(pose.lowerTarget) + QPointF(0, 44),
                         QPointF(pose.lowerTarget.x() * 1.02, 486));
    }
    const int radius =
        std::max(2, static_cast<int>(std::lround(kDemoTargetRadius * std::min(scaleX_, scaleY_))));
    auto scaled = [&](QPoint p) {
        return QPoint(static_cast<int>(std::lround(p.x() * scaleX_)),
                      static_cast<int>(std::lround(p.y() * scaleY_)));
    };
    fillDisc(frame, scaled(pose.upperTarget), radius, kDemoTargetColour);
    fillDisc(frame, scaled(pose.lowerTarget), radius, kDemoTargetColour);
    fillDisc(frame, scaled(pose.sideTarget), radius, kDemoTargetColour);
}

void DemoScene::drawTable(QImage& frame, std::int64_t clockMs) const {
    struct Ball {
        QColor colour;
        double x, y, vx, vy;
    };
    static const Ball balls[] = {
        {QColor(245, 245, 240), 100, 200, 210, 140}, {QColor(240, 200, 30), 300, 120, -150, 95},
        {QColor(200, 30, 30), 420, 300, 120, -170},  {QColor(30, 30, 160), 200, 330, -90, -120},
        {QColor(230, 110, 20), 500, 180, 170, 60},   {QColor(20, 20, 20), 320, 240, 60, 200},
    };
    QPainter painter(&frame);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(scaleX_, scaleY_);
    painter.setPen(Qt::NoPen);
    constexpr double radius = 13;
    for (const Ball& ball : balls) {
        const double x = 30 + radius + bounce(ball.x, ball.vx, 580 - 2 * radius, clockMs);
        const double y = 30 + radius + bounce(ball.y, ball.vy, 420 - 2 * radius, clockMs);
        painter.setBrush(ball.colour);
        painter.drawEllipse(QPointF(x, y), radius, radius);
    }
}

void DemoScene::drawBars(QImage& frame, std::int64_t clockMs) const {
    static const QColor bars[] = {QColor(192, 192, 192), QColor(192, 192, 0), QColor(0, 192, 192),
                                  QColor(0, 192, 0),     QColor(192, 0, 192), QColor(192, 0, 0),
                                  QColor(0, 0, 192)};
    QPainter painter(&frame);
    painter.scale(scaleX_, scaleY_);
    // The bars drift to the right, 40 pixels a second.
    const double shift = double(clockMs) / 1000.0 * 40.0;
    constexpr double barWidth = 640.0 / 7;
    const double offset = std::fmod(shift, barWidth);
    const auto first = static_cast<long long>(std::floor(shift / barWidth));
    for (int i = -1; i < 8; ++i) {
        const auto colour = static_cast<size_t>(((i - first) % 7 + 7) % 7);
        painter.fillRect(QRectF(i * barWidth + offset, 70, barWidth + 1, 260), bars[colour]);
    }
    // A sweep hand that turns once a second, and a dial that counts seconds.
    painter.setRenderHint(QPainter::Antialiasing);
    const QPointF centre(320, 400);
    painter.setPen(QPen(QColor(230, 230, 230), 3));
    painter.setBrush(QColor(40, 40, 48));
    painter.drawEllipse(centre, 60, 60);
    const double angle = 2 * kPi * double(clockMs % 1000) / 1000.0;
    painter.setPen(QPen(QColor(250, 80, 60), 5, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(centre, centre + QPointF(52 * std::sin(angle), -52 * std::cos(angle)));
}

void DemoScene::drawPattern(QImage& frame, std::int64_t clockMs) const {
    QPainter painter(&frame);
    const int offsetX = static_cast<int>(bounce(0, 60 * scaleX_, size_.width(), clockMs));
    const int offsetY = static_cast<int>(bounce(0, 45 * scaleY_, size_.height(), clockMs));
    painter.drawImage(QPoint(0, 0), pattern_, QRect(QPoint(offsetX, offsetY), size_));
    // A ring that grows and fades out every two seconds.
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(scaleX_, scaleY_);
    const double growth = double(clockMs % 2000) / 2000.0;
    painter.setPen(QPen(QColor(255, 255, 255), 8));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(QPointF(320, 260), 20 + 180 * growth, 20 + 180 * growth);
}

void DemoScene::drawCaption(QImage& frame, std::uint32_t frameCounter, std::int64_t clockMs) const {
    QPainter painter(&frame);
    const int band = demoStampBandHeight(size_);
    QFont font(QStringLiteral("Liberation Sans"));
    font.setPixelSize(std::max(8, size_.height() / 26));
    font.setBold(true);
    painter.setFont(font);
    const QString text = QStringLiteral("Demo Camera %1   frame %2   %3 s")
                             .arg(demoNumber_)
                             .arg(frameCounter)
                             .arg(double(clockMs) / 1000.0, 0, 'f', 3);
    const QFontMetrics metrics(font);
    const QRect box(0, band, metrics.horizontalAdvance(text) + 12, metrics.height() + 4);
    painter.fillRect(box, Qt::black);
    painter.setPen(Qt::white);
    painter.drawText(box.adjusted(6, 2, 0, 0), Qt::AlignLeft | Qt::AlignTop, text);
}

} // namespace ravelcue::media
