#include "pastdays/Song.h"

#include <algorithm>

#include "automation/Random.h"
#include "pastdays/Note.h"

namespace sonavault::pastdays {
namespace {

using automation::between;
using automation::oneOf;

constexpr int kStepsPerBar = 8;
constexpr int kStepsPerPhrase = 4 * kStepsPerBar;
constexpr int kRest = -100;

const Timbre kKeys({1, 0.4, 0.2, 0.1, 0.05});
const Timbre kBass({1, 0.5, 0.15, 0, 0});
const Timbre kLead({1, 0, 0.35, 0, 0.15});
const Timbre kDrum({1, 0, 0, 0, 0});

// Semitones above the key for the bass and the three notes of the chord, four bars each.
using Bars = std::array<std::array<int, 4>, 4>;
constexpr std::array<Bars, 4> kProgressions{{
    {{{-24, 0, 4, 7}, {-15, -3, 0, 4}, {-19, -7, -3, 0}, {-17, -5, -1, 2}}},
    {{{-24, 0, 4, 7}, {-17, -5, -1, 2}, {-15, -3, 0, 4}, {-19, -7, -3, 0}}},
    {{{-15, -3, 0, 4}, {-19, -7, -3, 0}, {-24, 0, 4, 7}, {-17, -5, -1, 2}}},
    {{{-22, -10, -7, -3}, {-17, -5, -1, 2}, {-24, 0, 4, 7}, {-24, 0, 4, 7}}},
}};

// Semitones above the key that fit every chord.
constexpr std::array<int, 8> kScale{0, 2, 4, 7, 9, 12, 14, 16};

/// A part of the song, up to a share of its length.
struct Section {
    double end;
    double strength;
    bool melody;
    bool drums;
    bool chorus;
};

constexpr std::array<Section, 8> kForm{{{0.07, 0.6, false, false, false},
                                        {0.26, 0.75, true, true, false},
                                        {0.40, 1.0, true, true, true},
                                        {0.56, 0.8, true, true, false},
                                        {0.70, 1.0, true, true, true},
                                        {0.78, 0.5, true, false, false},
                                        {0.92, 1.0, true, true, true},
                                        {1.01, 0.8, false, true, true}}};

const Section& sectionAt(double share) {
    return *std::find_if(kForm.begin(), kForm.end() - 1,
                         [share](const Section& section) { return share < section.end; });
}

/// Plays a song step by step, eight steps a bar.
class Band {
  public:
    Band(unsigned seed, Mood mood)
        : random_(seed * 2654435761U + 17),
          quiet_(mood == Mood::quiet),
          stepLength_(samplesIn(30 / static_cast<double>(quiet_ ? between(random_, 66, 84)
                                                                : between(random_, 98, 132)))),
          key_(oneOf(random_, 12) - 9),
          bars_(kProgressions[static_cast<std::size_t>(oneOf(random_, kProgressions.size()))]) {
        writePhrase(verse_, 0);
        writePhrase(chorus_, 2);
    }

    Samples play(double seconds) {
        Samples samples(samplesIn(seconds));
        std::size_t at = 0;
        for (int step = 0; at < samples.size(); ++step) {
            const Section& section =
                sectionAt(static_cast<double>(at) / static_cast<double>(samples.size()));
            strikeStep(step, section);
            const std::size_t end = std::min(at + stepLength_, samples.size());
            for (; at < end; ++at) samples[at] = static_cast<float>(section.strength) * next();
        }
        return samples;
    }

  private:
    using Phrase = std::array<int, kStepsPerPhrase>;

