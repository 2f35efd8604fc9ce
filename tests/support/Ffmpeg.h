#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace sonavault::testing {

// Another program's hand at audio files: it makes real ones, and says what they hold.
// Errors: std::runtime_error.

/// Encodes what the filter source `sound` gives, with ffmpeg's own `options` for rate and bitrate,
/// as a bare stream without tags and without a header frame.
void encodeWithFfmpeg(const std::filesystem::path& file, const std::string& sound,
                      const std::string& options);

/// Noise that comes and goes with a tone under it, `seconds` long: each part of it differs.
std::string lively(double seconds, int seed = 1);

/// All samples of a file at its own rate, channels interleaved.
std::vector<float> decodeWithFfmpeg(const std::filesystem::path& file);

}  // namespace sonavault::testing
