#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace sonavault::testing {

/// What an independent decoder makes of an audio file.
struct Heard {
    double sampleRate = 0;
    std::vector<float> samples;  ///< mono
    std::string complaints;      ///< what the decoder said of the stream

    double durationSec() const { return static_cast<double>(samples.size()) / sampleRate; }
    /// The samples from `from` to `to`. Units: seconds
    std::vector<float> part(double from, double to) const;
};

/// Decodes with ffmpeg, at the file's own rate.
Heard listenTo(const std::filesystem::path& file);

/// The frequency of a tone near `expected`, from the advance of its phase over the whole of
/// `samples`; within about 0.4 Hz of `expected` or it is meaningless. Units: hertz
double toneFrequency(const std::vector<float>& samples, double sampleRate, double expected);

/// The level of all of it. Units: dBFS of the root mean square
double levelDb(const std::vector<float>& samples);

/// A stretch of the file. Units: seconds
struct Stretch {
    double from = 0;
    double to = 0;
    double length() const { return to - from; }
};

/// Where the level stays below `thresholdDb` for at least `least` seconds, to about 10 ms.
std::vector<Stretch> silences(const Heard& heard, double thresholdDb, double least);

/// From the first silence after `from` to the end of the last. The silence that stands for an
/// outage is put in a second at a time ahead of the buffers that follow it, so that it has short
/// stretches of sound in it.
Stretch silentSpan(const Heard& heard, double from);

}  // namespace sonavault::testing
