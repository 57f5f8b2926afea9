#include "DemoStamp.h"

#include <array>

namespace ravelcue::media {

namespace {

// Two rows of 32 blocks: 24 bits of counter, 32 of clock, 8 of check, least significant first.
constexpr int kColumns = 32;
constexpr int kRows = 2;
constexpr int kBits = kColumns * kRows;

struct Cell {
    int width = 0;
    int height = 0;
};

Cell cellFor(QSize size) {
    const int width = size.width() / kColumns;
    // Square blocks, but never more than a sixth of the picture's height for the whole band.
    const int height = std::min(width, size.height() / (kRows * 6));
    return {width, height};
}

std::uint8_t crc8(const std::array<std::uint8_t, 7>& bytes) {
    std::uint8_t crc = 0;
    for (std::uint8_t byte : bytes) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit) {
            crc = static_cast<std::uint8_t>((crc & 0x80) ? (crc << 1) ^ 0x07 : crc << 1);
        }
    }
    return crc;
}

std::array<std::uint8_t, 7> payload(std::uint32_t counter, std::uint32_t clockMs) {
    return {static_cast<std::uint8_t>(counter),       static_cast<std::uint8_t>(counter >> 8),
            static_cast<std::uint8_t>(counter >> 16), static_cast<std::uint8_t>(clockMs),
            static_cast<std::uint8_t>(clockMs >> 8),  static_cast<std::uint8_t>(clockMs >> 16),
            static_cast<std::uint8_t>(clockMs >> 24)};
}

std::uint64_t bitsOf(std::uint32_t counter, std::uint32_t clockMs) {
    const auto bytes = payload(counter, clockMs);
    std::uint64_t bits = 0;
    for (size_t i = 0; i < bytes.size(); ++i) {
        bits |= std::uint64_t(bytes[i]) << (8 * i);
    }
    return bits | (std::uint64_t(crc8(bytes)) << 56);
}

} // namespace

int demoStampBandHeight(QSize pictureSize) {
    return cellFor(pictureSize).height * kRows;
}

void drawDemoStampBand(QImage& picture, std::uint32_t frameCounter, std::uint32_t clockMs) {
    const Cell cell = cellFor(picture.size());
    if (cell.width < 1 || cell.height < 1) {
        return;
    }
    const std::uint64_t bits = bitsOf(frameCounter & 0xFFFFFF, clockMs);
    for (int k = 0; k < kBits; ++k) {
        const QRgb colour = (bits >> k) & 1 ? qRgb(255, 255, 255) : qRgb(0, 0, 0);
        const int x0 = (k % kColumns) * cell.width;
        const int y0 = (k / kColumns) * cell.height;
        for (int y = y0; y < y0 + cell.height; ++y) {
            auto* row = reinterpret_cast<QRgb*>(picture.scanLine(y));
            std::fill(row + x0, row + x0 + cell.width, colour);
        }
    }
}

DemoStamp readDemoStamp(const QImage& source) {
    const Cell cell = cellFor(source.size());
    if (cell.width < 2 || cell.height < 2) {
        return {};
    }
    const QImage picture = source.format() == QImage::Format_RGB32
                               ? source
                               : source.convertToFormat(QImage::Format_RGB32);
    std::uint64_t bits = 0;
    for (int k = 0; k < kBits; ++k) {
        // The middle half of each block: its edges bleed into the neighbours after compression.
        const int x0 = (k % kColumns) * cell.width + cell.width / 4;
        const int y0 = (k / kColumns) * cell.height + cell.height / 4;
        const int x1 = std::max(x0 + 1, (k % kColumns) * cell.width + 3 * cell.width / 4);
        const int y1 = std::max(y0 + 1, (k / kColumns) * cell.height + 3 * cell.height / 4);
        long sum = 0;
        for (int y = y0; y < y1; ++y) {
            const auto* row = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
            for (int x = x0; x < x1; ++x) {
                sum += qGray(row[x]);
            }
        }
        if (sum > 128L * (x1 - x0) * (y1 - y0)) {
            bits |= std::uint64_t(1) << k;
        }
    }
    DemoStamp stamp;
    stamp.frameCounter = static_cast<std::uint32_t>(bits & 0xFFFFFF);
    stamp.clockMs = static_cast<std::uint32_t>(bits >> 24);
    stamp.valid = bitsOf(stamp.frameCounter, stamp.clockMs) == bits;
    return stamp;
}

} // namespace ravelcue::media
