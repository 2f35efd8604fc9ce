#pragma once

#include <memory>
#include <string>

#include "platform/AudioOutput.h"
#include "platform/Clock.h"
#include "platform/Log.h"
#include "review/LoadedDay.h"
#include "review/PlaybackFeeder.h"
#include "review/PlaybackHost.h"
#include "store/PeaksCache.h"
#include "store/RecordingModel.h"

namespace sonavault {

/// Lets the day under review be heard, from anywhere on.
///
/// The playhead runs on the wall clock. Sound that was held up, by a sound server that was away,
/// say, is taken up again where the playhead is.
///
/// Thread: main. Nothing here waits for a sound server, but for setupAudioEngine().
class Playback {
  public:
    /// Sound that lags further behind the playhead is taken up where the playhead is. Units:
    /// seconds
    static constexpr double kLateBySec = 0.5;

    /// A device that takes no longer to open than this skips nothing of the beginning: what is
    /// heard then stays that much behind. Units: seconds
    static constexpr double kOpensWithinSec = 3;

    /// All outlive this object.
    Playback(PlaybackHost& host, LoadedDay& day, PeaksCache& peaks, AudioOutput& output,
             const Clock& clock, Log& log);
    ~Playback();
    Playback(const Playback&) = delete;
    Playback& operator=(const Playback&) = delete;

    /// Opens the loudspeakers, once, at launch. A failure is told in the log alone: each play tries
    /// again. Waits for an answer for no longer than about a second.
    void setupAudioEngine();

    /// Plays from a moment of the day on, up to where the file ends now. Before the day's first
    /// audio, that audio begins at once while the playhead runs on from `from`.
    void startPlayback(DaySeconds from);

    /// The playhead stays where it is.
    void stopPlayback();

    void togglePlayback();

    /// Moves the playhead, taken to the day's ends, and plays on from there when something plays.
    /// What is no number is midnight.
    void jumpTo(DaySeconds position);

    /// Moves the playhead on, and ends playback at the end of the audio. Called at each tick.
    void advancePlayhead();

    bool isPlaying() const { return isPlaying_; }

    /// Where on the day and when the last play began, or was taken up again after the clock was set
    /// to before that. Units: seconds of the day; seconds since 1970
    double playStartFromSec() const { return playStartFromSec_; }
    double playStartHostTime() const { return playStartHostTime_; }

    /// What is sent to the loudspeakers; the floor, -160, while that is silence. Units: dBFS
    float playbackLevelDbL() const { return output_.levels().left; }
    float playbackLevelDbR() const { return output_.levels().right; }
    float playbackLevelDb() const;

  private:
    double now() const { return secondsSince1970(clock_.now()); }
    double endOfAudioSec() const;
    FrameCount frameAt(DaySeconds position) const;
    void refreshWaveformIfLive();
    void feedFrom(FrameCount frame, double playheadSec);
    void catchUp();
    void silence();

    PlaybackHost& host_;
    LoadedDay& day_;
    PeaksCache& peaks_;
    AudioOutput& output_;
    const Clock& clock_;
    Log& log_;

    bool isPlaying_ = false;
    double playStartFromSec_ = 0;
    double playStartHostTime_ = 0;

    /// What is being fed: where it begins, in the file and on the day, and how far it was heard at
    /// the last tick.
    std::shared_ptr<AudioOutputSound> sound_;
    FrameCount soundFromFrame_ = 0;
    double soundFromSec_ = 0;
    FrameCount heardFrames_ = 0;
    double openingSec_ = 0;  // how far the playhead had run when the first frame was heard

    PlaybackFeeder feeder_;
};

}  // namespace sonavault
