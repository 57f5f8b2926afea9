#pragma once

#include "MarkerShape.h"

#include <array>
#include <optional>
#include <vector>

#include <QImage>
#include <QString>

namespace ravelcue::markups {

inline constexpr int kTextSlots = 40;
// Slots 0..38 hold placed notes and readings; slot 39 only catches a note's moving preview.
inline constexpr int kUsableTextSlots = 39;

// One text slot: a note or an angle reading, at picture pixel (x, y), the top left of its line.
struct TextSlot {
    QString text;
    int x = 0;
    int y = 0;
    std::int32_t colour = kWhite;
};

// One thing the user put on the picture, removed whole by "Erase Last Marker": a shape, an angle
// with the slot of its reading, or a note (a slot and no shape).
struct Mark {
    std::optional<MarkerShape> shape;
    int textSlot = -1;
};

// The markups of one player: the marks in the order drawn, the grids laid, the text slots, and
// the shape layer they render to (RGB32 at the picture's size, black where the picture shows
// through). A shape being dragged lies over the marks as a preview until it is finished.
//
// Changes are rendered at once into the layer; takeChanges() says which part of the layer and
// which slots changed since it was last asked, so only those are handed on.
class PlayerMarkups {
public:
    explicit PlayerMarkups(QSize picture = QSize(800, 600));

    // A new picture: an empty layer of its size, no marks, no grid. Slots and count are left to
    // clear().
    void fit(QSize picture);
    // Removes every mark, grid and preview and empties the 40 slots; the count goes back to 0.
    void clear();

    const QImage& layer() const { return layer_; }
    QSize size() const { return layer_.size(); }
    const std::vector<Mark>& marks() const { return marks_; }

    // The shape being dragged, drawn over the marks; nullopt takes it away. `changed`, when
    // given, is all that differs from the preview before (a freehand stroke grows at its end).
    void setPreview(std::optional<MarkerShape> preview, std::optional<QRect> changed = {});
    const std::optional<MarkerShape>& preview() const { return preview_; }
    // Adds a finished mark; its shape is painted over what is there.
    void commit(Mark mark);
    // Takes the last mark away whole, with its text; what lay under it shows again. False when
    // there is nothing to take.
    bool eraseLast();

    // Lays a grid of this spacing under the marks; grids add up. removeGrids takes them all.
    void addGrid(int spacing);
    void removeGrids();
    const std::vector<int>& grids() const { return grids_; }

    const TextSlot& slot(int index) const { return slots_.at(static_cast<size_t>(index)); }
    // Writes a slot; a mark that held it keeps its shape and loses the text.
    void setSlot(int index, TextSlot text);

    // Next free text slot.
    int TextCount = 0;
    // Where each slot stands, picture pixels times 15.
    std::array<std::array<float, 2>, kTextSlots> TextPos{};

    struct Changes {
        QRect layer;
        std::vector<int> textSlots;
    };
    Changes takeChanges();

private:
    void renderAll();
    void renderBase(const QRect& area);
    void refreshLayer(const QRect& area);

    QImage base_;  // grids and marks
    QImage layer_; // base with the preview on top
    std::vector<Mark> marks_;
    std::vector<int> grids_;
    std::optional<MarkerShape> preview_;
    std::array<TextSlot, kTextSlots> slots_{};
    QRect changed_;
    std::vector<int> changedSlots_;
};

} // namespace ravelcue::markups
