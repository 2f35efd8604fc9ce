#include "platform/AudioDecoder.h"

#include <algorithm>

#include "platform/M4aDecoder.h"
#include "platform/Mp3Decoder.h"

namespace sonavault {

Result<std::unique_ptr<AudioDecoder>> AudioDecoder::open(const std::filesystem::path& file,
                                                         const std::stop_token& stop) {
    using Opened = Result<std::unique_ptr<AudioDecoder>>;
    if (isM4aName(file)) return openM4a(file);
    auto index = Mp3FrameIndex::of(file, stop);
    if (!index) return Opened::failure(index.error());
    return openMp3(std::make_shared<const Mp3FrameIndex>(std::move(index.value())));
}

FrameCount AudioDecoder::read(std::span<float* const> planes, FrameCount frames) {
    FrameCount done = 0;
    while (done < frames) {
        const DecodedAudio piece = next(frames - done);
        if (piece.frames == 0) break;
        for (std::size_t c = 0; c < planes.size(); ++c) {
            const bool second = c > 0 && channels() > 1;
            std::copy_n(piece.planes[second ? 1 : 0], piece.frames, planes[c] + done);
        }
        done += piece.frames;
    }
    return done;
}

}  // namespace sonavault
