#include "pastdays/LegacySound.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "platform/LibAv.h"

namespace sonavault::pastdays {
namespace {

constexpr std::int64_t kBitRate = 32000;

std::string wordsOf(int error) {
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
    av_strerror(error, text.data(), text.size());
    return text.data();
}

/// An encoder as all pieces and the container share it. Errors: nothing.
LibAvPtr<AVCodecContext> openCodec() {
    silenceLibAv();
    const AVCodec* const codec = avcodec_find_encoder(AV_CODEC_ID_AAC);
    if (!codec) return nullptr;
    LibAvPtr<AVCodecContext> context(avcodec_alloc_context3(codec));
    if (!context) return nullptr;
    context->sample_rate = kSampleRate;
    context->sample_fmt = AV_SAMPLE_FMT_FLTP;
    context->bit_rate = kBitRate;
    context->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    context->thread_count = 1;
    av_channel_layout_default(&context->ch_layout, 1);
    AVDictionary* options = nullptr;
    av_dict_set(&options, "aac_coder", "fast", 0);
    const int opened = avcodec_open2(context.get(), codec, &options);
    av_dict_free(&options);
    if (opened < 0) return nullptr;
    return context;
}

class AacPieceEncoder final : public PieceEncoder {
  public:
    explicit AacPieceEncoder(LibAvPtr<AVCodecContext> context)
        : context_(std::move(context)), frame_(av_frame_alloc()), packet_(av_packet_alloc()) {}

    Result<EncodedSound> encode(const Samples& samples) override {
        EncodedSound sound;
        for (std::size_t at = 0; at < samples.size(); at += AacPieces::kSamplesPerPacket) {
            const int sent = send(std::span(samples).subspan(at));
            if (sent < 0) return Result<EncodedSound>::failure(wordsOf(sent));
            receiveAll(sound);
        }
        avcodec_send_frame(context_.get(), nullptr);
        receiveAll(sound);
        return sound;
    }

  private:
    /// The beginning of `samples`, as much as a packet holds, with silence behind a last short one.
    int send(std::span<const float> samples) {
        frame_->nb_samples = AacPieces::kSamplesPerPacket;
        frame_->format = context_->sample_fmt;
        av_channel_layout_copy(&frame_->ch_layout, &context_->ch_layout);
        if (const int made = av_frame_get_buffer(frame_.get(), 0); made < 0) return made;
        auto* const plane = reinterpret_cast<float*>(frame_->data[0]);
        const auto count = std::min<std::size_t>(samples.size(), AacPieces::kSamplesPerPacket);
        std::copy_n(samples.begin(), count, plane);
        std::fill(plane + count, plane + AacPieces::kSamplesPerPacket, 0.0F);
        const int sent = avcodec_send_frame(context_.get(), frame_.get());
        av_frame_unref(frame_.get());
        return sent;
    }

    void receiveAll(EncodedSound& sound) {
        while (avcodec_receive_packet(context_.get(), packet_.get()) == 0) {
            sound.append({packet_->data, static_cast<std::size_t>(packet_->size)});
            av_packet_unref(packet_.get());
        }
    }

    LibAvPtr<AVCodecContext> context_;
    LibAvPtr<AVFrame> frame_;
    LibAvPtr<AVPacket> packet_;
};

/// A container that is being written.
class Container {
  public:
    ~Container() {
        if (context_) avio_closep(&context_->pb);
        avformat_free_context(context_);
    }
    Container() = default;
    Container(const Container&) = delete;
    Container& operator=(const Container&) = delete;

    int begin(const std::filesystem::path& file, const AVCodecContext& codec) {
        const std::string address = "file:" + file.string();
        int done = avformat_alloc_output_context2(&context_, nullptr, "ipod", nullptr);
        if (done < 0) return done;
        AVStream* const stream = avformat_new_stream(context_, nullptr);
        if (!stream) return AVERROR(ENOMEM);
        done = avcodec_parameters_from_context(stream->codecpar, &codec);
        if (done < 0) return done;
        stream->time_base = {1, kSampleRate};
        done = avio_open(&context_->pb, address.c_str(), AVIO_FLAG_WRITE);
        return done < 0 ? done : avformat_write_header(context_, nullptr);
    }

    int add(std::span<const std::uint8_t> bytes) {
        if (const int made = av_new_packet(packet_.get(), static_cast<int>(bytes.size())); made < 0)
            return made;
        std::memcpy(packet_->data, bytes.data(), bytes.size());
        packet_->pts = packet_->dts = time_;
        packet_->duration = AacPieces::kSamplesPerPacket;
        packet_->flags |= AV_PKT_FLAG_KEY;
        time_ += AacPieces::kSamplesPerPacket;
        av_packet_rescale_ts(packet_.get(), {1, kSampleRate}, context_->streams[0]->time_base);
        const int written = av_write_frame(context_, packet_.get());
        av_packet_unref(packet_.get());
        return written;
    }

    int end() { return av_write_trailer(context_); }

  private:
    AVFormatContext* context_ = nullptr;
    LibAvPtr<AVPacket> packet_{av_packet_alloc()};
    std::int64_t time_ = 0;  // Units: samples
};

int fill(Container& container, const DayPlan& plan, const std::vector<Piece>& pieces) {
    for (const PieceUse& use : plan.uses)
        for (std::int64_t frame = 0; frame < use.frames; ++frame)
            if (const int added = container.add(pieces[use.piece].sound.frame(frame)); added < 0)
                return added;
    return container.end();
}

}  // namespace

Result<std::unique_ptr<PieceEncoder>> AacPieces::makeEncoder() {
    using Made = Result<std::unique_ptr<PieceEncoder>>;
    auto codec = openCodec();
    if (!codec) return Made::failure("There is no AAC encoder on this system");
    return std::unique_ptr<PieceEncoder>(std::make_unique<AacPieceEncoder>(std::move(codec)));
}

Outcome writeM4a(const std::filesystem::path& file, const DayPlan& plan,
                 const std::vector<Piece>& pieces) {
    const auto codec = openCodec();
    if (!codec) return Outcome::failure("There is no AAC encoder on this system");
    auto unfinished = file;
    unfinished += ".part";
    {
        Container container;
        int done = container.begin(unfinished, *codec);
        if (done >= 0) done = fill(container, plan, pieces);
        if (done < 0) return Outcome::failure(wordsOf(done));
    }
    std::error_code error;
    std::filesystem::rename(unfinished, file, error);
    if (error) return Outcome::failure(error.message());
    return Done{};
}

}  // namespace sonavault::pastdays
