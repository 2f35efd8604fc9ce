#include <cstdint>
#include <string>
#include <vector>

#include "Check.h"
#include "export/LiteralFrameWalk.h"
#include "export/Mp3FrameWalk.h"

namespace {

using sonavault::testing::check;

/// The first bytes say which ranges, in units of 4 ms from 0.2 s before the file on.
constexpr std::size_t kRanges = 3;
constexpr std::size_t kBytesOfRanges = kRanges * 2;

double timeOf(std::uint8_t byte) {
    return (byte - 50) * 0.004;
}

std::string cut(std::span<const std::uint8_t> file,
                const std::vector<sonavault::Selection>& selections, std::int64_t step) {
    const auto spans = sonavault::mergedSpans(selections, sonavault::DaySeconds{0});
    sonavault::Mp3FrameWalk walk(file, spans);
    while (walk.walkOn(step)) {
    }
    std::string out;
    for (const auto& range : walk.found()) {
        check(range.begin >= 0 && range.begin < range.end && range.end <= walk.end());
        out.append(file.begin() + range.begin, file.begin() + range.end);
    }
    return out;
}

}  // namespace

/// Any bytes are cut as the plain rule says, however they are read.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < kBytesOfRanges) return 0;
    std::vector<sonavault::Selection> selections;
    std::vector<sonavault::testing::LiteralFrameWalk::Pair> pairs;
    for (std::size_t i = 0; i < kRanges; ++i) {
        selections.push_back({.startSec = timeOf(data[i * 2]), .endSec = timeOf(data[i * 2 + 1])});
        pairs.emplace_back(selections.back().lowSec(), selections.back().highSec());
    }
    const std::span<const std::uint8_t> file(data + kBytesOfRanges, size - kBytesOfRanges);
    const std::string expected =
        sonavault::testing::LiteralFrameWalk::cut(std::string(file.begin(), file.end()), pairs);
    check(cut(file, selections, sonavault::Mp3FrameWalk::kStepBytes) == expected);
    check(cut(file, selections, 1 + data[0]) == expected);
    return 0;
}
