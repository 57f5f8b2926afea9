#pragma once

#include <array>

#include <QStatusBar>
#include <QString>

class QLabel;

namespace ravelcue::ui {

// StatusBar1: five panels, numbered 1 to 5. Panel 1 names the activity; the others are told by
// whoever fills them. UI thread only.
class StatusPanels final : public QStatusBar {
    Q_OBJECT
public:
    explicit StatusPanels(QWidget* parent = nullptr);

    void setPanel(int panel, const QString& text);
    QString panel(int panel) const;
    // Sets panel 1 and empties panels 2 to 5.
    void setActivity(const QString& text);

    QSize minimumSizeHint() const override;

private:
    std::array<QLabel*, 5> panels_{};
};

} // namespace ravelcue::ui
