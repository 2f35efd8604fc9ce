#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <vector>

#include "platform/AppendFile.h"
#include "platform/DiskFlusher.h"
#include "platform/Log.h"
#include "platform/Result.h"

struct lame_global_struct;

namespace sonavault {

/// Float samples in, MP3 frames out at the end of the day's file.
///
/// The stream is plain constant-bit-rate MPEG audio without a header frame or a tag, so that a
/// later run can simply add frames behind it. The library chooses the file's own sample rate by the
/// bit rate: 24 kbps from 22,050 Hz gives 16,000 Hz.
///
/// Calling order: create(), open(), any number of encodeMono(), close(). Thread: one at a time; no
/// lock inside. Owns: the library's state and the file, both closed at destruction.
class LAMEEncoder {
  public:
    /// Errors: nothing, when the library refuses the settings.
    static std::unique_ptr<LAMEEncoder> create(int sampleRate, int channels, int bitrateKbps,
                                               Log& log);

    ~LAMEEncoder();
    LAMEEncoder(const LAMEEncoder&) = delete;
    LAMEEncoder& operator=(const LAMEEncoder&) = delete;

    /// Continues `file`, or begins it. Errors: the system's words.
    Outcome open(const std::filesystem::path& file, DiskFlusher& flusher);

    /// Encodes and writes. The library hands out a frame in pieces, as it needs the frame's space
    /// for later sound; the file gets whole frames, so that neither a kill nor a full disk tears
    /// one: other programs lose up to six frames around it. What a full disk does not take is lost;
    /// the stream goes on behind it.
    void encodeMono(std::span<const float> samples);

    /// Flushes the library's last frame, which ends in padding, and closes the file. Does nothing
    /// when not open, and writes nothing when nothing was encoded: a start that failed leaves no
    /// sound.
    void close();

  private:
    LAMEEncoder(lame_global_struct* gfp, Log& log);
    void ensureBuf(std::size_t frames);
    void takeEncoded(int bytes);
    void writeFirst(std::size_t bytes);

    lame_global_struct* gfp_;
    Log& log_;
    std::unique_ptr<AppendFile> file_;
    std::vector<std::uint8_t> outBuf_;
    std::vector<std::uint8_t> unwritten_;
    std::vector<float> tamed_;
    bool hasEncoded_ = false;
};

}  // namespace sonavault
