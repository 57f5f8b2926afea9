// Opens one of the utilities' windows on sample data, for a look or a screenshot:
//   utilities_preview delete|update|help|about

#include "LocalHttpServer.h"
#include "core/AppState.h"
#include "platform/ui/Clock.h"
#include "platform/ui/HelpWindow.h"
#include "platform/ui/QtPrompts.h"
#include "platform/ui/StatusPopup.h"
#include "support/RecordingDesktop.h"
#include "support/TempFolder.h"
#include "utilities/AboutDialog.h"
#include "utilities/FileDeleteDialog.h"
#include "utilities/UpdateCheck.h"

#include <cstdio>

#include <QApplication>
#include <QCursor>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTreeWidget>

namespace {

using namespace ravelcue;

void sampleFile(const QString& path, qint64 bytes, int daysAgo) {
    QFile file(path);
    if (file.open(QIODevice::ReadWrite)) {
        file.resize(bytes);
        const QDateTime when =
            QDateTime::currentDateTime().addDays(-daysAgo).addSecs(-daysAgo * 977);
        file.setFileTime(when, QFileDevice::FileModificationTime);
    }
}

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    // Keep the pointer out of the picture.
    QCursor::setPos(2, 2);
    const QString what = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString();
    test::TempFolder data;
    ui::Clock clock;
    ui::StatusPopup popup(clock);
    ui::QtPrompts prompts;
    ui::HelpWindow help;
    test::RecordingDesktop desktop;

    if (what == QLatin1String("delete")) {
        const QDir videos(data.folder(QStringLiteral("Videos")));
        const QDir images(data.folder(QStringLiteral("Images")));
        sampleFile(videos.filePath(QStringLiteral("Break drill(Cam1).avi")), 48213000, 3);
        sampleFile(videos.filePath(QStringLiteral("Break drill(Cam2).avi")), 47890500, 3);
        sampleFile(videos.filePath(QStringLiteral("Stop shot+.avi")), 12400800, 1);
        sampleFile(videos.filePath(QStringLiteral("Notes.txt")), 420, 9);
        sampleFile(images.filePath(QStringLiteral("Stance 20240305.jpg")), 184300, 5);
        sampleFile(images.filePath(QStringLiteral("Grip(Cam1) 1.jpg")), 96700, 2);
        auto* dialog = new utilities::FileDeleteDialog(
            data.path(), [](std::string_view) {}, prompts, help);
        dialog->lvVideoFiles()->topLevelItem(0)->setCheckState(0, Qt::Checked);
        dialog->show();
    } else if (what == QLatin1String("update")) {
        static test::LocalHttpServer server(
            "1.1.0&&&Version 1.1.0\n- Break speed log keeps the unit of every entry.\n"
            "- Delete Files sorts by date.\n- Faster opening of file Sets.");
        auto* check = new utilities::UpdateCheck({server.downloadUrl(), QStringLiteral("1.0.0")},
                                                 prompts, popup, help, desktop);
        check->CheckUpdate(true);
    } else if (what == QLatin1String("help")) {
        help.showTopic(argc > 2 ? QString::fromLocal8Bit(argv[2]).toInt() : 20);
        help.window()->move(330, 190);
    } else if (what == QLatin1String("about")) {
        auto* about = new utilities::AboutDialog(
            {QStringLiteral("Ravelcue"), QStringLiteral("1.0.0"),
             QStringLiteral("/usr/lib/ravelcue"),
             QDir::homePath() + QStringLiteral("/.local/share/Ravelcue"),
             QStringLiteral("https://www.ravelcue.com/"), QStringLiteral("support@ravelcue.com")},
            desktop);
        about->show();
    } else {
        std::fprintf(stderr, "usage: utilities_preview delete|update|help [topic]|about\n");
        return 2;
    }
    return QApplication::exec();
}
