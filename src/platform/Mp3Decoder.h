#pragma once

#include <memory>
#include <vector>

#include "platform/AudioDecoder.h"
#include "platform/FileWindow.h"
#include "platform/FrameCodec.h"
#include "platform/Mp3FrameIndex.h"

namespace sonavault {

/// Decodes a day's MP3 as far as an index of it goes.
class Mp3Decoder final : public AudioDecoder {
  public:
    /// So many frames are decoded ahead of a position, unheard. A frame takes bits from up to 511
    /// bytes of sound before it, which in the smallest frames of one channel are 23 frames, and
    /// overlaps the one before.
    static constexpr std::int64_t kPreRollFrames = 32;

    Mp3Decoder(std::shared_ptr<const Mp3FrameIndex> index, OpenFile::Shared file,
               std::unique_ptr<FrameCodec> codec);

    double sampleRate() const override { return index_->info().sampleRate; }
    int channels() const override { return index_->channels(); }
    FrameCount length() const override { return length_; }
    void seek(FrameCount position) override;
    DecodedAudio next(FrameCount atMost) override;

  private:
    void goTo(Mp3FrameIndex::Place place);
    void decodeFrame();
    const AVFrame* decodeBytes();
    void present(const AVFrame* frame, FrameCount frames);

    std::shared_ptr<const Mp3FrameIndex> index_;
    FileWindow file_;
    std::unique_ptr<FrameCodec> codec_;
    const FrameCount length_;

    FrameCount position_ = 0;     // of what comes next
    Mp3FrameIndex::Place place_;  // the frame to decode next
    std::int64_t offset_ = 0;     // where in the file it is; negative when it can't be found
    DecodedAudio decoded_;        // what is left of the frame decoded last
    std::vector<float> stretched_[2];
};

/// Opens the file of that name. Errors: words, when it can't be opened any more.
Result<std::unique_ptr<AudioDecoder>> openMp3(std::shared_ptr<const Mp3FrameIndex> index);

/// `file`: the one that the index is of, also when it has lost its name since.
Result<std::unique_ptr<AudioDecoder>> openMp3(std::shared_ptr<const Mp3FrameIndex> index,
                                              OpenFile::Shared file);

}  // namespace sonavault
