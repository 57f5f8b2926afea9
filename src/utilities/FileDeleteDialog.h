#pragma once

#include "FileDeleteLayout.h"

#include <functional>
#include <string_view>

#include <QDialog>
#include <QString>

class QCheckBox;
class QLabel;
class QPushButton;
class QTreeWidget;

namespace ravelcue::ui {
class HelpWindow;
class Prompts;
} // namespace ravelcue::ui

namespace ravelcue::utilities {

// frmFileDelete: the files of the data folder's Videos and Images side by side, each list with a
// tick box in every row; the ticked files are deleted for good when the user presses "Delete
// Selected Files", and never before. OK, Cancel and the title bar's close all go back to "Live".
// UI thread only.
class FileDeleteDialog final : public QDialog {
    Q_OBJECT
public:
    // state switches the main window's mode (State); dataFolder is AppDataDir.
    FileDeleteDialog(const QString& dataFolder, std::function<void(std::string_view)> state,
                     ui::Prompts& prompts, ui::HelpWindow& help, QWidget* parent = nullptr);

    QTreeWidget* lvVideoFiles() const { return lvVideoFiles_; }
    QTreeWidget* lvImageFiles() const { return lvImageFiles_; }

    void done(int result) override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    struct Side {
        QTreeWidget* list = nullptr;
        QLabel* heading = nullptr;
        QString folder;
        QString headingWord;
    };

    QTreeWidget* makeList(const QString& name, const QString& sizeHeading);
    void fillList(const Side& side);
    void tickAll(QTreeWidget* list, bool& memory);
    // Deletes the ticked files of one side from its last row to its first; false when a file could
    // not be deleted, which has been said.
    bool deleteTicked(const Side& side);
    void cmdDelete_Click();
    void applyLayout();

    std::function<void(std::string_view)> state_;
    ui::Prompts& prompts_;
    Side videos_;
    Side images_;
    // What each select-all box did last: true once it ticked every row.
    bool allVideosTicked_ = false;
    bool allImagesTicked_ = false;
    FileDeleteLayout layout_;
    QTreeWidget* lvVideoFiles_ = nullptr;
    QTreeWidget* lvImageFiles_ = nullptr;
    QLabel* Label1_ = nullptr;
    QCheckBox* chkAllVideos_ = nullptr;
    QCheckBox* chkAllImages_ = nullptr;
    QPushButton* cmdDelete_ = nullptr;
    QPushButton* cmdOK_ = nullptr;
    QPushButton* cmdCancel_ = nullptr;
    QPushButton* cmdHelp_ = nullptr;
};

} // namespace ravelcue::utilities
