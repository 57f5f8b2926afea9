#pragma once

#include <QSlider>
#include <QString>

namespace ravelcue::playback {

// Slider1, the timeline under the picture, in steps of 100 ms. Besides the thumb it draws the
// selected region (filled while in force, outlined while only drawn), reports mouse events with
// their button and shift codes, and tells a move of the thumb by the user (scrolled) apart from
// one made by the program (moveThumb), which raises nothing. A press on the groove jumps there.
// UI thread only.
class Timeline : public QSlider {
    Q_OBJECT
public:
    explicit Timeline(QWidget* parent = nullptr);

    int SelStart() const { return selStart_; }
    int SelLength() const { return selLength_; }
    void setSelection(int selStart, int selLength);
    void setRegionInForce(bool inForce);
    bool regionInForce() const { return inForce_; }

    // Sets the value without raising scrolled.
    void moveThumb(int value);
    // The last step, 0 to max; raises nothing even when the thumb has to move.
    void setSteps(int max);

    // The pop-up text at the thumb, shown while the user moves it.
    QString Text() const { return text_; }
    void setText(const QString& text);

    // Where a step lies along the groove, in widget pixels.
    int pixelOf(int step) const;

signals:
    // Buttons 1 left, 2 right, 4 middle; shift 1 Shift, 2 Ctrl, 4 Alt. Raised after the slider
    // has acted on the event, so value() is where the thumb now stands.
    void mousePressed(int button, int shift);
    void mouseMoved(int button, int shift);
    void mouseReleased(int button, int shift);
    // The user moved the thumb, by mouse or key.
    void scrolled();

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    int selStart_ = 0;
    int selLength_ = 0;
    bool inForce_ = false;
    bool quiet_ = false;
    QString text_;
};

} // namespace ravelcue::playback
