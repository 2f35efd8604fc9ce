#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "life/AirEvidence.h"

namespace sonavault::testing {

/// How far from its moment a second may stand. The recorder lets the file fall 50 ms behind before
/// it fills it up; a sanitizer, where it is built in, holds every buffer up for a while.
/// Units: seconds
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr double kToleranceSec = 0.100;
#else
inline constexpr double kToleranceSec = 0.060;
#endif

/// A stretch of time in which a day's recording surely got its air and was not catching up.
/// Moments are the station's, in seconds since 1970.
struct AirStretch {
    double from = 0;
    double to = 0;
    /// How far the file was ahead of the clock, because the clock had been set back: audio is never
    /// dropped for that.
    double ahead = 0;
    /// What is not known of `ahead`.
    double slack = 0;
    /// How much digital silence has to stand between the stretch before and this one.
    double silentBefore = 0;
    /// Its seconds tell themselves by chords; else there is only sound.
    bool tellsTime = true;
};

/// A row that a day's log has to have, or may have.
struct OwedRow {
    std::string text;        ///< the whole row with its newline, or what it contains
    bool isWhole = true;     ///< `text` is all of it
    bool mayBeLost = false;  ///< it was on its way when the program was killed
    std::string otherDay;    ///< a date whose log may have it instead, near midnight
};

/// How one run of the program used the machine, from the first look to the last.
struct ProgramRun {
    double seconds = 0;
    long firstKilobytes = 0;
    long lastKilobytes = 0;
    int firstDescriptors = 0;
    int lastDescriptors = 0;
};

/// What a run may take on: enough for what a program needs in its first minute, and far less than a
/// leak of a buffer or a row would come to. What a sanitizer keeps of its own comes on top.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr long kMostGrowthKilobytes = 160 * 1024;
#else
inline constexpr long kMostGrowthKilobytes = 16 * 1024;
#endif
inline constexpr int kMostMoreDescriptors = 3;

// Each gives what is wrong, in words, with the moments at which it is; empty when all is well.

/// Each second of each stretch stands in the file within kToleranceSec of its moment, there is no
/// hole in a stretch, and between two stretches there is the silence that the outage asks for.
std::vector<std::string> complaintsAboutAir(const AirEvidence& evidence,
                                            const std::vector<AirStretch>& stretches);

/// The log is whole rows under its header, each owed one once and no other.
std::vector<std::string> complaintsAboutLog(const std::string& log,
                                            const std::vector<OwedRow>& owed);

/// The file is whole MP3 frames of one kind from its first byte to its last.
std::vector<std::string> complaintsAboutStream(const std::string& bytes);

/// The manifest of a day tells the moment of frame 0 with its milliseconds, in that day by the
/// local clock, and where that lies in the day.
std::vector<std::string> complaintsAboutManifest(const std::filesystem::path& manifest,
                                                 const std::string& date);

/// The folder holds the files of these dates and nothing else.
std::vector<std::string> complaintsAboutFolder(const std::filesystem::path& folder,
                                               const std::set<std::string>& dates);

/// No run has grown by more than it may.
std::vector<std::string> complaintsAboutUse(const std::vector<ProgramRun>& runs);

/// How far the seconds of a day stand from their moments.
struct Accuracy {
    /// The worst of the seconds whose moment is known without slack. Units: seconds; positive when
    /// late
    double earliest = 0;
    double latest = 0;
    long long sharp = 0;  ///< seconds known without slack that were found
    long long found = 0;  ///< all that were found
};
Accuracy accuracyOf(const AirEvidence& evidence, const std::vector<AirStretch>& stretches);

/// A moment as the clock in UTC shows it: "2026-03-29 00:59:58.250".
std::string utcText(double moment);

}  // namespace sonavault::testing
