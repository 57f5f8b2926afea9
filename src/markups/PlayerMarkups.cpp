#include "PlayerMarkups.h"

#include "GridLattice.h"

#include <algorithm>
#include <cstring>

#include <QPainter>

namespace ravelcue::markups {

namespace {

QImage blackImage(QSize size) {
    QImage image(size.isEmpty() ? QSize(800, 600) : size, QImage::Format_RGB32);
    image.fill(Qt::black);
    return image;
}

} // namespace

PlayerMarkups::PlayerMarkups(QSize picture) {
    fit(picture);
}

void PlayerMarkups::fit(QSize picture) {
    base_ = blackImage(picture);
    layer_ = base_.copy();
    marks_.clear();
    grids_.clear();
    preview_.reset();
    changed_ = layer_.rect();
}

void PlayerMarkups::clear() {
    marks_.clear();
    grids_.clear();
    preview_.reset();
    for (int i = 0; i < kTextSlots; ++i) {
        slots_[static_cast<size_t>(i)] = TextSlot{};
        changedSlots_.push_back(i);
    }
    TextCount = 0;
    renderAll();
}

void PlayerMarkups::setPreview(std::optional<MarkerShape> preview, std::optional<QRect> changed) {
    QRect area;
    if (changed) {
        area = *changed;
    } else if (preview_) {
        area = preview_->bounds();
    }
    preview_ = std::move(preview);
    if (preview_ && !changed) {
        area |= preview_->bounds();
    }
    refreshLayer(area);
}

void PlayerMarkups::commit(Mark mark) {
    if (mark.shape && !mark.shape->paintsNothing()) {
        {
            QPainter painter(&base_);
            paintShape(painter, *mark.shape);
        }
        refreshLayer(mark.shape->bounds());
    }
    marks_.push_back(std::move(mark));
}

bool PlayerMarkups::eraseLast() {
    if (marks_.empty()) {
        return false;
    }
    const Mark mark = std::move(marks_.back());
    marks_.pop_back();
    if (mark.textSlot >= 0) {
        slots_[static_cast<size_t>(mark.textSlot)] = TextSlot{};
        changedSlots_.push_back(mark.textSlot);
        if (mark.textSlot == TextCount - 1) {
            --TextCount;
        }
    }
    if (mark.shape) {
        const QRect area = mark.shape->bounds();
        renderBase(area);
        refreshLayer(area);
    }
    return true;
}

void PlayerMarkups::addGrid(int spacing) {
    if (spacing <= 0) {
        return;
    }
    grids_.push_back(spacing);
    renderAll();
}

void PlayerMarkups::removeGrids() {
    grids_.clear();
    renderAll();
}

void PlayerMarkups::setSlot(int index, TextSlot text) {
    if (index < 0 || index >= kTextSlots) {
        return;
    }
    for (Mark& mark : marks_) {
        if (mark.textSlot == index) {
            mark.textSlot = -1;
        }
    }
    slots_[static_cast<size_t>(index)] = std::move(text);
    changedSlots_.push_back(index);
}

PlayerMarkups::Changes PlayerMarkups::takeChanges() {
    Changes changes{changed_, std::move(changedSlots_)};
    std::sort(changes.textSlots.begin(), changes.textSlots.end());
    changes.textSlots.erase(std::unique(changes.textSlots.begin(), changes.textSlots.end()),
                            changes.textSlots.end());
    changed_ = QRect();
    changedSlots_.clear();
    return changes;
}

void PlayerMarkups::renderAll() {
    renderBase(base_.rect());
    refreshLayer(base_.rect());
}

void PlayerMarkups::renderBase(const QRect& area) {
    const QRect clip = area & base_.rect();
    if (clip.isEmpty()) {
        return;
    }
    QPainter painter(&base_);
    painter.setClipRect(clip);
    painter.fillRect(clip, Qt::black);
    if (!grids_.empty()) {
        painter.setPen(QPen(colourOf(kGridColour), 1));
        const int width = base_.width();
        const int height = base_.height();
        for (const int spacing : grids_) {
            for (const int x : gridLines(spacing, width)) {
                painter.drawLine(x, 0, x, height);
            }
            for (const int y : gridLines(spacing, height)) {
                painter.drawLine(0, y, width, y);
            }
        }
    }
    for (const Mark& mark : marks_) {
        if (mark.shape && mark.shape->bounds().intersects(clip)) {
            paintShape(painter, *mark.shape);
        }
    }
}

void PlayerMarkups::refreshLayer(const QRect& area) {
    const QRect clip = area & layer_.rect();
    if (clip.isEmpty()) {
        return;
    }
    const auto bytes = static_cast<size_t>(clip.width()) * sizeof(QRgb);
    for (int y = clip.top(); y <= clip.bottom(); ++y) {
        const auto* from = reinterpret_cast<const QRgb*>(base_.constScanLine(y)) + clip.left();
        auto* to = reinterpret_cast<QRgb*>(layer_.scanLine(y)) + clip.left();
        std::memcpy(to, from, bytes);
    }
    if (preview_) {
        QPainter painter(&layer_);
        painter.setClipRect(clip);
        paintShape(painter, *preview_);
    }
    changed_ |= clip;
}

} // namespace ravelcue::markups
