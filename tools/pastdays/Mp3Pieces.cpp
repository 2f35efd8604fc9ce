#include "pastdays/Mp3Pieces.h"

#include <cmath>

#include "platform/MappedFile.h"
#include "platform/Mp3Header.h"
#include "recorder/LAMEEncoder.h"
#include "recorder/SVQualityLevel.h"

namespace sonavault::pastdays {
namespace {

constexpr double kFrameSec = 0.036;

class Mp3PieceEncoder final : public PieceEncoder {
  public:
    Mp3PieceEncoder(std::unique_ptr<LAMEEncoder> encoder, std::filesystem::path file,
                    DiskFlusher& flusher)
        : encoder_(std::move(encoder)), file_(std::move(file)), flusher_(flusher) {}

    Result<EncodedSound> encode(const Samples& samples) override {
        if (const auto opened = encoder_->open(file_, flusher_); !opened)
            return Result<EncodedSound>::failure(opened.error());
        encoder_->encodeMono(samples);
        encoder_->close();
        const auto mapped = MappedFile::open(file_);
        if (!mapped) return Result<EncodedSound>::failure(mapped.error());
        return framesOf(mapped.value().bytes());
    }

  private:
    std::unique_ptr<LAMEEncoder> encoder_;
    const std::filesystem::path file_;
    DiskFlusher& flusher_;
};

}  // namespace

int Mp3Pieces::bitrateKbps() {
    return SVQualityLevel(SVQualityLevel::kDefault).bitrateKbps();
}

Result<std::unique_ptr<PieceEncoder>> Mp3Pieces::makeEncoder() {
    using Made = Result<std::unique_ptr<PieceEncoder>>;
    auto encoder = LAMEEncoder::create(kSampleRate, 1, bitrateKbps(), log_);
    if (!encoder) return Made::failure("The MP3 encoder refuses the recorder's settings");
    const auto file = scratch_ / ("piece-" + std::to_string(made_++) + ".mp3");
    return std::unique_ptr<PieceEncoder>(
        std::make_unique<Mp3PieceEncoder>(std::move(encoder), file, flusher_));
}

Result<EncodedSound> framesOf(std::span<const std::uint8_t> stream) {
    EncodedSound sound;
    while (!stream.empty()) {
        const auto header = parseMp3Header(stream);
        if (!header || static_cast<std::size_t>(header->frameBytes) > stream.size() ||
            std::abs(header->durationSec() - kFrameSec) > 1e-9)
            return Result<EncodedSound>::failure("The MP3 encoder gave frames of another kind");
        const auto bytes = static_cast<std::size_t>(header->frameBytes);
        sound.append(stream.first(bytes));
        stream = stream.subspan(bytes);
    }
    return sound;
}

}  // namespace sonavault::pastdays
