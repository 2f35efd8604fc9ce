#pragma once

#include <filesystem>
#include <vector>

#include "pastdays/DayPlan.h"
#include "pastdays/PieceEncoder.h"

namespace sonavault::pastdays {

/// The compression of the days of earlier versions, whose files are containers with a table.
class AacPieces final : public SoundFormat {
  public:
    /// Each packet holds so many samples.
    static constexpr int kSamplesPerPacket = 1024;

    double frameSec() const override {
        return static_cast<double>(kSamplesPerPacket) / kSampleRate;
    }

    /// Errors: also where this system's library has no such encoder.
    Result<std::unique_ptr<PieceEncoder>> makeEncoder() override;
};

/// Puts the planned pieces into an .m4a, which gets its name when it is complete. Errors: words.
Outcome writeM4a(const std::filesystem::path& file, const DayPlan& plan,
                 const std::vector<Piece>& pieces);

}  // namespace sonavault::pastdays
