// The work that bench/peers/run compares with other tools, one piece of it a process, so that ours
// pays for its start and its end as they do. What the comparison needs to exist is made here too.

#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "../Measuring.h"
#include "automation/Signal.h"
#include "export/FrameWalkExport.h"
#include "platform/DiskFlusher.h"
#include "platform/LibAv.h"
#include "recorder/AudioPipeline.h"
#include "store/PeaksFile.h"
#include "store/PeaksGeneration.h"

namespace sonavault {
namespace {

namespace fs = std::filesystem;
using Words = std::span<const std::string>;

constexpr AudioFormat kSource{44100, 2, true};
constexpr FrameCount kBufferFrames = 4096;  // as the line input delivers
constexpr double kRate = 22050;
constexpr int kKbps = 24;
constexpr double kBucketSec = 0.25;
constexpr std::int64_t kFrameBytes = 108;  // of the stream at that bitrate, 36 ms

[[noreturn]] void fail(const std::string& why) {
    std::fprintf(stderr, "%s\n", why.c_str());
    std::exit(1);
}

std::int64_t number(const std::string& word) {
    std::int64_t value = 0;
    const auto* end = word.data() + word.size();
    if (std::from_chars(word.data(), end, value).ptr != end || word.empty())
        fail("not a number: " + word);
    return value;
}

/// A clock that keeps step with the samples, so that nothing is padded.
class SteadyClock final : public Clock {
  public:
    WallTime now() const override { return after(WallTime{}, played); }
    double played = 0;
};

/// FILE SECONDS: what a station sends, the same on both channels, as raw interleaved floats.
void makeSignal(Words words) {
    const auto signal = automation::makeSignal({});
    std::ofstream out(words[0], std::ios::binary);
    std::vector<float> mono(44100);
    std::vector<float> both(mono.size() * 2);
    for (std::int64_t second = 0; second < number(words[1]); ++second) {
        signal->fill(mono, after(WallTime{}, static_cast<double>(second)));
        for (std::size_t i = 0; i < both.size(); ++i) both[i] = mono[i / 2];
        out.write(reinterpret_cast<const char*>(both.data()),
                  static_cast<std::streamsize>(both.size() * sizeof(float)));
    }
    if (!out.flush()) fail("can't write " + words[0]);
}

/// SIGNAL MP3: the whole road of a buffer, to the day's file, as fast as it goes.
void record(Words words) {
    std::ifstream in(words[0], std::ios::binary);
    const fs::path file = words[1];
    fs::remove(file);
    NoLog log;
    SteadyClock clock;
    DiskFlusher flusher;
    AudioPipeline pipeline(clock, log, {.level = [](float) {}, .peak = [](float, double) {}});
    pipeline.setActiveSampleRate(kRate);
    OpenDay day{.encoder = LAMEEncoder::create(static_cast<int>(kRate), 1, kKbps, log),
                .framesWritten = 0,
                .wallClockAnchor = clock.now()};
    if (!in || !pipeline.buildResampler(kSource) || !day.encoder->open(file, flusher))
        fail("can't begin to record");
    pipeline.begin(std::move(day));
    std::vector<float> samples(static_cast<std::size_t>(kBufferFrames * kSource.channels));
    const float* const plane = samples.data();
    const auto bytes = static_cast<std::streamsize>(samples.size() * sizeof(float));
    while (in.read(reinterpret_cast<char*>(samples.data()), bytes).gcount() > 0) {
        const FrameCount frames = in.gcount() / std::streamsize{sizeof(float)} / kSource.channels;
        clock.played += static_cast<double>(frames) / kSource.sampleRate;
        pipeline.handleSourceBuffer({kSource, frames, &plane});
    }
    pipeline.end()->close();
}

/// PART DAY FRAMES COPIES: a day of the first frames of a part, again and again.
void makeDay(Words words) {
    std::string part(static_cast<std::size_t>(number(words[2]) * kFrameBytes), '\0');
    if (!std::ifstream(words[0], std::ios::binary).read(part.data(), std::ssize(part)))
        fail(words[0] + " is too short");
    std::ofstream out(words[1], std::ios::binary);
    for (std::int64_t i = 0; i < number(words[3]); ++i) out.write(part.data(), std::ssize(part));
    if (!out.flush()) fail("can't write " + words[1]);
}

/// DAY PEAKS: the waveform of a day, and its sidecar.
void makePeaks(Words words) {
    silenceLibAv();
    const auto peaks = generatePeaks(words[0], kBucketSec);
    if (!peaks) fail(peaks.error().description);
    if (const auto saved = savePeaksFile(peaks.value(), words[1]); !saved) fail(saved.error());
}

/// DAY CUT FROM TO ...: some ranges of a day, in seconds, as one file.
void cut(Words words) {
    ExportSource source{.loadedFileURL = words[0]};
    for (std::size_t i = 2; i + 1 < words.size(); i += 2)
        source.selections.push_back(Selection{.startSec = static_cast<double>(number(words[i])),
                                              .endSec = static_cast<double>(number(words[i + 1]))});
    const auto exported = performFrameWalkExport(source, std::nullopt, words[1]);
    if (!exported) fail(exported.error().errorDescription());
}

struct Command {
    std::size_t leastWords;
    std::function<void(Words)> run;
};

int main(const std::vector<std::string>& words) {
    const std::map<std::string, Command> commands{{"signal", {2, makeSignal}},
                                                  {"record", {2, record}},
                                                  {"day", {4, makeDay}},
                                                  {"peaks", {2, makePeaks}},
                                                  {"cut", {4, cut}}};
    const auto command = words.empty() ? commands.end() : commands.find(words.front());
    if (command == commands.end() || words.size() <= command->second.leastWords)
        fail("bench/peers/run knows how to call this");
    command->second.run(Words(words).subspan(1));
    return 0;
}

}  // namespace
}  // namespace sonavault

int main(int argc, char** argv) {
    return sonavault::main(std::vector<std::string>(argv + 1, argv + argc));
}
