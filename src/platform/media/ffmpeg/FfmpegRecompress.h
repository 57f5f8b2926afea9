#pragma once

#include "../OverlayLayer.h"
#include "../RecompressInstance.h"

#include <atomic>
#include <thread>

namespace ravelcue::media::ffmpeg {

// Re-encodes on a thread of its own with a copy of the overlays as they stood when the job was
// started; later changes wait for the next job.
class FfmpegRecompress final : public RecompressInstance {
    Q_OBJECT
public:
    explicit FfmpegRecompress(int index, QObject* parent = nullptr);
    ~FfmpegRecompress() override; // cancels a running job and waits for it

    void SetBitmapOverlay(const QImage& overlay) override;
    void SetTextOverlay(int slot, const QString& text, int x, int y, const QString& font,
                        int pointSize, QColor color) override;
    bool Recompress(const QString& source, const QString& destination, double startMs,
                    double endMs) override;
    void Cancel() override;
    bool IsBusy() const override { return busy_; }

private:
    OverlayLayer overlay_;
    std::atomic<bool> cancelled_{false};
    bool busy_ = false;
    std::jthread job_;
};

} // namespace ravelcue::media::ffmpeg
