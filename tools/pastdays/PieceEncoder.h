#pragma once

#include <memory>

#include "pastdays/EncodedSound.h"
#include "pastdays/Samples.h"
#include "platform/Result.h"

namespace sonavault::pastdays {

/// Compresses one piece of sound.
///
/// A stretch of a day that was encoded in one go can't be repeated or moved, for its frames borrow
/// room from those before them. A piece from an encoder of its own borrows nothing.
class PieceEncoder {
  public:
    virtual ~PieceEncoder() = default;

    /// Called once. Thread: any. Errors: words.
    virtual Result<EncodedSound> encode(const Samples& samples) = 0;
};

/// How a day's sound is compressed.
class SoundFormat {
  public:
    virtual ~SoundFormat() = default;

    /// How long each frame sounds.
    virtual double frameSec() const = 0;

    /// Thread: one; the libraries fill tables of theirs here. Errors: words.
    virtual Result<std::unique_ptr<PieceEncoder>> makeEncoder() = 0;
};

}  // namespace sonavault::pastdays
