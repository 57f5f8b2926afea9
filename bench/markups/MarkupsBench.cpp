// One mouse move of each drawing tool while a shape is dragged over a 1920x1080 picture: the
// gesture updates the markups, the change is rendered into the shape layer, handed to the view
// and composed as the view paints it. Each tool presses near the top left corner and drags round
// the whole picture in 400 moves, so shapes span most of it; the median and worst move are
// printed beside the median and worst of a plain QPainter fill of the same layer, timed in the
// same run. Target: median under 1 ms, worst under 4 ms.

#include "markups/DrawingTools.h"
#include "platform/media/VideoView.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <vector>

#include <QApplication>
#include <QPainter>

namespace {

using namespace ravelcue::markups;
using Clock = std::chrono::steady_clock;

constexpr QSize kPicture(1920, 1080);
constexpr int kMoves = 400;

struct Figures {
    double median = 0;
    double worst = 0;
};

Figures figuresOf(std::vector<double> ms) {
    std::sort(ms.begin(), ms.end());
    return {ms[ms.size() / 2], ms.back()};
}

double since(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// The pointer's path: the press near the corner, then a wide loop round the picture.
QPointF pathPoint(int move) {
    const double t = static_cast<double>(move) / kMoves;
    if (move == 0) {
        return {100, 100};
    }
    return {960 + 800 * std::sin(6.283 * t), 540 + 450 * std::cos(6.283 * t)};
}

Figures toolMoves(int shape, ravelcue::media::VideoView& view) {
    PlayerMarkups markups(kPicture);
    DrawingTools tools;
    tools.chooseTool(shape, &markups);
    view.overlay().updateBitmap(markups.layer(), markups.layer().rect());
    view.overlay().composed(kPicture);
    markups.takeChanges();
    if (shape == ShapeText) {
        tools.noteReady(QStringLiteral("Cue ball here"), 65535);
    } else {
        tools.press(markups, 0, pathPoint(0), MarkerPen{255, 2});
    }
    if (shape == ShapeAngle) {
        tools.move(markups, 0, 1, {1700, 900});
        tools.release(markups, {1700, 900});
    }
    std::vector<double> ms;
    for (int move = 1; move <= kMoves; ++move) {
        const Clock::time_point start = Clock::now();
        tools.move(markups, 0, 1, pathPoint(move));
        const PlayerMarkups::Changes changes = markups.takeChanges();
        if (!changes.layer.isEmpty()) {
            view.overlay().updateBitmap(markups.layer(), changes.layer);
            view.overlayChanged(changes.layer);
        }
        for (const int slot : changes.textSlots) {
            const TextSlot& text = markups.slot(slot);
            view.overlay().setText(slot, {text.text, text.x, text.y, QStringLiteral("Arial Bold"),
                                          12, colourOf(text.colour)});
        }
        view.overlay().composed(kPicture);
        ms.push_back(since(start));
    }
    return figuresOf(ms);
}

Figures plainFills() {
    QImage layer(kPicture, QImage::Format_RGB32);
    std::vector<double> ms;
    for (int i = 0; i < kMoves; ++i) {
        const Clock::time_point start = Clock::now();
        QPainter painter(&layer);
        painter.fillRect(layer.rect(), i % 2 == 0 ? Qt::black : Qt::darkGray);
        painter.end();
        ms.push_back(since(start));
    }
    return figuresOf(ms);
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    ravelcue::media::VideoView view;
    view.resize(800, 450);
    QImage frame(kPicture, QImage::Format_RGB32);
    frame.fill(Qt::darkGreen);
    view.presentFrame(frame);

    const Figures peer = plainFills();
    std::printf("One mouse move on a 1920x1080 picture, %d moves a tool (ms)\n", kMoves);
    std::printf("%-12s %8s %8s %10s\n", "tool", "median", "worst", "vs fill");
    std::printf("%-12s %8.3f %8.3f %10s\n", "QPainter fill", peer.median, peer.worst, "1.00");
    const std::pair<const char*, int> tools[] = {
        {"Line", ShapeLine},           {"Vline", ShapeVline},     {"Hline", ShapeHline},
        {"Rectangle", ShapeRectangle}, {"Ellipse", ShapeEllipse}, {"Freehand", ShapeFreehand},
        {"Angle", ShapeAngle},         {"Text", ShapeText}};
    for (const auto& [name, shape] : tools) {
        const Figures f = toolMoves(shape, view);
        std::printf("%-12s %8.3f %8.3f %10.2f\n", name, f.median, f.worst, f.median / peer.median);
    }
    return 0;
}
