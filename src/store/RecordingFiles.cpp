#include "store/RecordingFiles.h"

#include <algorithm>
#include <string_view>

#include "store/RecordingModel.h"

namespace sonavault {

namespace {

/// Of the letters that no locale changes.
std::string lowercased(std::string text) {
    for (char& c : text)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return text;
}

}  // namespace

std::optional<std::string> recordingDate(const std::filesystem::path& file) {
    const auto suffix = lowercased(file.extension().string());
    if (suffix != ".m4a" && suffix != ".mp3") return std::nullopt;
    const auto base = file.stem().string();
    if (!base.starts_with(kRecordingPrefix)) return std::nullopt;
    auto date = base.substr(std::string_view(kRecordingPrefix).size());
    if (!isISOdate(date)) return std::nullopt;
    return date;
}

std::optional<std::vector<std::filesystem::path>> entriesOf(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> entries;
    std::error_code error;
    std::filesystem::directory_iterator entry(folder, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error))
        entries.push_back(entry->path());
    if (error) return std::nullopt;
    std::sort(entries.begin(), entries.end());
    return entries;
}

}  // namespace sonavault
