// The real program in a stroke training run, for a look or a screenshot: on start it opens the
// training pane, calibrates on the selected camera (answering the message itself), and starts a
// side training run, which then keeps going. Settings and folders are the user's, as always.

#include "app/Application.h"

#include <QApplication>
#include <QCursor>
#include <QMainWindow>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <QWidget>

namespace {

void clickLater(QWidget& root, const QString& name, int ms) {
    QTimer::singleShot(ms, &root, [&root, name] {
        QWidget* target = nullptr;
        for (QWidget* top : QApplication::topLevelWidgets()) {
            if (top->objectName() == name) {
                target = top;
            } else if (auto* found = top->findChild<QWidget*>(name)) {
                target = found;
            }
        }
        if (auto* button = qobject_cast<QAbstractButton*>(target)) {
            button->click();
        }
    });
}

void acceptMessageLater(QWidget& root, int ms) {
    QTimer::singleShot(ms, &root, [] {
        if (QWidget* box = QApplication::activeModalWidget()) {
            for (auto* button : box->findChildren<QAbstractButton*>()) {
                if (button->text().remove(QLatin1Char('&')) == QLatin1String("OK")) {
                    button->click();
                    return;
                }
            }
        }
    });
}

} // namespace

int main(int argc, char** argv) {
    ravelcue::app::RunOptions options;
    options.shown = [](QMainWindow& window) {
        QCursor::setPos(2, 2); // keep the pointer out of the picture
        clickLater(window, QStringLiteral("cmdTraining"), 500);
        clickLater(window, QStringLiteral("cmdCalibrate"), 2500);
        acceptMessageLater(window, 3000);
        clickLater(window, QStringLiteral("cmdStartTraining"), 11000);
        clickLater(window, QStringLiteral("Option2_1"), 11500);
        clickLater(window, QStringLiteral("cmdOK"), 12000);
    };
    return ravelcue::app::runRavelcue(argc, argv, options);
}
