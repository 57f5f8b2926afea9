#pragma once

#include "platform/media/MediaError.h"

#include <array>
#include <functional>
#include <utility>

#include <QDialog>
#include <QObject>
#include <QPointer>
class QWidget;

namespace ravelcue::ui {
struct WindowContext;
}

namespace ravelcue::markups {

class MarkerStore;

// The start and end of the region in force in milliseconds, or 0 and 0 for the whole file.
using RegionSpan = std::function<std::pair<double, double>()>;

// "Save Video with Markups": the selected player's video, or the span of its region, written by
// that player's re-encoder beside the source with a "+" before the extension, the shape layer
// and text slots burnt in. The re-encoder writes under a temporary name and renames when whole,
// so a cancelled or failed save leaves any earlier one as it was. While it runs a popup shows
// the progress and a Cancel button; the player stays in use. UI thread only.
class SaveWithMarkups : public QObject {
    Q_OBJECT
public:
    SaveWithMarkups(ui::WindowContext& context, MarkerStore& markers, RegionSpan region,
                    QWidget* owner, QObject* parent);

    void mnuSaveVideo_Click();
    // The popup of a player's save while it runs, else null.
    QDialog* popup(int player) const { return popups_.at(static_cast<size_t>(player)); }

private:
    void finished(int player, const media::MediaError& error);

    ui::WindowContext& context_;
    MarkerStore& markers_;
    RegionSpan region_;
    QWidget* owner_;
    std::array<QPointer<QDialog>, 4> popups_;
};

} // namespace ravelcue::markups
