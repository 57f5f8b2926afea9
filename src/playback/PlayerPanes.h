#pragma once

#include <array>

#include <QObject>
#include <QPoint>

class QFrame;
class QWidget;

namespace ravelcue::ui {
struct WindowContext;
}

namespace ravelcue::playback {

// The four player panes picPlayer_0..3, each holding its player's picture. UI thread only.
class PlayerPanes : public QObject {
    Q_OBJECT
public:
    PlayerPanes(ui::WindowContext& context, QWidget* client);

    QFrame* pane(int player) const { return panes_.at(static_cast<size_t>(player)); }

    // Copies the panes' and pictures' geometry from the layout onto the widgets.
    void applyGeometry();

private:
    ui::WindowContext& context_;
    std::array<QFrame*, 4> panes_{};
};

} // namespace ravelcue::playback
