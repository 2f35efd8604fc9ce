#pragma once

#include <filesystem>
#include <memory>

#include "platform/AudioDecoder.h"
#include "platform/AudioFileInfo.h"
#include "platform/OpenFile.h"

namespace sonavault {

// The .m4a days of earlier versions: a container with a table of its packets. They are read, never
// written.

/// Whether the name is that of a legacy day, whatever the case of its suffix.
bool isM4aName(const std::filesystem::path& file);

/// How long the file says it is, without what its encoder put before the first sound. More than its
/// packets can hold is not believed.
///
/// Thread: any. Errors: words, when the file can't be read or holds no sound track.
Result<AudioFileInfo> readM4aInfo(const std::filesystem::path& file);
Result<AudioFileInfo> readM4aInfo(const OpenFile::Shared& file);

/// A seek gives the sound of the place, but where the sound holds noise that a decoder makes up,
/// not the same noise.
///
/// Errors: as readM4aInfo(), and when there is no decoder for the track.
Result<std::unique_ptr<AudioDecoder>> openM4a(const std::filesystem::path& file);
Result<std::unique_ptr<AudioDecoder>> openM4a(const OpenFile::Shared& file);

}  // namespace sonavault
