#include "platform/M4aDecoder.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstdio>

#include "platform/FrameCodec.h"

namespace sonavault {
namespace {

// The longest packet of any codec that such a file may hold.
constexpr std::int64_t kMostFramesInAPacket = 16384;

// No codec of such a file knows a higher one; whoever plays makes room in proportion to it. Units:
// hertz
constexpr int kHighestSampleRate = 192000;

// A seek goes back this far, for a packet overlaps the one before.
constexpr FrameCount kPreRollFrames = 8192;

constexpr FrameCount kSilenceFrames = 4096;
constexpr std::array<float, kSilenceFrames> kSilence{};

/// Where the library is in a file that others may read too.
struct Reader {
    OpenFile::Shared file;
    std::int64_t position = 0;

    static int read(void* self, std::uint8_t* into, int count) {
        auto& reader = *static_cast<Reader*>(self);
        const auto got =
            reader.file->readAt(reader.position, {into, static_cast<std::size_t>(count)});
        reader.position += static_cast<std::int64_t>(got);
        return got > 0 ? static_cast<int>(got) : AVERROR_EOF;
    }

    static std::int64_t seek(void* self, std::int64_t offset, int whence) {
        auto& reader = *static_cast<Reader*>(self);
        if (whence == SEEK_SET) return reader.position = offset;
        // The library turns all others but this into that.
        if (whence != AVSEEK_SIZE) return AVERROR(EINVAL);
        const auto stamp = reader.file->stamp();
        return stamp ? stamp->size : AVERROR(EIO);
    }
};

/// An open container, and its sound track in it.
struct Track {
    // In the order in which each needs the one before.
    std::unique_ptr<Reader> reader;
    LibAvPtr<AVIOContext> io;
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

std::int64_t packetsThatAreThere(AVStream* stream, std::int64_t fileBytes) {
    std::int64_t found = 0;
    for (int i = 0; i < avformat_index_get_entries_count(stream); ++i) {
        const AVIndexEntry* const entry = avformat_index_get_entry(stream, i);
        if (entry->size > 0 && entry->pos <= fileBytes - entry->size) ++found;
    }
    return found;
}

LibAvPtr<AVIOContext> ioOf(Reader& reader) {
    constexpr int kBufferBytes = 32 << 10;
    auto* const buffer = static_cast<unsigned char*>(av_malloc(kBufferBytes));
    if (!buffer) return nullptr;
    LibAvPtr<AVIOContext> io(
        avio_alloc_context(buffer, kBufferBytes, 0, &reader, Reader::read, nullptr, Reader::seek));
    if (!io) av_free(buffer);
    return io;
}

/// Opens the container and nothing else that it may point at.
Outcome openContainer(const OpenFile::Shared& file, Track& track) {
    silenceLibAv();
    track.reader = std::make_unique<Reader>(Reader{file});
    track.io = ioOf(*track.reader);
    AVFormatContext* input = avformat_alloc_context();
    if (!track.io || !input) {
        avformat_free_context(input);
        return Outcome::failure(wordsOf(AVERROR(ENOMEM)));
    }
    input->pb = track.io.get();
    AVDictionary* options = nullptr;
    av_dict_set(&options, "protocol_whitelist", "none", 0);
    // A context that does not open is freed by this.
    const int opened = avformat_open_input(&input, "", av_find_input_format("mov"), &options);
    av_dict_free(&options);
    if (opened < 0) return Outcome::failure(wordsOf(opened));
    track.input.reset(input);
    return Done{};
}

Result<Track> openTrack(const OpenFile::Shared& file) {
    using Opened = Result<Track>;
    Track track;
    if (const auto opened = openContainer(file, track); !opened)
        return Opened::failure(opened.error());
    const int found =
        av_find_best_stream(track.input.get(), AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
    if (found < 0) return Opened::failure("The file holds no sound track");
    track.stream = track.input->streams[found];
    const int rate = track.stream->codecpar->sample_rate;
    if (rate <= 0) return Opened::failure("The file's sound track has no sample rate");
    if (rate > kHighestSampleRate)
        return Opened::failure("The file's sound track has a senseless sample rate");
    track.info.sampleRate = rate;
    const std::int64_t told =
        track.stream->duration == AV_NOPTS_VALUE
            ? 0
            : av_rescale_q(track.stream->duration, track.stream->time_base, track.frameTime());
    const std::int64_t packets =
        packetsThatAreThere(track.stream, file->stamp().value_or(FileStamp{}).size);
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
    const auto opened = OpenFile::open(file);
    if (!opened) return Result<AudioFileInfo>::failure(opened.error());
    return readM4aInfo(opened.value());
}

Result<AudioFileInfo> readM4aInfo(const OpenFile::Shared& file) {
    const auto track = openTrack(file);
    if (!track) return Result<AudioFileInfo>::failure(track.error());
    return track.value().info;
}

Result<std::unique_ptr<AudioDecoder>> openM4a(const std::filesystem::path& file) {
    const auto opened = OpenFile::open(file);
    if (!opened) return Result<std::unique_ptr<AudioDecoder>>::failure(opened.error());
    return openM4a(opened.value());
}

Result<std::unique_ptr<AudioDecoder>> openM4a(const OpenFile::Shared& file) {
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
