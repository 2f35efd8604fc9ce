#pragma once

#include <filesystem>
#include <vector>

#include "pastdays/PieceEncoder.h"
#include "platform/DiskFlusher.h"
#include "platform/Log.h"

namespace sonavault::pastdays {

/// The recorder's own encoder, as it works at the level that a station has unless it chooses.
class Mp3Pieces final : public SoundFormat {
  public:
    /// `scratch`: a folder for what is between the encoder and the pieces; it must be there as long
    /// as the encoders are. All outlive the encoders.
    Mp3Pieces(std::filesystem::path scratch, DiskFlusher& flusher, Log& log)
        : scratch_(std::move(scratch)), flusher_(flusher), log_(log) {}

    static int bitrateKbps();

    /// 36 ms: at this bitrate the encoder's library brings the rate down to 16,000 Hz.
    double frameSec() const override { return 0.036; }
    Result<std::unique_ptr<PieceEncoder>> makeEncoder() override;

  private:
    const std::filesystem::path scratch_;
    DiskFlusher& flusher_;
    Log& log_;
    int made_ = 0;
};

/// The frames of an MPEG stream without anything between them. Errors: words, where it has
/// something else, or frames of another length than 36 ms.
Result<EncodedSound> framesOf(std::span<const std::uint8_t> stream);

}  // namespace sonavault::pastdays
