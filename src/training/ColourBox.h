#pragma once

#include <QFrame>

namespace ravelcue::training {

// picTargetColor: a box filled with one colour that reports a click. UI thread only.
class ColourBox : public QFrame {
    Q_OBJECT
public:
    ColourBox(QWidget* parent, const QString& name, const QString& toolTip);

    void setColour(const QColor& colour);
    QColor colour() const;

signals:
    void clicked();

protected:
    void mouseReleaseEvent(QMouseEvent* event) override;
};

} // namespace ravelcue::training
