#include "SaveWithMarkups.h"

#include "MarkerStore.h"
#include "core/AppSettings.h"
#include "core/AppState.h"
#include "core/FileSetNames.h"
#include "platform/media/MediaInstances.h"
#include "platform/ui/Controls.h"
#include "platform/ui/Prompts.h"
#include "platform/ui/WindowContext.h"

#include <QDialog>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace ravelcue::markups {

namespace {

QString qtext(const std::string& text) {
    return QString::fromStdString(text);
}

QDialog* makePopup(QWidget* owner, media::RecompressInstance& recompress) {
    auto* popup = new QDialog(owner, Qt::Tool);
    popup->setObjectName(QStringLiteral("frmSaveProgress"));
    popup->setWindowTitle(QStringLiteral("Status"));
    popup->setAttribute(Qt::WA_DeleteOnClose);
    auto* layout = new QVBoxLayout(popup);
    layout->addWidget(
        ui::makeDialogLabel(popup, QStringLiteral("lblText"),
                            QStringLiteral("Saving video with markups. Please standby...")));
    auto* bar = new QProgressBar(popup);
    bar->setObjectName(QStringLiteral("ProgressBar1"));
    bar->setRange(0, 100);
    bar->setValue(0);
    layout->addWidget(bar);
    QPushButton* cancel =
        ui::makeDialogButton(popup, QStringLiteral("cmdCancel"), QStringLiteral("Cancel"));
    layout->addWidget(cancel, 0, Qt::AlignRight);
    QObject::connect(&recompress, &media::RecompressInstance::progress, bar,
                     &QProgressBar::setValue);
    QObject::connect(cancel, &QPushButton::clicked, &recompress, [&recompress, cancel] {
        cancel->setEnabled(false);
        recompress.Cancel();
    });
    // Closing the window by its frame is a Cancel too.
    QObject::connect(popup, &QDialog::rejected, &recompress, [&recompress] {
        if (recompress.IsBusy()) {
            recompress.Cancel();
        }
    });
    return popup;
}

} // namespace

SaveWithMarkups::SaveWithMarkups(ui::WindowContext& context, MarkerStore& markers,
                                 RegionSpan region, QWidget* owner, QObject* parent)
    : QObject(parent)
    , context_(context)
    , markers_(markers)
    , region_(std::move(region))
    , owner_(owner) {
    for (int i = 0; i < kCameraCount; ++i) {
        connect(context_.media.recompress.at(static_cast<size_t>(i)).get(),
                &media::RecompressInstance::finished, this,
                [this, i](int, media::MediaError error) { finished(i, error); });
    }
}

void SaveWithMarkups::mnuSaveVideo_Click() {
    const AppState& state = context_.state;
    const int player = state.SelectedPlayer;
    const auto k = static_cast<size_t>(player);
    const std::string source =
        names::savedVideoSource(state.CurrentVideoFile, context_.settings.CamNickname[k]);
    const std::string destination = names::savedVideoDestination(source);
    const auto [start, end] = region_ ? region_() : std::pair<double, double>{0.0, 0.0};

    media::RecompressInstance& recompress = *context_.media.recompress[k];
    markers_.handLayerToRecompress(player);
    if (!recompress.Recompress(qtext(source), qtext(destination), start, end)) {
        context_.prompts.message(
            QStringLiteral("This video is still being saved. Please wait until it is done."),
            ui::MessageIcon::Exclamation);
        return;
    }
    QDialog* popup = makePopup(owner_, recompress);
    popups_[k] = popup;
    popup->show();
}

void SaveWithMarkups::finished(int player, const media::MediaError& error) {
    if (QDialog* popup = popups_.at(static_cast<size_t>(player))) {
        popups_[static_cast<size_t>(player)] = nullptr;
        popup->blockSignals(true);
        popup->close();
    }
    if (error.ok() || error.number == media::media_error::Cancelled) {
        return;
    }
    context_.prompts.message(QStringLiteral("The video with markups could not be saved: %1")
                                 .arg(error.text.isEmpty()
                                          ? QStringLiteral("Error - %1").arg(error.number)
                                          : error.text),
                             ui::MessageIcon::Critical);
}

} // namespace ravelcue::markups
