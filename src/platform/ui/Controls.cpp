#include "Controls.h"

#include "Clock.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

namespace ravelcue::ui {

QFrame* makeFrame(QWidget* parent, const QString& name, const QRect& geometry) {
    auto* frame = new QFrame(parent);
    frame->setObjectName(name);
    frame->setGeometry(geometry);
    return frame;
}

QLabel* makeLabel(QWidget* parent, const QString& name, const QString& text,
                  const QRect& geometry) {
    auto* label = new QLabel(text, parent);
    label->setObjectName(name);
    label->setGeometry(geometry);
    return label;
}

QPushButton* makeButton(QWidget* parent, const QString& name, const QString& caption,
                        const QString& toolTip, const QRect& geometry) {
    auto* button = new QPushButton(caption, parent);
    button->setObjectName(name);
    button->setToolTip(toolTip);
    button->setGeometry(geometry);
    return button;
}

QPushButton* makeDialogButton(QWidget* parent, const QString& name, const QString& caption,
                              const QString& toolTip) {
    auto* button = new QPushButton(caption, parent);
    button->setObjectName(name);
    button->setToolTip(toolTip);
    button->setAutoDefault(false);
    return button;
}

DialogButtonRow makeOkCancelRow(QWidget* dialog) {
    DialogButtonRow buttons{
        new QHBoxLayout, makeDialogButton(dialog, QStringLiteral("cmdOK"), QStringLiteral("OK")),
        makeDialogButton(dialog, QStringLiteral("cmdCancel"), QStringLiteral("Cancel"),
                         QStringLiteral("Click to cancel"))};
    buttons.row->addStretch();
    buttons.row->addWidget(buttons.ok);
    buttons.row->addWidget(buttons.cancel);
    return buttons;
}

QLabel* makeDialogLabel(QWidget* parent, const QString& name, const QString& text) {
    auto* label = new QLabel(text, parent);
    label->setObjectName(name);
    return label;
}

QCheckBox* makeCheckBox(QWidget* parent, const QString& name, const QString& caption,
                        const QString& toolTip, const QRect& geometry) {
    auto* box = new QCheckBox(caption, parent);
    box->setObjectName(name);
    box->setToolTip(toolTip);
    box->setGeometry(geometry);
    return box;
}

QLineEdit* makeTextBox(QWidget* parent, const QString& name, const QString& toolTip,
                       const QRect& geometry) {
    auto* box = new QLineEdit(parent);
    box->setObjectName(name);
    box->setToolTip(toolTip);
    box->setGeometry(geometry);
    return box;
}

QComboBox* makeDropDownList(QWidget* parent, const QString& name, const QString& toolTip,
                            const QRect& geometry) {
    auto* list = new QComboBox(parent);
    list->setObjectName(name);
    list->setToolTip(toolTip);
    list->setEditable(false);
    list->setGeometry(geometry);
    return list;
}

QTimer* makeTimer(QObject* parent, const QString& name, int intervalMs, const Clock& clock) {
    auto* timer = new QTimer(parent);
    timer->setObjectName(name);
    clock.setInterval(*timer, intervalMs);
    return timer;
}

QString indexedName(const QString& name, int index) {
    return name + QLatin1Char('_') + QString::number(index);
}

} // namespace ravelcue::ui
