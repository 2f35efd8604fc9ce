#pragma once

#include <memory>

// The libraries' headers, in C, are not written for our warnings.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wsign-conversion"
extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/log.h>
}
#pragma GCC diagnostic pop

namespace sonavault {

/// Gives back what the decoding libraries made.
struct LibAvDeleter {
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(AVFormatContext* input) const { avformat_close_input(&input); }
    void operator()(AVIOContext* io) const {
        av_freep(&io->buffer);
        avio_context_free(&io);
    }
};

template <class T>
using LibAvPtr = std::unique_ptr<T, LibAvDeleter>;

/// Keeps the libraries from writing into the program's output, which belongs to its log. Called
/// before anything of theirs. Thread: any.
inline void silenceLibAv() {
    [[maybe_unused]] static const bool silenced = (av_log_set_level(AV_LOG_QUIET), true);
}

}  // namespace sonavault
