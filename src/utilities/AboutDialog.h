#pragma once

#include <QDialog>
#include <QString>

namespace ravelcue::ui {
class Desktop;
}

namespace ravelcue::utilities {

struct AboutFacts {
    QString title;   // the program's title
    QString version; // major.minor.revision
    QString programFolder;
    QString dataFolder; // AppDataDir
    QString webAddress;
    QString contactMail;
};

// frmAbout: the program's picture, title and version, links that open the program's folder and
// the data folder in the file manager, the web address in the browser and the contact address in
// the mail program, and a short legal notice. Modal; OK closes it.
class AboutDialog final : public QDialog {
    Q_OBJECT
public:
    AboutDialog(const AboutFacts& facts, ui::Desktop& desktop, QWidget* parent = nullptr);
};

} // namespace ravelcue::utilities
