#include "store/PeaksGeneration.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <limits>
#include <new>
#include <string>
#include <system_error>
#include <thread>

#include "platform/M4aDecoder.h"
#include "platform/Mp3Decoder.h"
#include "platform/OpenFile.h"
#include "platform/SampleMath.h"
#include "platform/ThisThread.h"

namespace sonavault {
namespace {

// What a thread decodes at a time, five minutes of a day: the frames that are decoded ahead of it
// unheard are then less than one in a hundred.
constexpr std::size_t kBucketsAtATime = 1200;

constexpr auto kStopped = "Stopped";

PeaksError passedOn(std::string words) {
    return {PeaksError::Code::passedOn, std::move(words)};
}

PeaksError noReadBuffer() {
    return {PeaksError::Code::noReadBuffer, "Could not allocate read buffer"};
}

/// Makes room for all values; false when there is none.
bool makeRoom(std::vector<float>& rms, std::size_t count) {
    try {
        rms.resize(count);
    } catch (const std::exception&) {
        return false;
    }
    return true;
}

PeaksData recordOf(const PeakGrid& grid, double sampleRate, std::vector<float> rms) {
    PeaksData peaks;
    peaks.bucketSec = static_cast<double>(grid.bucketFrames) / sampleRate;
    peaks.totalDurationSec = static_cast<double>(grid.length) / sampleRate;
    float largest = 0;
    for (const float value : rms) largest = std::max(largest, value);
    peaks.maxRMS = largest > 0 ? largest : 1.0F;
    peaks.rms = std::move(rms);
    return peaks;
}

}  // namespace

std::optional<PeakGrid> PeakGrid::of(double sampleRate, double bucketSec, FrameCount length) {
    const double frames = std::round(sampleRate * bucketSec);
    if (frames > std::numeric_limits<std::uint32_t>::max()) return std::nullopt;
    return PeakGrid{frames > 1 ? static_cast<FrameCount>(frames) : 1, length};
}

bool measurePeaks(AudioDecoder& decoder, const PeakGrid& grid, std::size_t from, std::size_t to,
                  std::vector<float>& rms, const std::stop_token& stop) {
    FrameCount position = static_cast<FrameCount>(from) * grid.bucketFrames;
    decoder.seek(position);
    for (std::size_t bucket = from; bucket < to; ++bucket) {
        if (stop.stop_requested()) return false;
        const FrameCount begin = position;
        const FrameCount end = std::min(begin + grid.bucketFrames, grid.length);
        double squares = 0;
        while (position < end) {
            const DecodedAudio piece = decoder.next(end - position);
            if (piece.frames == 0) break;
            squares += sumOfSquares({piece.planes[0], static_cast<std::size_t>(piece.frames)});
            position += piece.frames;
        }
        const auto frames = static_cast<double>(position - begin);
        rms[bucket] = frames > 0 ? static_cast<float>(std::sqrt(squares / frames)) : 0.0F;
    }
    return true;
}

/// What is remembered of a recording.
struct PeaksGenerator::Known {
    Mp3FrameIndex index;
    double bucketSec = 0;
    std::vector<float> rms;
};

PeaksGenerator::PeaksGenerator(unsigned workers)
    : workers_(workers > 0 ? workers : std::max(1U, std::thread::hardware_concurrency())) {}

PeaksGenerator::~PeaksGenerator() = default;

PeaksResult PeaksGenerator::generate(const std::filesystem::path& audio, double bucketSec,
                                     const std::stop_token& stop) {
    if (!isM4aName(audio)) {
        Known known = takeKnown();
        if (known.index.file() != audio || known.bucketSec != bucketSec)
            known = {Mp3FrameIndex(audio), bucketSec, {}};
        return generateMp3(std::move(known), stop);
    }
    // Noise that a decoder makes up depends on what it decoded before, so one thread reads it all.
    auto decoder = AudioDecoder::open(audio, stop);
    if (!decoder) return PeaksResult::failure(passedOn(decoder.error()));
    const auto& opened = *decoder.value();
    const auto grid = PeakGrid::of(opened.sampleRate(), bucketSec, opened.length());
    std::vector<float> rms;
    if (!grid || !makeRoom(rms, grid->count())) return PeaksResult::failure(noReadBuffer());
    if (!measurePeaks(*decoder.value(), *grid, 0, grid->count(), rms, stop))
        return PeaksResult::failure(passedOn(kStopped));
    return recordOf(*grid, opened.sampleRate(), std::move(rms));
}

PeaksGenerator::Known PeaksGenerator::takeKnown() {
    const std::scoped_lock lock(mutex_);
    if (!known_) return {};
    Known taken = std::move(*known_);
    known_ = nullptr;
    return taken;
}

PeaksResult PeaksGenerator::generateMp3(Known known, const std::stop_token& stop) {
    // One file for the walk and for the decoders, whatever takes its name meanwhile.
    const auto file = OpenFile::open(known.index.file());
    if (!file) return PeaksResult::failure(passedOn(file.error()));
    const auto unchanged = known.index.extend(*file.value(), stop);
    if (!unchanged) return PeaksResult::failure(passedOn(unchanged.error()));
    const AudioFileInfo info = known.index.info();
    const auto grid = PeakGrid::of(info.sampleRate, known.bucketSec, info.frames);
    if (!grid) return PeaksResult::failure(noReadBuffer());
    // A bucket at the end of what was known may have been a part of what it is now.
    const std::size_t kept = std::min(
        known.rms.size(), static_cast<std::size_t>(unchanged.value() / grid->bucketFrames));
    if (!makeRoom(known.rms, grid->count())) return PeaksResult::failure(noReadBuffer());

    const auto index = std::make_shared<const Mp3FrameIndex>(known.index);
    const auto open = [index, opened = file.value()] { return openMp3(index, opened); };
    const auto error = measure(open, *grid, kept, known.rms, stop);
    if (error) return PeaksResult::failure(*error);

    PeaksData peaks = recordOf(*grid, info.sampleRate, known.rms);
    const std::scoped_lock lock(mutex_);
    known_ = std::make_unique<Known>(std::move(known));
    decodedBuckets_ = grid->count() - kept;
    return peaks;
}

/// Fills the buckets from `from` on, on as many threads as are worth it.
std::optional<PeaksError> PeaksGenerator::measure(const Opener& open, const PeakGrid& grid,
                                                  std::size_t from, std::vector<float>& rms,
                                                  const std::stop_token& stop) {
    std::atomic<std::size_t> next = from;
    std::mutex errorMutex;
    std::optional<PeaksError> error;
    const auto fail = [&](PeaksError found) {
        const std::scoped_lock lock(errorMutex);
        error = std::move(found);
    };
    const auto decodePieces = [&] {
        auto decoder = open();
        if (!decoder) return fail(passedOn(decoder.error()));
        for (;;) {
            const std::size_t begin = next.fetch_add(kBucketsAtATime);
            if (begin >= rms.size()) return;
            const std::size_t end = std::min(begin + kBucketsAtATime, rms.size());
            if (!measurePeaks(*decoder.value(), grid, begin, end, rms, stop))
                return fail(passedOn(kStopped));
        }
    };

    const auto work = [&] {
        try {
            decodePieces();
        } catch (const std::exception& thrown) {
            // From a helper it would end the process.
            fail(passedOn(thrown.what()));
        }
    };

    const std::size_t pieces = (rms.size() - from + kBucketsAtATime - 1) / kBucketsAtATime;
    {
        std::vector<std::jthread> helpers;
        try {
            for (std::size_t i = 1; i < std::min<std::size_t>(workers_, pieces); ++i)
                helpers.emplace_back([&work, i] {
                    nameThisThread("peaks-" + std::to_string(i));
                    work();
                });
        } catch (const std::system_error&) {
            // No thread is to be had: those that there are do all of it.
        }
        work();
    }
    return error;
}

std::size_t PeaksGenerator::lastDecodedBuckets() const {
    const std::scoped_lock lock(mutex_);
    return decodedBuckets_;
}

PeaksResult generatePeaks(const std::filesystem::path& audio, double bucketSec) {
    return PeaksGenerator().generate(audio, bucketSec);
}

}  // namespace sonavault
