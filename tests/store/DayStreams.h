#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace sonavault::testing {

/// What the encoder of a day writes at a quality level.
struct DayQuality {
    int kbps = 24;
    int sampleRate = 16000;  ///< the file's own, as the encoder chooses it
};

inline const std::vector<DayQuality> kDayQualities = {
    {8, 8000}, {16, 16000}, {24, 16000}, {48, 22050}, {96, 22050}};

/// `frames` frames of 576 samples as one run of the encoder leaves them, padded as the standard
/// asks: a frame ends at the whole byte that the bitrate has reached or passed. What sounds in
/// them is noise that looks like a header now and then.
std::string dayRun(std::int64_t frames, const DayQuality& quality, std::uint32_t seed = 1);

/// What LAME makes of `seconds` of noise at that bitrate, set up as a recording sets it up.
std::string encodedRun(double seconds, int kbps);

/// How long these bytes are, found by walking all of them. Units: seconds
double walkedSec(const std::string& bytes);

}  // namespace sonavault::testing
