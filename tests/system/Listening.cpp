#include "system/Listening.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdio>
#include <numbers>
#include <stdexcept>

#include "support/TempFolder.h"

namespace sonavault::testing {

namespace {

std::string outputOf(const std::string& command) {
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) throw std::runtime_error("can't run " + command);
    std::string output;
    char bytes[65536];
    while (const auto count = fread(bytes, 1, sizeof bytes, pipe)) output.append(bytes, count);
    pclose(pipe);
    return output;
}

/// The phase of the tone against a steady one of `frequency`, over one block.
std::complex<double> correlate(const std::vector<float>& samples, std::size_t begin,
                               std::size_t length, double step) {
    std::complex<double> sum = 0;
    for (std::size_t i = begin; i < begin + length; ++i)
        sum += static_cast<double>(samples[i]) * std::polar(1.0, -step * static_cast<double>(i));
    return sum;
}

}  // namespace

std::vector<float> Heard::part(double from, double to) const {
    const auto index = [this](double seconds) {
        const auto at = static_cast<std::ptrdiff_t>(seconds * sampleRate);
        return std::clamp<std::ptrdiff_t>(at, 0, static_cast<std::ptrdiff_t>(samples.size()));
    };
    return {samples.begin() + index(from), samples.begin() + index(to)};
}

Heard listenTo(const std::filesystem::path& file) {
    const TempFolder folder;
    const auto complaints = (folder / "complaints").string();
    const std::string quoted = "'" + file.string() + "'";
    Heard heard;
    heard.sampleRate = std::stod(
        "0" + outputOf("ffprobe -v error -select_streams a:0 -show_entries stream=sample_rate -of "
                       "csv=p=0 " +
                       quoted));
    const auto bytes = outputOf("ffmpeg -nostdin -v warning -i " + quoted +
                                " -f f32le -ac 1 - 2> '" + complaints + "'");
    heard.samples.resize(bytes.size() / sizeof(float));
    std::copy_n(bytes.data(), heard.samples.size() * sizeof(float),
                reinterpret_cast<char*>(heard.samples.data()));
    heard.complaints = readFile(complaints);
    if (heard.sampleRate == 0)
        throw std::runtime_error("no audio in " + file.string() + "\n" + heard.complaints);
    return heard;
}

double toneFrequency(const std::vector<float>& samples, double sampleRate, double expected) {
    const double step = 2 * std::numbers::pi * expected / sampleRate;
    const auto block = static_cast<std::size_t>(sampleRate / 2);
    double advance = 0;
    int blocks = 0;
    auto last = correlate(samples, 0, block, step);
    for (std::size_t begin = block; begin + block <= samples.size(); begin += block, ++blocks) {
        const auto next = correlate(samples, begin, block, step);
        advance += std::arg(next * std::conj(last));
        last = next;
    }
    if (blocks == 0) throw std::runtime_error("too short to measure a frequency");
    return expected +
           advance / blocks / (2 * std::numbers::pi) * sampleRate / static_cast<double>(block);
}

double levelDb(const std::vector<float>& samples) {
    double sum = 0;
    for (const float sample : samples) sum += static_cast<double>(sample) * sample;
    return samples.empty() || sum == 0 ? -200
                                       : 10 * std::log10(sum / static_cast<double>(samples.size()));
}

std::vector<Stretch> silences(const Heard& heard, double thresholdDb, double least) {
    constexpr double kStep = 0.01;
    std::vector<Stretch> found;
    double begin = -1;
    const double end = heard.durationSec();
    for (double at = 0; at < end; at += kStep) {
        const bool silent = levelDb(heard.part(at, at + kStep)) < thresholdDb;
        if (silent && begin < 0) begin = at;
        if (begin >= 0 && (!silent || at + kStep >= end)) {
            if (at - begin >= least) found.push_back({begin, at});
            begin = -1;
        }
    }
    return found;
}

Stretch silentSpan(const Heard& heard, double from) {
    constexpr double kThresholdDb = -30;
    constexpr double kLeast = 0.1;
    Stretch span{-1, -1};
    for (const auto& gap : silences(heard, kThresholdDb, kLeast)) {
        if (gap.from < from) continue;
        if (span.from < 0) span.from = gap.from;
        span.to = gap.to;
    }
    return span;
}

}  // namespace sonavault::testing
