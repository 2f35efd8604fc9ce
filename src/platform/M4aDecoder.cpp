#include "platform/M4aDecoder.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <system_error>
#include <vector>

#include "platform/FileQueries.h"
#include "platform/FrameCodec.h"

namespace sonavault {
namespace {

// The longest packet of any codec that such a file may hold.
constexpr std::int64_t kMostFramesInAPacket = 16384;

// A seek goes back this far, for a packet overlaps the one before.
constexpr FrameCount kPreRollFrames = 8192;

constexpr FrameCount kSilenceFrames = 4096;
constexpr std::array<float, kSilenceFrames> kSilence{};

/// An open container, and its sound track in it.
struct Track {
    LibAvPtr<AVFormatContext> input;
    AVStream* stream = nullptr;  // belongs to input
    AudioFileInfo info;

    AVRational frameTime() const { return {1, static_cast<int>(info.sampleRate)}; }
};

std::string wordsOf(int error) {
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
    av_strerror(error, text.data(), text.size());
    return text.data();
}

std::int64_t packetsThatAreThere(AVStream* stream, std::uintmax_t fileBytes) {
    std::int64_t found = 0;
    for (int i = 0; i < avformat_index_get_entries_count(stream); ++i) {
        const AVIndexEntry* const entry = avformat_index_get_entry(stream, i);
        const std::int64_t end = entry->pos + entry->size;
        if (entry->size > 0 && end <= static_cast<std::int64_t>(fileBytes)) ++found;
    }
    return found;
}

/// Opens the container and nothing else that it may point at.
Result<LibAvPtr<AVFormatContext>> openContainer(const std::filesystem::path& file) {
    using Opened = Result<LibAvPtr<AVFormatContext>>;
    silenceLibAv();
    std::error_code error;
    const auto status = std::filesystem::status(file, error);
    if (error) return Opened::failure(error.message());
    if (!std::filesystem::is_regular_file(status)) return Opened::failure("Not a plain file");

    AVDictionary* options = nullptr;
    av_dict_set(&options, "protocol_whitelist", "file", 0);
    AVFormatContext* input = nullptr;
    const std::string address = "file:" + file.string();
    const int opened =
        avformat_open_input(&input, address.c_str(), av_find_input_format("mov"), &options);
    av_dict_free(&options);
    if (opened < 0) return Opened::failure(wordsOf(opened));
    return LibAvPtr<AVFormatContext>(input);
}

Result<Track> openTrack(const std::filesystem::path& file) {
    using Opened = Result<Track>;
    auto input = openContainer(file);
    if (!input) return Opened::failure(input.error());
    Track track;
    track.input = std::move(input.value());
    const int found =
        av_find_best_stream(track.input.get(), AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
    if (found < 0) return Opened::failure("The file holds no sound track");
    track.stream = track.input->streams[found];
    const int rate = track.stream->codecpar->sample_rate;
    if (rate <= 0) return Opened::failure("The file's sound track has no sample rate");
    track.info.sampleRate = rate;
    const std::int64_t told =
        track.stream->duration == AV_NOPTS_VALUE
            ? 0
            : av_rescale_q(track.stream->duration, track.stream->time_base, track.frameTime());
    const std::int64_t packets = packetsThatAreThere(track.stream, fileSize(file));
    track.info.frames = std::clamp<std::int64_t>(told, 0, packets * kMostFramesInAPacket);
    return track;
}

class M4aDecoder final : public AudioDecoder {
  public:
    M4aDecoder(Track track, std::unique_ptr<FrameCodec> codec)
        : track_(std::move(track)), codec_(std::move(codec)), packet_(av_packet_alloc()) {}

    double sampleRate() const override { return track_.info.sampleRate; }
    int channels() const override {
        return track_.stream->codecpar->ch_layout.nb_channels > 1 ? 2 : 1;
    }
    FrameCount length() const override { return track_.info.frames; }
    void seek(FrameCount position) override;
    DecodedAudio next(FrameCount atMost) override;

  private:
    bool decodePacket();
    FrameCount silenceAhead() const;

    Track track_;
    std::unique_ptr<FrameCodec> codec_;
    LibAvPtr<AVPacket> packet_;
    const AVFrame* frame_ = nullptr;  // decoded last; belongs to codec_
    FrameCount framePosition_ = 0;
    FrameCount position_ = 0;  // of what comes next
    bool ended_ = false;       // there are no more packets
};

void M4aDecoder::seek(FrameCount position) {
    position = std::clamp<FrameCount>(position, 0, length());
    if (position == position_) return;
    position_ = position;
    frame_ = nullptr;
    const std::int64_t time =
        av_rescale_q(position - kPreRollFrames, track_.frameTime(), track_.stream->time_base);
    ended_ =
        av_seek_frame(track_.input.get(), track_.stream->index, time, AVSEEK_FLAG_BACKWARD) < 0;
    codec_->forget();
}

DecodedAudio M4aDecoder::next(FrameCount atMost) {
    atMost = std::min(atMost, length() - position_);
    if (atMost <= 0) return {position_, 0, {}};
    while (!ended_ && (!frame_ || framePosition_ + frame_->nb_samples <= position_))
        ended_ = !decodePacket();

    DecodedAudio piece{position_, 0, {kSilence.data(), kSilence.data()}};
    const FrameCount silence = silenceAhead();
    if (silence > 0) {
        piece.frames = std::min(atMost, silence);
    } else {
        const FrameCount skip = position_ - framePosition_;
        piece.frames = std::min(atMost, frame_->nb_samples - skip);
        for (int c = 0; c < 2; ++c) {
            const int plane = std::min(c, frame_->ch_layout.nb_channels - 1);
            piece.planes[static_cast<std::size_t>(c)] =
                reinterpret_cast<const float*>(frame_->extended_data[plane]) + skip;
        }
    }
    position_ += piece.frames;
    return piece;
}

/// How much of what comes next was never decoded, before a frame that was.
FrameCount M4aDecoder::silenceAhead() const {
    if (ended_) return kSilenceFrames;
    return std::clamp<FrameCount>(framePosition_ - position_, 0, kSilenceFrames);
}

/// Decodes until there is a frame; false when the packets come to their end.
bool M4aDecoder::decodePacket() {
    frame_ = nullptr;
    while (!frame_) {
        if (av_read_frame(track_.input.get(), packet_.get()) < 0) return false;
        if (packet_->stream_index == track_.stream->index) frame_ = codec_->decode(*packet_);
        av_packet_unref(packet_.get());
    }
    if (frame_->pts != AV_NOPTS_VALUE)
        framePosition_ = av_rescale_q(frame_->pts, track_.stream->time_base, track_.frameTime());
    else
        framePosition_ = position_;
    return true;
}

}  // namespace

bool isM4aName(const std::filesystem::path& file) {
    std::string suffix = file.extension().string();
    for (char& letter : suffix)
        letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    return suffix == ".m4a";
}

Result<AudioFileInfo> readM4aInfo(const std::filesystem::path& file) {
    const auto track = openTrack(file);
    if (!track) return Result<AudioFileInfo>::failure(track.error());
    return track.value().info;
}

Result<std::unique_ptr<AudioDecoder>> openM4a(const std::filesystem::path& file) {
    using Opened = Result<std::unique_ptr<AudioDecoder>>;
    auto track = openTrack(file);
    if (!track) return Opened::failure(track.error());
    const AVCodecParameters* const parameters = track.value().stream->codecpar;
    auto codec = FrameCodec::open(parameters->codec_id, parameters);
    if (!codec) return Opened::failure("There is no decoder for the file's sound");
    return std::unique_ptr<AudioDecoder>(
        std::make_unique<M4aDecoder>(std::move(track.value()), std::move(codec)));
}

}  // namespace sonavault
