#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "OwnFolder.h"

namespace sonavault {

// A full day at 24 kbps, of frames as the encoder makes them there: 576 samples at 16,000 Hz.
inline constexpr std::int64_t kFrameBytes = 108;
inline constexpr std::int64_t kFramesOfADay = 2'400'000;
inline constexpr int kSamplesOfAFrame = 576;
inline constexpr int kRateOfADay = 16000;

/// A full day of right headers with no sound behind them, in the file cache. It was appended in
/// small pieces, as a recording is; the system keeps such a file in smaller pages than one written
/// at once.
class FullDay {
  public:
    FullDay() {
        constexpr std::int64_t kFramesOfAPiece = 25;
        std::string frame("\xFF\xF3\x38\xC4", 4);
        frame.resize(kFrameBytes, 'x');
        std::string piece;
        for (int i = 0; i < kFramesOfAPiece; ++i) piece += frame;
        std::ofstream out(file(), std::ios::binary);
        for (std::int64_t i = 0; i < kFramesOfADay; i += kFramesOfAPiece)
            out.write(piece.data(), static_cast<std::streamsize>(piece.size())).flush();
    }

    std::filesystem::path file() const { return folder_ / "day.mp3"; }
    /// Another file, gone with the day.
    std::filesystem::path beside(const std::string& name) const { return folder_ / name; }

  private:
    OwnFolder folder_;
};

}  // namespace sonavault
