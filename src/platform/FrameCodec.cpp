#include "platform/FrameCodec.h"

#include <algorithm>
#include <cstring>

namespace sonavault {
namespace {

constexpr std::size_t kPacketBytes = 2048;  // room for any MPEG frame

}  // namespace

std::unique_ptr<FrameCodec> FrameCodec::open(AVCodecID id, const AVCodecParameters* parameters) {
    silenceLibAv();
    std::unique_ptr<FrameCodec> made(new FrameCodec);
    const AVCodec* const codec = avcodec_find_decoder(id);
    if (!codec) return nullptr;
    made->context_.reset(avcodec_alloc_context3(codec));
    made->packet_.reset(av_packet_alloc());
    made->frame_.reset(av_frame_alloc());
    if (!made->context_ || !made->packet_ || !made->frame_) return nullptr;
    AVCodecContext* const context = made->context_.get();
    if (parameters && avcodec_parameters_to_context(context, parameters) < 0) return nullptr;
    context->thread_count = 1;
    // Positions are counted from the file's first frame: nothing is trimmed for an encoder's delay.
    context->flags2 |= AV_CODEC_FLAG2_SKIP_MANUAL;
    if (avcodec_open2(context, codec, nullptr) < 0) return nullptr;
    return made;
}

const AVFrame* FrameCodec::decode(std::span<const std::uint8_t> frame) {
    if (!makePacketFor(frame.size())) return nullptr;
    std::memcpy(packet_->data, frame.data(), frame.size());
    // The library reads a little beyond a packet's end: what follows in the file must not show in
    // the sound.
    std::memset(packet_->data + frame.size(), 0, AV_INPUT_BUFFER_PADDING_SIZE);
    packet_->size = static_cast<int>(frame.size());
    return decode(*packet_);
}

/// The same memory again and again, as long as the library has let go of it: its own way costs more
/// in allocations than a silent frame in decoding.
bool FrameCodec::makePacketFor(std::size_t bytes) {
    const std::size_t needed = bytes + AV_INPUT_BUFFER_PADDING_SIZE;
    const bool reusable =
        packet_->buf && packet_->buf->size >= needed && av_buffer_is_writable(packet_->buf) == 1;
    if (reusable) return true;
    av_packet_unref(packet_.get());
    packet_->buf = av_buffer_alloc(std::max(needed, kPacketBytes));
    if (!packet_->buf) return false;
    packet_->data = packet_->buf->data;
    return true;
}

const AVFrame* FrameCodec::decode(const AVPacket& packet) {
    if (avcodec_send_packet(context_.get(), &packet) < 0) return nullptr;
    if (avcodec_receive_frame(context_.get(), frame_.get()) < 0) return nullptr;
    const bool single = frame_->ch_layout.nb_channels == 1;
    const bool floats =
        frame_->format == AV_SAMPLE_FMT_FLTP || (single && frame_->format == AV_SAMPLE_FMT_FLT);
    return floats && frame_->nb_samples > 0 ? frame_.get() : nullptr;
}

void FrameCodec::forget() {
    avcodec_flush_buffers(context_.get());
}

}  // namespace sonavault
