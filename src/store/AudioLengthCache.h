#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "platform/FileStamp.h"

namespace sonavault {

/// The lengths of audio files that were once established, for as long as the files stay as they
/// were: across launches, in one small file.
///
/// That file may be deleted or damaged at any time; it is then as if nothing were known. Failures
/// to read or write it are passed over.
///
/// Thread: one at a time.
class AudioLengthCache {
  public:
    /// No more lengths than these are kept: eleven years of days.
    static constexpr std::size_t kMostEntries = 4096;

    /// `folder`: where the file lies, or will once there is something to keep; it is made then.
    explicit AudioLengthCache(const std::filesystem::path& folder);

    /// Units: seconds. Nothing when no length is known of that file with that stamp.
    std::optional<double> find(const std::filesystem::path& audio, const FileStamp& stamp);

    /// Takes the place of what was known of a file of that name.
    void put(const std::filesystem::path& audio, const FileStamp& stamp, double seconds);

    /// Forgets the files of `folder` that nobody has found or put since the last call: after the
    /// whole folder was gone through, those that are no longer there.
    void forgetUnasked(const std::filesystem::path& folder);

    /// Writes the file if anything has changed since it was read or written.
    void save();

    const std::filesystem::path& file() const { return file_; }

  private:
    struct Entry {
        FileStamp stamp;
        double seconds = 0;
        bool asked = false;
    };
    using Entries = std::map<std::string, Entry>;  // by path

    static Entries decode(std::string_view content);
    std::string encode() const;

    std::filesystem::path file_;
    Entries entries_;
    bool changed_ = false;
};

}  // namespace sonavault
