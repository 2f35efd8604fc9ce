#include <cstdint>
#include <span>

#include "Check.h"
#include "platform/AudioFileInfo.h"

namespace {

using sonavault::testing::check;

}  // namespace

/// Any bytes are walked to their end, in runs that lie in order within the file and are of frames
/// that parse.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace sonavault;
    const std::span<const std::uint8_t> file(data, size);
    Mp3Walk walk(file);
    std::int64_t end = 0;
    std::int64_t frames = 0;
    while (const auto run = walk.next()) {
        check(run->begin >= end && run->end <= static_cast<std::int64_t>(size));
        const auto first = parseMp3Header(file.subspan(static_cast<std::size_t>(run->begin)));
        check(first && *first == run->header);

        std::int64_t at = run->begin;
        for (std::int64_t i = 0; i < run->count; ++i) {
            const auto header = parseMp3Header(file.subspan(static_cast<std::size_t>(at)));
            check(header && header->sampleRate == run->header.sampleRate);
            at += header->frameBytes;
        }
        check(run->count > 0 && at == run->end);
        end = run->end;
        frames += run->count;
    }
    const bool hasLength = static_cast<bool>(walkMp3(file));
    check(hasLength == (frames > 0));
    return 0;
}
