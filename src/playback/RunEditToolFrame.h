#pragma once

#include "Timeline.h"

#include <map>

#include <QObject>
#include <QString>

class QAction;
class QCheckBox;
class QFrame;
class QLabel;
class QListWidget;
class QTimer;
class QToolBar;
class QWidget;

namespace ravelcue::ui {
struct WindowContext;
}

namespace ravelcue::playback {

// fmRunEditTB, the tool frame of a loaded video or image: the transport toolbar Toolbar1, the
// drawing toolbar Toolbar2, the speed list and the loop box; and the timeline Slider1 with its
// timer. UI thread only.
class RunEditToolFrame : public QObject {
    Q_OBJECT
public:
    RunEditToolFrame(ui::WindowContext& context, QWidget* client);

    QFrame* frame() const { return frame_; }
    QToolBar* toolbar1() const { return toolbar1_; }
    QToolBar* toolbar2() const { return toolbar2_; }
    // A toolbar button by its key ("Play", "Line", "Erase").
    QAction* button1(const QString& key) const { return buttons1_.at(key); }
    QAction* button2(const QString& key) const { return buttons2_.at(key); }
    QListWidget* lstSpeed() const { return lstSpeed_; }
    QCheckBox* chkLoop() const { return chkLoop_; }
    Timeline* slider1() const { return slider1_; }
    QTimer* tmrSlider() const { return tmrSlider_; }

    // Fills the speed list: "X4", "X2", "X1", "X/2", "X/4".
    void fillSpeedList();
    // "X1" at the top of the list, without a highlight, and no handler run.
    void resetSpeedList();
    // The index of the entry at the top of the one-line list.
    int topSpeedIndex() const;
    // Scrolls the list so that this entry is at the top, as the user would; its handler runs.
    void scrollSpeedTo(int index);

    void applyGeometry();

private:
    void buildToolbar1();
    void buildToolbar2();

    ui::WindowContext& context_;
    QFrame* frame_ = nullptr;
    QToolBar* toolbar1_ = nullptr;
    QToolBar* toolbar2_ = nullptr;
    std::map<QString, QAction*> buttons1_;
    std::map<QString, QAction*> buttons2_;
    QListWidget* lstSpeed_ = nullptr;
    QLabel* lblSpeed2_ = nullptr;
    QCheckBox* chkLoop_ = nullptr;
    Timeline* slider1_ = nullptr;
    QTimer* tmrSlider_ = nullptr;
};

} // namespace ravelcue::playback
