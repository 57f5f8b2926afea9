#pragma once

#include "breakspeed/WaveformBox.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include <QApplication>
#include <QMouseEvent>
#include <QStringList>

namespace ravelcue::test {

// The mouse over the waveform boxes of the break speed pane, at pixel columns of their drawing
// area, as a person works them.
struct WaveformMouse {
    // A press, a move and a release of the left button, halfway down.
    static void drag(breakspeed::WaveformBox* box, int fromColumn, int toColumn) {
        press(box, fromColumn);
        move(box, QPoint(box->contentsRect().left() + (fromColumn + toColumn) / 2, 20));
        release(box, toColumn);
    }
    static QPoint at(breakspeed::WaveformBox* box, int column) {
        return {box->contentsRect().left() + column, box->contentsRect().center().y()};
    }
    static void press(breakspeed::WaveformBox* box, int column) {
        send(box, QEvent::MouseButtonPress, at(box, column), Qt::LeftButton, Qt::LeftButton);
    }
    static void move(breakspeed::WaveformBox* box, QPoint position) {
        send(box, QEvent::MouseMove, position, Qt::NoButton, Qt::LeftButton);
    }
    static void release(breakspeed::WaveformBox* box, int column) {
        send(box, QEvent::MouseButtonRelease, at(box, column), Qt::LeftButton, Qt::NoButton);
    }
    static void send(QWidget* widget, QEvent::Type type, QPoint position, Qt::MouseButton button,
                     Qt::MouseButtons buttons) {
        QMouseEvent event(type, QPointF(position), QPointF(widget->mapToGlobal(position)), button,
                          buttons, Qt::NoModifier);
        QApplication::sendEvent(widget, &event);
    }

    struct MarkedBlock {
        int first = 0; // words of the recording, left channel
        int last = 0;
        QStringList readings; // the speeds read, the one kept last
    };
    // Marks the one loud block of a recording (words as LoadAudioFile reads them, header
    // included) by hand: a selection around it in Picture1, then marks on its two ends in
    // Picture2, nudging the second by a pixel while the reading is not the one wanted, as a
    // person would.
    template <typename Speed>
    static MarkedBlock
    markLoudBlock(breakspeed::WaveformBox* picture1, breakspeed::WaveformBox* picture2,
                  const std::vector<std::int16_t>& words, const QString& wanted, Speed speed) {
        MarkedBlock block;
        // The left channel after the 44-byte header, as the eye finds the block.
        for (int i = 22; i + 1 < static_cast<int>(words.size()); i += 2) {
            if (std::abs(words[static_cast<size_t>(i)]) > 2000) {
                block.first = block.first == 0 ? i : block.first;
                block.last = i;
            }
        }
        if (block.last <= block.first) {
            return block;
        }
        const int selFrom = std::max(picture1->columnAt(block.first - 8820), 0);
        drag(picture1, selFrom, picture1->columnAt(block.last + 8820) + 1);
        const double selStart = std::round(picture1->xAt(selFrom));
        const int start = nearestColumn(picture2, block.first - selStart);
        const int end = nearestColumn(picture2, block.last - selStart);
        for (const int nudge : {0, -1, 1}) {
            drag(picture2, start, end + nudge);
            block.readings << speed();
            if (block.readings.last() == wanted) {
                break;
            }
        }
        return block;
    }
    // The column whose left edge lies nearest to X.
    static int nearestColumn(const breakspeed::WaveformBox* box, double x) {
        return static_cast<int>(std::lround(x * box->canvas().width() / box->scale().width));
    }
};

} // namespace ravelcue::test
