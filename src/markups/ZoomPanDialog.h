#pragma once

#include <QDialog>

class QSlider;

namespace ravelcue::markups {

// frmZoomPan, "Zoom/Pan Control": the zoom slider (levels 0..9), the pan pad (up, down, left,
// right, centre), Reset and OK. A tool window beside the player, never modal; it only reports
// what the user does, and whoever opened it acts on the selected player.
class ZoomPanDialog : public QDialog {
    Q_OBJECT
public:
    explicit ZoomPanDialog(QWidget* owner);

    int level() const;
    // Moves the slider without a report.
    void showLevel(int level);

signals:
    void levelChosen(int level);
    // 0 up, 1 down, 2 left, 3 right, 4 centre.
    void panPressed(int index);
    void resetPressed();
    void okPressed();

private:
    QSlider* slider1_ = nullptr;
};

} // namespace ravelcue::markups
