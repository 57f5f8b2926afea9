#include "FileDeleteDialog.h"

#include "FileListing.h"
#include "ListViewSort.h"
#include "core/Rounding.h"
#include "core/Twips.h"
#include "platform/ui/Controls.h"
#include "platform/ui/HelpWindow.h"
#include "platform/ui/Prompts.h"

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QHeaderView>
#include <QKeySequence>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QTreeWidget>

namespace ravelcue::utilities {

namespace {

constexpr int kHelpTopic = 20;

QCheckBox* selectAllBox(QWidget* parent, const QString& name) {
    auto* box = new QCheckBox(QStringLiteral("Select/Deselect All"), parent);
    box->setObjectName(name);
    return box;
}

TwipsScale scaleOf(const QWidget& widget) {
    TwipsScale scale;
    if (const QScreen* display = widget.screen()) {
        scale.dotsPerInchX = display->logicalDotsPerInchX();
        scale.dotsPerInchY = display->logicalDotsPerInchY();
    }
    return scale;
}

void place(QWidget* widget, const TwipsRect& rect, const TwipsScale& scale) {
    widget->setGeometry(
        roundToInt(scale.toPixelsX(rect.left)), roundToInt(scale.toPixelsY(rect.top)),
        roundToInt(scale.toPixelsX(rect.width)), roundToInt(scale.toPixelsY(rect.height)));
}

} // namespace

FileDeleteDialog::FileDeleteDialog(const QString& dataFolder,
                                   std::function<void(std::string_view)> state,
                                   ui::Prompts& prompts, ui::HelpWindow& help, QWidget* parent)
    : QDialog(parent)
    , state_(std::move(state))
    , prompts_(prompts)
    , layout_(fileDeleteDesign()) {
    setObjectName(QStringLiteral("frmFileDelete"));
    setWindowTitle(QStringLiteral("File Delete"));
    setSizeGripEnabled(true);

    Label1_ = ui::makeDialogLabel(this, QStringLiteral("Label1"),
                                  QStringLiteral("Check the files to be deleted"));
    Label1_->setAlignment(Qt::AlignCenter);
    QFont headingFont = Label1_->font();
    headingFont.setBold(true);
    Label1_->setFont(headingFont);
    QLabel* label2 = ui::makeDialogLabel(this, QStringLiteral("Label2"), QString());
    QLabel* label3 = ui::makeDialogLabel(this, QStringLiteral("Label3"), QString());
    lvVideoFiles_ = makeList(QStringLiteral("lvVideoFiles"), QStringLiteral("SIze"));
    lvImageFiles_ = makeList(QStringLiteral("lvImageFiles"), QStringLiteral("Size"));
    chkAllVideos_ = selectAllBox(this, QStringLiteral("chkAllVideos"));
    chkAllImages_ = selectAllBox(this, QStringLiteral("chkAllImages"));
    cmdDelete_ = ui::makeDialogButton(this, QStringLiteral("cmdDelete"),
                                      QStringLiteral("Delete Selected Files"));
    cmdOK_ = ui::makeDialogButton(this, QStringLiteral("cmdOK"), QStringLiteral("OK"));
    cmdOK_->setDefault(true);
    cmdCancel_ = ui::makeDialogButton(this, QStringLiteral("cmdCancel"), QStringLiteral("Cancel"),
                                      QStringLiteral("Click to cancel"));
    cmdHelp_ = ui::makeDialogButton(this, QStringLiteral("cmdHelp"), QStringLiteral("Help"),
                                    QStringLiteral("Click for help"));

    const QDir dataDir(dataFolder);
    videos_ = {lvVideoFiles_, label2, dataDir.filePath(QStringLiteral("Videos")),
               QStringLiteral(" Video Files")};
    images_ = {lvImageFiles_, label3, dataDir.filePath(QStringLiteral("Images")),
               QStringLiteral(" Image Files")};
    fillList(videos_);
    fillList(images_);

    connect(chkAllVideos_, &QCheckBox::clicked, this,
            [this] { tickAll(lvVideoFiles_, allVideosTicked_); });
    connect(chkAllImages_, &QCheckBox::clicked, this,
            [this] { tickAll(lvImageFiles_, allImagesTicked_); });
    connect(cmdDelete_, &QPushButton::clicked, this, &FileDeleteDialog::cmdDelete_Click);
    connect(cmdOK_, &QPushButton::clicked, this, &QDialog::accept);
    connect(cmdCancel_, &QPushButton::clicked, this, &QDialog::reject);
    const auto showHelp = [&help] { help.showTopic(kHelpTopic); };
    connect(cmdHelp_, &QPushButton::clicked, this, showHelp);
    connect(new QShortcut(QKeySequence::HelpContents, this), &QShortcut::activated, this, showHelp);

    const TwipsScale scale = scaleOf(*this);
    resize(roundToInt(scale.toPixelsX(kDesignWidthTwips - kFrameWidthTwips)),
           roundToInt(scale.toPixelsY(kDesignHeightTwips - kFrameHeightTwips)));
    applyLayout();
}

QTreeWidget* FileDeleteDialog::makeList(const QString& name, const QString& sizeHeading) {
    auto* list = new QTreeWidget(this);
    list->setObjectName(name);
    list->setRootIsDecorated(false);
    list->setUniformRowHeights(true);
    list->setAllColumnsShowFocus(true);
    list->setSortingEnabled(false);
    list->setHeaderLabels({QStringLiteral("File Name"), sizeHeading, QStringLiteral("Date")});
    QTreeWidgetItem* header = list->headerItem();
    header->setData(0, kTagRole, QStringLiteral("STRING"));
    header->setData(1, kTagRole, QStringLiteral("STRING"));
    header->setData(2, kTagRole, QStringLiteral("DATE"));
    list->header()->setStretchLastSection(false);
    list->header()->setSectionsClickable(true);
    connect(list->header(), &QHeaderView::sectionClicked, list,
            [list](int column) { SortListView(*list, column); });
    const TwipsScale scale = scaleOf(*this);
    const std::array<double, 3>& widths = layout_.videoColumns;
    for (int c = 0; c < 3; ++c) {
        list->setColumnWidth(c, roundToInt(scale.toPixelsX(widths[static_cast<size_t>(c)])));
    }
    return list;
}

void FileDeleteDialog::fillList(const Side& side) {
    const QStringList names = ListFolderFiles(side.folder);
    side.heading->setText(QString::number(names.size()) + side.headingWord);
    side.list->clear();
    const QDir folder(side.folder);
    for (const QString& name : names) {
        const QString path = folder.filePath(name);
        auto* row = new ListRow(side.list);
        row->setText(0, name);
        row->setText(1, sizeText(FileProperty(path, QStringLiteral("Size")).toDouble()));
        row->setText(2, FileProperty(path, QStringLiteral("DateLastModified")));
        row->setFlags(row->flags() | Qt::ItemIsUserCheckable);
        row->setCheckState(0, Qt::Unchecked);
    }
}

void FileDeleteDialog::tickAll(QTreeWidget* list, bool& memory) {
    // The memory alone decides: the box's own mark and the rows' ticks play no part.
    const Qt::CheckState tick = memory ? Qt::Unchecked : Qt::Checked;
    for (int i = 0; i < list->topLevelItemCount(); ++i) {
        list->topLevelItem(i)->setCheckState(0, tick);
    }
    memory = !memory;
}

bool FileDeleteDialog::deleteTicked(const Side& side) {
    std::vector<bool> ticked;
    for (int i = 0; i < side.list->topLevelItemCount(); ++i) {
        ticked.push_back(side.list->topLevelItem(i)->checkState(0) == Qt::Checked);
    }
    const QDir folder(side.folder);
    for (const int row : deletionOrder(ticked)) {
        if (!QFile::remove(folder.filePath(side.list->topLevelItem(row)->text(0)))) {
            prompts_.message(QStringLiteral("Error while deleting file"),
                             ui::MessageIcon::Exclamation);
            return false;
        }
        delete side.list->takeTopLevelItem(row);
    }
    return true;
}

void FileDeleteDialog::cmdDelete_Click() {
    for (const Side* side : {&videos_, &images_}) {
        if (!deleteTicked(*side)) {
            return;
        }
        side->heading->setText(QString::number(ListFolderFiles(side->folder).size()) +
                               side->headingWord);
    }
}

void FileDeleteDialog::done(int result) {
    state_("Live");
    QDialog::done(result);
}

void FileDeleteDialog::resizeEvent(QResizeEvent* event) {
    QDialog::resizeEvent(event);
    applyLayout();
}

void FileDeleteDialog::applyLayout() {
    const TwipsScale scale = scaleOf(*this);
    // The user may have widened the size or date column; the name column takes what they leave.
    for (int c = 1; c < 3; ++c) {
        const auto k = static_cast<size_t>(c);
        layout_.videoColumns[k] = scale.toTwipsX(lvVideoFiles_->columnWidth(c));
        layout_.imageColumns[k] = scale.toTwipsX(lvImageFiles_->columnWidth(c));
    }
    layout_ = resizeFileDelete(layout_, scale.toTwipsX(width()) + kFrameWidthTwips,
                               scale.toTwipsY(height()) + kFrameHeightTwips);
    place(Label1_, layout_.Label1, scale);
    place(videos_.heading, layout_.Label2, scale);
    place(images_.heading, layout_.Label3, scale);
    place(lvVideoFiles_, layout_.lvVideoFiles, scale);
    place(lvImageFiles_, layout_.lvImageFiles, scale);
    place(chkAllVideos_, layout_.chkAllVideos, scale);
    place(chkAllImages_, layout_.chkAllImages, scale);
    place(cmdDelete_, layout_.cmdDelete, scale);
    place(cmdOK_, layout_.cmdOK, scale);
    place(cmdCancel_, layout_.cmdCancel, scale);
    place(cmdHelp_, layout_.cmdHelp, scale);
    lvVideoFiles_->setColumnWidth(0, roundToInt(scale.toPixelsX(layout_.videoColumns[0])));
    lvImageFiles_->setColumnWidth(0, roundToInt(scale.toPixelsX(layout_.imageColumns[0])));
}

} // namespace ravelcue::utilities
