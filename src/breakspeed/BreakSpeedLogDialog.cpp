#include "BreakSpeedLogDialog.h"

#include "platform/ui/Controls.h"
#include "platform/ui/Prompts.h"

#include <QDate>
#include <QFrame>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QStringList>
#include <QTreeWidget>

namespace ravelcue::breakspeed {

namespace {

std::string utf8(const QLineEdit* field) {
    return LogField(field->text().toStdString());
}

QLineEdit* fieldUnder(QWidget* parent, const QString& name, const QString& labelName,
                      const QString& caption, const QString& toolTip, const QRect& box) {
    ui::makeLabel(parent, labelName, caption, QRect(box.left(), box.top() - 20, box.width(), 18));
    return ui::makeTextBox(parent, name, toolTip, box);
}

QLabel* figure(QWidget* parent, const QString& name, const QString& labelName,
               const QString& caption, const QString& toolTip, int left) {
    ui::makeLabel(parent, labelName, caption, QRect(left, 404, 64, 22));
    QLabel* value = ui::makeLabel(parent, name, QString(), QRect(left + 66, 404, 90, 22));
    value->setToolTip(toolTip);
    value->setFrameStyle(QFrame::Panel | QFrame::Sunken);
    return value;
}

} // namespace

BreakSpeedLogDialog::BreakSpeedLogDialog(QWidget* parent, QString logPath, const QString& speed,
                                         const QString& energy, ui::Prompts& prompts)
    : QDialog(parent)
    , logPath_(std::move(logPath))
    , prompts_(prompts) {
    setObjectName(QStringLiteral("frmBreakSpeedLog"));
    setWindowTitle(QStringLiteral("Break Speed Log"));
    setAttribute(Qt::WA_DeleteOnClose);
    setFixedSize(800, 480);

    ui::makeLabel(this, QStringLiteral("Label4"), QStringLiteral("Break Speed Log"),
                  QRect(8, 6, 300, 20));
    ListView1_ = new QTreeWidget(this);
    ListView1_->setObjectName(QStringLiteral("ListView1"));
    ListView1_->setGeometry(8, 28, 784, 240);
    ListView1_->setRootIsDecorated(false);
    ListView1_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    ListView1_->setHeaderLabels({QStringLiteral("Date"), QStringLiteral("Name"),
                                 QStringLiteral("Break Speed"), QStringLiteral("Energy")});
    // 2117, 4940, 2205 and 2205 twips.
    for (const auto& [column, width] : {std::pair{0, 141}, {1, 329}, {2, 147}, {3, 147}}) {
        ListView1_->setColumnWidth(column, width);
    }

    txtDate_ =
        fieldUnder(this, QStringLiteral("txtDate"), QStringLiteral("Label3"),
                   QStringLiteral("Date"), QStringLiteral("Date of entry"), QRect(8, 300, 130, 26));
    txtDate_->setReadOnly(true);
    txtName_ = fieldUnder(this, QStringLiteral("txtName"), QStringLiteral("Label1"),
                          QStringLiteral("Name"), QStringLiteral("Name of breaker"),
                          QRect(146, 300, 320, 26));
    txtBreakSpeed_ = fieldUnder(this, QStringLiteral("txtBreakSpeed"), QStringLiteral("Label2"),
                                QStringLiteral("Break Speed"), QStringLiteral("Break Speed"),
                                QRect(474, 300, 150, 26));
    txtEnergy_ =
        fieldUnder(this, QStringLiteral("txtEnergy"), QStringLiteral("Label8"),
                   QStringLiteral("Energy"), QStringLiteral("Energy"), QRect(632, 300, 160, 26));

    auto* cmdAdd = ui::makeButton(this, QStringLiteral("cmdAdd"), QStringLiteral("Add"),
                                  QStringLiteral("Add break speed"), QRect(8, 340, 90, 30));
    auto* cmdDelete =
        ui::makeButton(this, QStringLiteral("cmdDelete"), QStringLiteral("Delete"),
                       QStringLiteral("Delete all selected entries"), QRect(106, 340, 90, 30));
    auto* cmdCalculate = ui::makeButton(
        this, QStringLiteral("cmdCalculate"), QStringLiteral("Calculate"),
        QStringLiteral("Select multiple values for calculation"), QRect(204, 340, 90, 30));
    auto* line = ui::makeFrame(this, QStringLiteral("Line1"), QRect(8, 388, 784, 2));
    line->setFrameStyle(QFrame::HLine | QFrame::Sunken);
    lblMean_ = figure(this, QStringLiteral("lblMean"), QStringLiteral("Label5"),
                      QStringLiteral("Mean:"), QStringLiteral("Mean speed (miles per hour)"), 8);
    lblSD_ = figure(this, QStringLiteral("lblSD"), QStringLiteral("Label6"),
                    QStringLiteral("Std Dev:"), QStringLiteral("Standard Deviation"), 176);
    lblEnergy_ = figure(this, QStringLiteral("lblEnergy"), QStringLiteral("Label9"),
                        QStringLiteral("Energy:"), QStringLiteral("Energy"), 344);

    cmdOK_ = ui::makeButton(this, QStringLiteral("cmdOK"), QStringLiteral("OK"),
                            QStringLiteral("Exit and save"), QRect(506, 440, 90, 30));
    auto* cmdCancel = ui::makeButton(this, QStringLiteral("cmdCancel"), QStringLiteral("Cancel"),
                                     QStringLiteral("Click to cancel"), QRect(604, 440, 90, 30));
    auto* cmdHelp = ui::makeButton(this, QStringLiteral("cmdHelp"), QStringLiteral("Help"),
                                   QStringLiteral("Click for help"), QRect(702, 440, 90, 30));

    connect(cmdAdd, &QPushButton::clicked, this, &BreakSpeedLogDialog::cmdAdd_Click);
    connect(cmdDelete, &QPushButton::clicked, this, &BreakSpeedLogDialog::cmdDelete_Click);
    connect(cmdCalculate, &QPushButton::clicked, this, &BreakSpeedLogDialog::cmdCalculate_Click);
    connect(cmdOK_, &QPushButton::clicked, this, &BreakSpeedLogDialog::cmdOK_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &BreakSpeedLogDialog::cmdCancel_Click);
    connect(cmdHelp, &QPushButton::clicked, this, [this] { emit helpRequested(108); });

    // Form_Load.
    txtDate_->setText(QLocale::system().toString(QDate::currentDate(), QLocale::ShortFormat));
    txtBreakSpeed_->setText(speed);
    txtEnergy_->setText(energy);
    if (const auto rows = ReadLogFile(logPath_.toStdString())) {
        for (const LogRow& row : *rows) {
            addRow(row);
        }
    } else {
        // Saving over a log that couldn't be read would lose it.
        cmdOK_->setEnabled(false);
        prompts_.message(QStringLiteral("The break speed log can't be read, so it can't be "
                                        "saved either:\n") +
                             logPath_,
                         ui::MessageIcon::Exclamation);
    }
}

void BreakSpeedLogDialog::addRow(const LogRow& row) {
    auto* item = new QTreeWidgetItem(ListView1_);
    if (const auto* entry = std::get_if<LogEntry>(&row)) {
        int column = 0;
        for (const std::string* field :
             {&entry->date, &entry->name, &entry->speed, &entry->energy}) {
            item->setText(column++, QString::fromStdString(*field));
        }
    } else {
        // Shown as it stands in the file, and kept there.
        item->setText(0, QString::fromStdString(std::get<UnreadableLine>(row).text));
        item->setFirstColumnSpanned(true);
        item->setForeground(0, QBrush(Qt::gray));
        item->setToolTip(0,
                         QStringLiteral("This line can't be read; it stays in the log as it is"));
    }
    rows_.push_back(row);
}

void BreakSpeedLogDialog::cmdAdd_Click() {
    addRow(LogEntry{utf8(txtDate_), utf8(txtName_), utf8(txtBreakSpeed_), utf8(txtEnergy_)});
    txtName_->clear();
    txtBreakSpeed_->clear();
    txtEnergy_->clear();
}

void BreakSpeedLogDialog::cmdDelete_Click() {
    for (int i = ListView1_->topLevelItemCount() - 1; i >= 0; --i) {
        if (ListView1_->topLevelItem(i)->isSelected()) {
            delete ListView1_->takeTopLevelItem(i);
            rows_.erase(rows_.begin() + i);
        }
    }
}

void BreakSpeedLogDialog::cmdCalculate_Click() {
    std::vector<std::string> speeds; // in list order; the statistics visit them from the last
    std::vector<int> rowNumbers;     // of each speed, counted from 1 as the list shows them
    for (int i = 0; i < ListView1_->topLevelItemCount(); ++i) {
        if (ListView1_->topLevelItem(i)->isSelected()) {
            const auto* entry = std::get_if<LogEntry>(&rows_[static_cast<size_t>(i)]);
            speeds.push_back(entry != nullptr ? entry->speed : std::string());
            rowNumbers.push_back(i + 1);
        }
    }
    // The rows whose speed is no number, as "3, 5".
    QStringList unreadable;
    for (const std::size_t at : UnreadableSpeeds(speeds)) {
        unreadable << QString::number(rowNumbers[at]);
    }
    const std::optional<LogStatistics> statistics = BreakSpeedStatistics(speeds);
    if (!statistics) {
        QString text = QStringLiteral("You must select 2 or more breakspeeds for calculations "
                                      "to be performed.");
        if (speeds.size() >= 2) {
            text += QStringLiteral("\nThe break speed of these selected rows is not a number: ") +
                    unreadable.join(QStringLiteral(", "));
        }
        prompts_.message(text, ui::MessageIcon::Information);
        return;
    }
    const StatisticsTexts texts = FormatStatistics(*statistics);
    lblMean_->setText(QString::fromStdString(texts.mean));
    lblSD_->setText(QString::fromStdString(texts.sd));
    lblEnergy_->setText(QString::fromStdString(texts.energy));
    if (!unreadable.isEmpty()) {
        prompts_.message(QStringLiteral("The break speed of these selected rows is not a number "
                                        "and is left out of the figures: ") +
                             unreadable.join(QStringLiteral(", ")),
                         ui::MessageIcon::Information);
    }
}

void BreakSpeedLogDialog::cmdOK_Click() {
    if (!txtName_->text().isEmpty() && !txtBreakSpeed_->text().isEmpty()) {
        cmdAdd_Click();
    }
    if (!SaveLogFile(logPath_.toStdString(), rows_)) {
        prompts_.message(QStringLiteral("The break speed log could not be saved. It is as it was "
                                        "before; the list here is kept.\n") +
                             logPath_,
                         ui::MessageIcon::Exclamation);
        return;
    }
    close();
}

void BreakSpeedLogDialog::cmdCancel_Click() {
    close();
}

} // namespace ravelcue::breakspeed
