#pragma once

#include <QRect>
#include <QString>

class QCheckBox;
class QComboBox;
class QFrame;
class QHBoxLayout;
class QLabel;
class QLineEdit;
class QObject;
class QPushButton;
class QTimer;
class QWidget;

namespace ravelcue::ui {

class Clock;

// Small makers for the named, absolutely placed controls of the main window. Every control's
// objectName is its program name, so that tests and accessibility find it.
QFrame* makeFrame(QWidget* parent, const QString& name, const QRect& geometry);
QLabel* makeLabel(QWidget* parent, const QString& name, const QString& text, const QRect& geometry);
QPushButton* makeButton(QWidget* parent, const QString& name, const QString& caption,
                        const QString& toolTip, const QRect& geometry);
// A button of a dialog laid out by a layout: named, and never pressed by Enter from elsewhere.
QPushButton* makeDialogButton(QWidget* parent, const QString& name, const QString& caption,
                              const QString& toolTip = {});
// The right-aligned "OK" and "Cancel" (cmdOK, cmdCancel) of a dialog; more buttons may be added
// to the row after them.
struct DialogButtonRow {
    QHBoxLayout* row;
    QPushButton* ok;
    QPushButton* cancel;
};
DialogButtonRow makeOkCancelRow(QWidget* dialog);
QLabel* makeDialogLabel(QWidget* parent, const QString& name, const QString& text);
QCheckBox* makeCheckBox(QWidget* parent, const QString& name, const QString& caption,
                        const QString& toolTip, const QRect& geometry);
QLineEdit* makeTextBox(QWidget* parent, const QString& name, const QString& toolTip,
                       const QRect& geometry);
QComboBox* makeDropDownList(QWidget* parent, const QString& name, const QString& toolTip,
                            const QRect& geometry);
// A repeating timer, off at start, with its interval on the given clock.
QTimer* makeTimer(QObject* parent, const QString& name, int intervalMs, const Clock& clock);

// "name_index", the object name of an element of a control array.
QString indexedName(const QString& name, int index);

} // namespace ravelcue::ui
