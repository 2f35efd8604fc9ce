#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "platform/LibAv.h"

namespace sonavault {

/// One decoder of the library, which turns compressed frames into planes of float samples.
///
/// Thread: one at a time.
class FrameCodec {
  public:
    /// `parameters` may be none, for a stream that tells all in its frames. Errors: nothing, when
    /// the library has no such decoder or refuses the parameters.
    static std::unique_ptr<FrameCodec> open(AVCodecID id, const AVCodecParameters* parameters);

    /// The sound of one frame, valid until the next call; nothing when it can't be decoded. Only
    /// planes of floats are given.
    const AVFrame* decode(std::span<const std::uint8_t> frame);

    /// The same for packets of a container, of which one may give no sound yet.
    const AVFrame* decode(const AVPacket& packet);

    /// What is decoded next has nothing to do with what came before.
    void forget();

  private:
    FrameCodec() = default;
    bool makePacketFor(std::size_t bytes);

    LibAvPtr<AVCodecContext> context_;
    LibAvPtr<AVPacket> packet_;
    LibAvPtr<AVFrame> frame_;
};

}  // namespace sonavault
