#include "store/AudioLengthCache.h"

#include <QCryptographicHash>
#include <charconv>

#include "platform/AtomicFile.h"
#include "platform/FileQueries.h"
#include "platform/Format.h"
#include "platform/ReadFile.h"

namespace sonavault {

namespace {

// The first line is the digest of all that follows, so that no damage can pass for a length. Then
// comes a line each: size, time of change, inode, seconds, path.
constexpr auto kFileName = "audio-lengths";
constexpr std::uintmax_t kMostBytes = std::uintmax_t{8} << 20;
constexpr double kLongest = 1e9;  // Units: seconds

std::string digestOf(std::string_view text) {
    const QByteArrayView bytes(text.data(), static_cast<qsizetype>(text.size()));
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex().toStdString();
}

/// Takes a number and the space behind it from the front of `line`.
template <class Number>
bool takeNumber(std::string_view& line, Number& number) {
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), number);
    if (error != std::errc{} || end == line.data() + line.size() || *end != ' ') return false;
    line.remove_prefix(static_cast<std::size_t>(end - line.data()) + 1);
    return true;
}

std::string_view takeLine(std::string_view& text) {
    const auto end = text.find('\n');
    const auto line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return line;
}

}  // namespace

AudioLengthCache::AudioLengthCache(const std::filesystem::path& folder)
    : file_(folder / kFileName) {
    if (fileSize(file_) > kMostBytes) return;
    if (const auto content = readWholeFile(file_)) entries_ = decode(content.value());
}

AudioLengthCache::Entries AudioLengthCache::decode(std::string_view content) {
    Entries entries;
    const auto digest = takeLine(content);
    if (digest != digestOf(content)) return entries;
    while (!content.empty() && entries.size() < kMostEntries) {
        auto line = takeLine(content);
        Entry entry;
        if (!takeNumber(line, entry.stamp.size) || !takeNumber(line, entry.stamp.modifiedNs) ||
            !takeNumber(line, entry.stamp.inode) || !takeNumber(line, entry.seconds))
            continue;
        if (entry.seconds >= 0 && entry.seconds <= kLongest)
            entries.insert_or_assign(std::string(line), entry);
    }
    return entries;
}

std::string AudioLengthCache::encode() const {
    std::string lines;
    for (const auto& [audio, entry] : entries_) {
        // Such a path would read back as another.
        if (audio.find('\n') != std::string::npos) continue;
        lines += std::to_string(entry.stamp.size) + ' ' + std::to_string(entry.stamp.modifiedNs) +
                 ' ' + std::to_string(entry.stamp.inode) + ' ' + shortest(entry.seconds) + ' ' +
                 audio + '\n';
    }
    return digestOf(lines) + '\n' + lines;
}

std::optional<double> AudioLengthCache::find(const std::filesystem::path& audio,
                                             const FileStamp& stamp) {
    const auto found = entries_.find(audio.string());
    if (found == entries_.end()) return std::nullopt;
    found->second.asked = true;
    if (found->second.stamp != stamp) return std::nullopt;
    return found->second.seconds;
}

void AudioLengthCache::put(const std::filesystem::path& audio, const FileStamp& stamp,
                           double seconds) {
    const auto name = audio.string();
    if (!entries_.contains(name) && entries_.size() >= kMostEntries) return;
    entries_.insert_or_assign(name, Entry{stamp, seconds, true});
    changed_ = true;
}

void AudioLengthCache::forgetUnasked(const std::filesystem::path& folder) {
    const auto forgotten = std::erase_if(entries_, [&folder](const auto& entry) {
        return !entry.second.asked && std::filesystem::path(entry.first).parent_path() == folder;
    });
    if (forgotten > 0) changed_ = true;
    for (auto& [audio, entry] : entries_) entry.asked = false;
}

void AudioLengthCache::save() {
    if (!changed_) return;
    changed_ = false;  // a file that can't be written now can hardly be at the next try
    std::error_code ignored;
    std::filesystem::create_directories(file_.parent_path(), ignored);
    const auto written = writeFileAtomically(file_, encode());
    static_cast<void>(written);
}

}  // namespace sonavault
