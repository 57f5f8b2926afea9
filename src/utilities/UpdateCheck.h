#pragma once

#include <QDialog>
#include <QNetworkReply>
#include <QPointer>
#include <QString>

class QLabel;
class QLineEdit;
class QNetworkAccessManager;
class QPlainTextEdit;
class QPushButton;
class QTimer;

namespace ravelcue::ui {
class Desktop;
class HelpWindow;
class Prompts;
class StatusPopup;
} // namespace ravelcue::ui

namespace ravelcue::utilities {

struct UpdateCheckOptions {
    // The folder holding app.txt and the package RV.zip, ending in "/downloads/".
    QString downloadUrl;
    // This program's version, dotted.
    QString currentVersion;
    // A read that has not ended by then counts as a failed connection.
    int timeoutMs = 10000;
};

// frmUpdateCheck: asks the download location whether a newer version exists. The read runs in
// the background, so the program stays responsive; the window shows what was found and offers the
// package to the browser. UI thread only.
class UpdateCheck final : public QDialog {
    Q_OBJECT
public:
    UpdateCheck(UpdateCheckOptions options, ui::Prompts& prompts, ui::StatusPopup& popup,
                ui::HelpWindow& help, ui::Desktop& desktop, QWidget* parent = nullptr);
    ~UpdateCheck() override;

    // Interactive: shows this window and the "Checking" popup while the read runs. Silent: the
    // window stays hidden (its fields are filled all the same) and a message speaks only when a
    // newer version exists. A check still running is dropped for the new one.
    void CheckUpdate(bool interactive);
    bool checking() const { return reply_ != nullptr; }

    // The package to fetch, or "none".
    const QString& DLWhat() const { return dlWhat_; }

    QLineEdit* txtCurrentVersion() const { return txtCurrentVersion_; }
    QLineEdit* txtAvailableUpdate() const { return txtAvailableUpdate_; }
    QPlainTextEdit* txtInformation() const { return txtInformation_; }
    QPushButton* cmdDownLoad() const { return cmdDownLoad_; }

signals:
    // A check has ended, with an answer or without one.
    void checkFinished();

private:
    void readFinished();
    void cmdDownLoad_Click();
    void dropRead();

    UpdateCheckOptions options_;
    ui::Prompts& prompts_;
    ui::StatusPopup& popup_;
    ui::Desktop& desktop_;
    QNetworkAccessManager* network_ = nullptr;
    QPointer<QNetworkReply> reply_;
    QTimer* giveUp_ = nullptr;
    bool interactive_ = false;
    QString dlWhat_ = QStringLiteral("none");
    QLineEdit* txtCurrentVersion_ = nullptr;
    QLineEdit* txtAvailableUpdate_ = nullptr;
    QPlainTextEdit* txtInformation_ = nullptr;
    QPushButton* cmdDownLoad_ = nullptr;
};

} // namespace ravelcue::utilities
