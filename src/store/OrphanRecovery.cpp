#include "store/OrphanRecovery.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "store/RecordingFiles.h"
#include "store/RecordingModel.h"

namespace sonavault {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kStubMark = ".m4a.sb-";
constexpr std::string_view kStubPart = ".sb-";

struct Stub {
    fs::path url;
    std::uint64_t size = 0;  ///< 0 also when it can't be read
};

/// The stubs of each file that they were to become.
using StubsByBase = std::map<std::string, std::vector<Stub>>;

bool isStub(const std::string& name) {
    return name.find(kStubMark) != std::string::npos;
}

std::optional<std::uint64_t> sizeOf(const fs::path& file) {
    std::error_code unreadable;
    const auto size = fs::file_size(file, unreadable);
    if (unreadable) return std::nullopt;
    return size;
}

std::string baseOf(const std::string& stubName) {
    std::string base = stubName.substr(0, stubName.find(kStubMark) + kStubMark.size());
    for (auto at = base.find(kStubPart); at != std::string::npos; at = base.find(kStubPart, at))
        base.erase(at, kStubPart.size());
    return base;
}

/// Gives a file another name that nothing else has: the system's own renaming would replace it.
std::error_code moveTo(const fs::path& file, const fs::path& target) {
    std::error_code error;
    if (fs::exists(fs::symlink_status(target, error)))
        return std::make_error_code(std::errc::file_exists);
    fs::rename(file, target, error);
    return error;
}

/// One folder's pass.
class Recovery {
  public:
    Recovery(fs::path folder, std::string today, Log& log)
        : folder_(std::move(folder)), today_(std::move(today)), log_(log) {}

    void promoteStubs() const {
        for (auto& [base, stubs] : findStubs()) {
            // Today's are swept, never promoted.
            if (base.find(kRecordingPrefix + today_ + ".m4a") != std::string::npos) continue;
            // A file that is missing is not made again from its stubs.
            const bool isEmpty = sizeOf(folder_ / base) == 0U;
            if (isEmpty)
                promoteLargest(base, stubs);
            else
                keepAside(base, stubs);
        }
    }

    void sweep() const {
        for (const auto& entry : entriesOf(folder_).value_or(std::vector<fs::path>{})) {
            const auto name = entry.filename().string();
            if (isStub(name))
                remove(entry, "swept stale temp ");
            else if (isEmptyAudio(entry, name))
                remove(entry, "swept 0-byte stub ");
        }
    }

  private:
    StubsByBase findStubs() const {
        StubsByBase stubs;
        for (const auto& entry : entriesOf(folder_).value_or(std::vector<fs::path>{})) {
            const auto name = entry.filename().string();
            if (isStub(name)) stubs[baseOf(name)].push_back({entry, sizeOf(entry).value_or(0)});
        }
        return stubs;
    }

    void promoteLargest(const std::string& base, std::vector<Stub> stubs) const {
        std::stable_sort(stubs.begin(), stubs.end(),
                         [](const Stub& one, const Stub& other) { return one.size > other.size; });
        const Stub largest = stubs.front();
        if (largest.size == 0) return;

        std::error_code ignored;
        fs::remove(folder_ / base, ignored);
        const auto name = largest.url.filename().string();
        if (const auto error = moveTo(largest.url, folder_ / base)) {
            log_.line("Sonavault recovery: rename failed for " + name + ": " + error.message());
            return;
        }
        log_.line("Sonavault recovery: " + name + " → " + base + " (" +
                  std::to_string(largest.size) + " bytes)");
        stubs.erase(stubs.begin());
        keepAside(base, stubs);
    }

    void keepAside(const std::string& base, const std::vector<Stub>& stubs) const {
        for (std::size_t i = 0; i < stubs.size(); ++i)
            moveTo(stubs[i].url, folder_ / (base + ".orphan-" + std::to_string(i) + ".bak"));
    }

    static bool isEmptyAudio(const fs::path& entry, const std::string& name) {
        return name.starts_with(kRecordingPrefix) &&
               (name.ends_with(".m4a") || name.ends_with(".mp3")) && sizeOf(entry) == 0U;
    }

    /// A folder with something in it stays: no recording is one, and nobody was asked.
    void remove(const fs::path& entry, const char* what) const {
        std::error_code error;
        if (fs::remove(entry, error))
            log_.line(std::string("Sonavault recovery: ") + what + entry.filename().string());
    }

    const fs::path folder_;
    const std::string today_;
    Log& log_;
};

}  // namespace

void recoverOrphanedRecordings(const StationFolder& station, const Clock& clock, Log& log) {
    const auto folder = station.recordingsFolder();
    if (!folder) return;
    const Recovery recovery(*folder, todayDateString(clock), log);
    recovery.promoteStubs();
    recovery.sweep();
}

}  // namespace sonavault
