#include "review/Playback.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace sonavault {

namespace {

constexpr auto kPlayTitle = "▶";
constexpr auto kStopTitle = "⏸";

// How far before its end the day can be jumped to. Units: seconds
constexpr double kLeastLeftSec = 0.01;

}  // namespace

Playback::Playback(PlaybackHost& host, LoadedDay& day, PeaksCache& peaks, AudioOutput& output,
                   const Clock& clock, Log& log)
    : host_(host), day_(day), peaks_(peaks), output_(output), clock_(clock), log_(log) {}

Playback::~Playback() {
    output_.stop();
}

void Playback::setupAudioEngine() {
    const auto started = output_.start();
    if (!started) log_.line("Sonavault: Failed to start audio engine: " + started.error());
}

void Playback::startPlayback(DaySeconds from) {
    if (!day_.loadedFile()) return log_.line("Sonavault: No file loaded");
    output_.stop();
    day_.openFileAfresh();
    refreshWaveformIfLive();
    if (day_.loadedFile()->frames == 0) {
        silence();
        return log_.line("Sonavault: At end of file — nothing to play");
    }
    feedFrom(frameAt(from), from.value);
    playStartFromSec_ = from.value;
    playStartHostTime_ = now();
    day_.setPlayheadSec(from.value);
    isPlaying_ = true;
    host_.setPlayButtonTitle(kStopTitle);
}

void Playback::stopPlayback() {
    silence();
    isPlaying_ = false;
    host_.setPlayButtonTitle(kPlayTitle);
}

void Playback::togglePlayback() {
    if (isPlaying_)
        stopPlayback();
    else
        startPlayback({day_.playheadSec()});
}

void Playback::jumpTo(DaySeconds position) {
    // What is no number has no place among its limits.
    const double wanted = std::isnan(position.value) ? 0 : position.value;
    const DaySeconds clamped{
        std::clamp(wanted, 0.0, LoadedDay::timelineDuration() - kLeastLeftSec)};
    day_.setPlayheadSec(clamped.value);
    if (isPlaying_) startPlayback(clamped);
    host_.updatePlayheadVisuals();
}

void Playback::advancePlayhead() {
    if (!isPlaying_) return;
    const double moment = now();
    // A clock that was set back must not take the listener to before the beginning of the play.
    if (moment < playStartHostTime_) {
        playStartFromSec_ = day_.playheadSec();
        playStartHostTime_ = moment;
    }
    const double position = playStartFromSec_ + (moment - playStartHostTime_);
    const double end = endOfAudioSec();
    day_.setPlayheadSec(std::min(position, end));
    if (position >= end)
        stopPlayback();
    else
        catchUp();
    host_.updatePlayheadVisuals();
}

float Playback::playbackLevelDb() const {
    const auto levels = output_.levels();
    return std::max(levels.left, levels.right);
}

double Playback::endOfAudioSec() const {
    const auto file = day_.loadedFile();
    if (!file) return LoadedDay::timelineDuration();
    return onDay({file->durationSec()}, day_.currentRecordingOffset()).value;
}

/// The file's frame for a moment of the day; its last one beyond its end.
FrameCount Playback::frameAt(DaySeconds position) const {
    const auto file = *day_.loadedFile();
    const double fileSec = std::max(0.0, inFile(position, day_.currentRecordingOffset()).value);
    const auto last = static_cast<double>(file.frames - 1);
    return static_cast<FrameCount>(std::min(fileSec * file.sampleRate, last));
}

/// What today's file has gained is seen as well as heard.
void Playback::refreshWaveformIfLive() {
    const auto& audio = day_.loadedFileURL();
    if (audio && host_.lastRecordingURL() == audio) peaks_.loadOrGeneratePeaks(*audio);
}

void Playback::feedFrom(FrameCount frame, double playheadSec) {
    soundFromFrame_ = frame;
    soundFromSec_ = playheadSec;
    heardFrames_ = 0;
    openingSec_ = 0;
    sound_ = std::make_shared<AudioOutputSound>(day_.loadedFile()->sampleRate);
    feeder_.feed(day_.playbackSource(), frame, sound_);
    output_.play(sound_);
}

void Playback::catchUp() {
    if (!sound_) return;
    const FrameCount heard = sound_->taken();
    // While nothing is heard at all, there is nothing to be gained.
    const FrameCount before = std::exchange(heardFrames_, heard);
    if (before == heard) return;
    const double rate = sound_->sampleRate;
    const double playedSec = day_.playheadSec() - soundFromSec_;
    const double lateSec = playedSec - static_cast<double>(heard) / rate;
    if (before == 0 && lateSec <= kOpensWithinSec) openingSec_ = std::max(0.0, lateSec);
    if (lateSec - openingSec_ < kLateBySec) return;
    const FrameCount frame = soundFromFrame_ + static_cast<FrameCount>(playedSec * rate);
    if (frame < day_.loadedFile()->frames) feedFrom(frame, day_.playheadSec());
}

void Playback::silence() {
    output_.stop();
    feeder_.stop();
    sound_.reset();
}

}  // namespace sonavault