    // A phrase says the same twice and then something else, as tunes do.
    void writePhrase(Phrase& phrase, int lowest) {
        int degree = lowest + 2;
        for (int step = 0; step < kStepsPerPhrase; ++step) {
            auto& note = phrase[static_cast<std::size_t>(step)];
            if (step / kStepsPerBar == 2) {
                note = phrase[static_cast<std::size_t>(step - 2 * kStepsPerBar)];
                continue;
            }
            degree = std::clamp(degree + oneOf(random_, 3) - 1, lowest, lowest + 5);
            const bool sounds = step % 2 == 0 ? oneOf(random_, 4) > 0 : oneOf(random_, 3) == 0;
            note = sounds ? kScale[static_cast<std::size_t>(degree)] : kRest;
        }
    }

    void strikeStep(int step, const Section& section) {
        const int inBar = step % kStepsPerBar;
        const auto& bar = bars_[static_cast<std::size_t>(step / kStepsPerBar) % bars_.size()];
        if (inBar % (quiet_ ? 4 : 2) == 0)
            for (std::size_t i = 0; i < chord_.size(); ++i)
                chord_[i].strike(key_ + bar[i + 1], 0.35, quiet_ ? 0.7 : 0.35);
        if (inBar % (quiet_ ? 4 : 2) == 0 || inBar == 7)
            bass_.strike(key_ + bar[0], 0.55, quiet_ ? 0.5 : 0.25);
        const int note =
            (section.chorus ? chorus_ : verse_)[static_cast<std::size_t>(step % kStepsPerPhrase)];
        if (section.melody && note != kRest) lead_.strike(key_ + note, 0.5, 0.25);
        if (section.drums) strikeDrums(inBar);
    }

    void strikeDrums(int inBar) {
        if (inBar == 0 || (!quiet_ && inBar % 4 == 0)) kick_.strike(-37, quiet_ ? 0.5 : 0.9, 0.06);
        if (inBar % 4 == 2) snare_ = quiet_ ? 0.12F : 0.4F;
        hat_ = inBar % 2 == 0 ? 0.08F : 0.16F;
    }

    float next() {
        float sound = bass_.next(kBass) + lead_.next(kLead) + kick_.next(kDrum);
        for (Note& note : chord_) sound += note.next(kKeys);
        const float noise = between(random_, -1, 1);
        sound += snare_ * noise + hat_ * (noise - lastNoise_);
        lastNoise_ = noise;
        snare_ *= kSnareDecay;
        hat_ *= kHatDecay;
        return sound;
    }

    static constexpr float kSnareDecay = 0.9993F;
    static constexpr float kHatDecay = 0.9975F;

    std::mt19937 random_;
    const bool quiet_;
    const std::size_t stepLength_;
    const int key_;
    const Bars& bars_;
    Phrase verse_{};
    Phrase chorus_{};

    std::array<Note, 3> chord_;
    Note bass_;
    Note lead_;
    Note kick_;
    float snare_ = 0;
    float hat_ = 0;
    float lastNoise_ = 0;
};

}  // namespace

Samples song(unsigned seed, Mood mood, double seconds) {
    Samples samples = Band(seed, mood).play(seconds);
    level(samples, mood == Mood::quiet ? -21 : -14);
    fade(samples, 0.02, std::min(6.0, seconds / 3));
    return samples;
}

Samples bed(unsigned seed, double seconds) {
    Samples samples = Band(seed, Mood::lively).play(seconds);
    fade(samples, 0.05, 0.05);
    return samples;
}

Samples jingle(unsigned seed, double seconds) {
    constexpr int kNotes = 8;
    Samples samples(samplesIn(seconds));
    const std::size_t step = samples.size() / (2 * kNotes);
    std::array<Note, kNotes> notes;
    for (std::size_t at = 0; at < samples.size(); ++at) {
        const std::size_t due = step == 0 ? 0 : at / step;
        if (step > 0 && at % step == 0 && due < notes.size())
            notes[due].strike(kScale[due] + static_cast<int>(seed % 7), 0.6, seconds / 5);
        for (Note& note : notes) samples[at] += note.next(kKeys);
    }
    level(samples, -15);
    fade(samples, 0.01, seconds / 4);
    return samples;
}

}  // namespace sonavault::pastdays
