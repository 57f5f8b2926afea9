#pragma once

#include "breakspeed/BreakSpeedLog.h"

#include <vector>

#include <QDialog>

class QLabel;
class QLineEdit;
class QPushButton;
class QTreeWidget;

namespace ravelcue::ui {
class Prompts;
}

namespace ravelcue::breakspeed {

// frmBreakSpeedLog: the log of break speeds. It reads BreakSpeedLog.txt as it opens, and writes
// it whole at OK; until then the list is the only copy. It goes away when closed. UI thread only.
class BreakSpeedLogDialog : public QDialog {
    Q_OBJECT
public:
    // speed and energy are the texts handed over by the Save button.
    BreakSpeedLogDialog(QWidget* parent, QString logPath, const QString& speed,
                        const QString& energy, ui::Prompts& prompts);

    void cmdAdd_Click();
    void cmdDelete_Click();
    void cmdCalculate_Click();
    // Adds an entry left in the fields, then saves; a failed save says so and stays open.
    void cmdOK_Click();
    void cmdCancel_Click();

signals:
    // The help topic asked for by the Help button.
    void helpRequested(int context);

private:
    void addRow(const LogRow& row);

    QString logPath_;
    ui::Prompts& prompts_;
    std::vector<LogRow> rows_; // in the order of the list's items
    QTreeWidget* ListView1_ = nullptr;
    QLineEdit* txtDate_ = nullptr;
    QLineEdit* txtName_ = nullptr;
    QLineEdit* txtBreakSpeed_ = nullptr;
    QLineEdit* txtEnergy_ = nullptr;
    QLabel* lblMean_ = nullptr;
    QLabel* lblSD_ = nullptr;
    QLabel* lblEnergy_ = nullptr;
    QPushButton* cmdOK_ = nullptr;
};

} // namespace ravelcue::breakspeed
