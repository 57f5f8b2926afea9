#pragma once

#include "SaveWithMarkups.h"
#include "ZoomPanDialog.h"

#include <array>
#include <functional>
#include <map>

#include <QObject>
#include <QPointF>
#include <QPointer>
#include <QString>

class QAction;
class QWidget;

namespace ravelcue::ui {
struct WindowContext;
}

namespace ravelcue::markups {

class MarkerStore;

// The window's controls that markups answer to.
struct MarkupControls {
    // frmMain: owner of the dialogs, and where Ctrl+Z is heard.
    QWidget* window = nullptr;
    // Toolbar2's buttons by key: the eight tools, "Color" and "Erase" with their drop-downs.
    std::map<QString, QAction*> toolbar2;
    QAction* mnuSaveVideo = nullptr;
    QAction* mnuZoomPan = nullptr;
    std::array<QAction*, 4> mnuGrid{};
    RegionSpan region;
    std::function<void(int)> showHelp;
};

// The markups of the player panes: Toolbar2's tools, colours and erasing, the mouse on each
// player's picture (drawing, the wheel's zoom, the middle button's pan), the grid entries, the
// zoom tool window, and saving with markups. Playback selects the player and opens the pop-up
// menu on a press before this runs. UI thread only.
class MarkupsController : public QObject {
    Q_OBJECT
public:
    MarkupsController(ui::WindowContext& context, MarkerStore& markers,
                      const MarkupControls& controls, QObject* parent);

    void Toolbar2_ButtonClick(const QString& key);
    void Toolbar2_ButtonMenuClick(const QString& key);
    void PlayerMouseDown(int player, int button, double x, double y);
    void PlayerMouseMove(int player, int button, double x, double y);
    void PlayerMouseUp(int player, int button, double x, double y);
    void PlayerWheel(int player, int steps, double x, double y);
    void mnuGrid_Click(int index);
    void mnuZoomPan_Click();
    // Ctrl+Z and "Erase Last Marker": the last mark of the selected player goes.
    void eraseLast();

    ZoomPanDialog* zoomPanWindow() const { return zoomPan_; }
    SaveWithMarkups& saving() { return *save_; }

private:
    QPointF picturePoint(int player, double x, double y) const;
    QSize pictureOf(int player) const;
    void changed(int player, bool slotsExhausted = false, const QString& releaseButton = {});
    void updateEraseLast();
    void applyZoom(int player);
    void zoomLevel(int level);
    void pan(int index);
    void resetZoom(bool close);

    ui::WindowContext& context_;
    MarkerStore& markers_;
    MarkupControls controls_;
    QAction* eraseLast_ = nullptr;
    SaveWithMarkups* save_ = nullptr;
    QPointer<ZoomPanDialog> zoomPan_;
    int panning_ = -1;
    QPointF panFrom_;
};

} // namespace ravelcue::markups
