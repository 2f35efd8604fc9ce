// A station's life: everything that befalls a recorder in years, in minutes, and an account of
// every second of it.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <set>

#include "life/LifeCalendar.h"
#include "life/LifeFaults.h"
#include "platform/LocalTime.h"
#include "store/RecordingManifest.h"

namespace sonavault::testing {
namespace {

using Faults = std::vector<LifeFault>;

// More than this of a life can't be left untold, or it proves nothing.
constexpr double kMostExcused = 0.1;

// Whole seconds that no fault touches, of all the air that tells its time: a stretch of three
// seconds holds two.
constexpr double kLeastFound = 0.65;

unsigned chosenSeed() {
    if (const char* chosen = std::getenv("SONAVAULT_LIFE_SEED"))
        return static_cast<unsigned>(std::strtoul(chosen, nullptr, 10));
    return std::random_device{}();
}

double chosenMinutes() {
    const char* chosen = std::getenv("SONAVAULT_LIFE_MINUTES");
    return chosen ? std::strtod(chosen, nullptr) : 5;
}

class StationLife : public ::testing::Test {
  protected:
    void begin(unsigned seed) {
        std::cout << "SONAVAULT_LIFE_SEED=" << seed << std::endl;
        const char* zone = seed % 2 == 0 ? "Europe/Berlin" : "America/New_York";
        station_ = std::make_unique<LivingStation>(seed, zone);
        station_->startHub();
        station_->startAutomation();
    }

    /// What befalls the station around each of the five moments of a round: the recorder is killed
    /// around the first three, and lives through the others.
    std::vector<std::pair<Faults, Faults>> plan() {
        Faults deadly{kKill, kKill, kKill, kKill, kKill, kDrop, kDrop, kSenderDies, kMarkerDrop};
        Faults lasting{kDrop, kSenderDies, kStall, kStall, kHubDies, kFullDisk, kMarkerDrop, kDrop};
        Faults clock{kStepAhead, kStepBack, kStepBack, kStepAhead, kStepBack};
        for (Faults* deck : {&deadly, &lasting, &clock})
            std::shuffle(deck->begin(), deck->end(), station_->random());
        std::vector<std::pair<Faults, Faults>> chapters(5);
        for (std::size_t i = 0; i < chapters.size(); ++i) {
            Faults& deck = i < 3 ? deadly : lasting;
            const std::size_t share = i < 3 ? 3 : 4;
            auto& [before, after] = chapters[i];
            after = {clock[i], kSleep};
            for (std::size_t n = 0; n < share; ++n) {
                (n == 0 ? before : after).push_back(deck.back());
                deck.pop_back();
            }
            std::shuffle(after.begin(), after.end(), station_->random());
        }
        return chapters;
    }

    void suffer(const Faults& faults) {
        for (const auto& fault : faults) {
            station_->live(station_->between(2, 3.5));
            station_->note(fault.name);
            fault.strike(*station_);
        }
    }

    void liveThrough(const BigMoment& moment, const std::pair<Faults, Faults>& faults) {
        constexpr double kLead = 25;
        station_->note(moment.name);
        if (station_->isRunning()) {
            moveToDay(*station_, moment.at - kLead);
        } else {
            station_->setClock(moment.at - kLead);
            station_->launch();
            station_->settleInNewDay(0);
        }
        suffer(faults.first);
        station_->live(1);
        if (moment.at - station_->now() > 8) {
            station_->note("the clock is put shortly before " + moment.name);
            stepClock(*station_, std::lround(moment.at - 6 - station_->now()));
        }
        const auto from = station_->program().lineCount();
        station_->live(std::max(0.0, moment.at - station_->now()) + 0.4);
        if (moment.kind == BigMoment::Kind::midnight) {
            EXPECT_NEAR(station_->followRollover(from) - moment.at, 1.25, 0.25)
                << "the change of files\n"
                << station_->journal().last(10);
        }
        station_->note("past " + moment.name);
        station_->live(3);
        suffer(faults.second);
    }

    void liveRound(int round) {
        auto moments = bigMoments(round, station_->random());
        std::shuffle(moments.begin(), moments.end(), station_->random());
        const auto faults = plan();
        for (std::size_t i = 0; i < moments.size(); ++i) {
            liveThrough(moments[i], faults[i]);
            if (i == 2) liveOnLineInput(*station_, quietNoon(round));
        }
    }

    /// `about`: a day's file, whose date is looked for in the journal, or what else is meant.
    void report(const std::string& about, const std::vector<std::string>& complaints) {
        std::string all;
        for (std::size_t i = 0; i < complaints.size() && i < 20; ++i) all += complaints[i] + "\n";
        if (!complaints.empty())
            ADD_FAILURE() << about << ": " << complaints.size() << " complaints\n"
                          << all << "the journal of that day:\n"
                          << journalOf(about) << "what the recorder said: " << station_->logFile();
    }

    std::string journalOf(const std::string& file) {
        const auto& days = station_->air().days();
        const auto day = days.find(file.substr(std::min<std::size_t>(10, file.size()), 10));
        if (day == days.end() || day->second.empty()) return station_->journal().last(30);
        return station_->journal().around(day->second.front().from, day->second.back().to);
    }

    void checkAir(const std::string& date, const std::vector<AirStretch>& stretches) {
        const auto base = station_->folder() / ("Sonavault_" + date);
        const auto name = base.filename().string() + ".mp3";
        report(name, complaintsAboutStream(readFile(base.string() + ".mp3")));
        const auto startedAt = readManifestStartedAt(base.string() + ".json");
        report(name, complaintsAboutManifest(base.string() + ".json", date));
        ASSERT_TRUE(startedAt) << date;
        const auto evidence = evidenceOf(withoutCodecDelay(listenTo(base.string() + ".mp3")),
                                         secondsSince1970(*startedAt));
        report(name, complaintsAboutAir(evidence, stretches));
        const auto accuracy = accuracyOf(evidence, stretches);
        stationSeconds_ += evidence.durationSec();
        secondsFound_ += accuracy.found;
        secondsSharp_ += accuracy.sharp;
        for (const auto& stretch : stretches)
            if (stretch.tellsTime) secondsTold_ += stretch.to - stretch.from;
        if (accuracy.sharp > 0) {
            const bool isFirst = secondsSharp_ == accuracy.sharp;
            earliest_ = isFirst ? accuracy.earliest : std::min(earliest_, accuracy.earliest);
            latest_ = isFirst ? accuracy.latest : std::max(latest_, accuracy.latest);
        }
    }

    void checkLog(const std::string& date) {
        const auto name = "Sonavault_" + date + ".csv";
        const std::string log = readFile(station_->folder() / name);
        std::vector<OwedRow> owed;
        for (const auto& [day, rows] : station_->rows())
            for (const OwedRow& row : rows) {
                if (day != date && row.otherDay != date) continue;
                const bool isInOther =
                    !row.otherDay.empty() &&
                    readFile(logOf(day == date ? row.otherDay : day)).find(row.text) !=
                        std::string::npos;
                if (isInOther && log.find(row.text) == std::string::npos) continue;
                EXPECT_FALSE(isInOther) << row.text << " stands in two days";
                owed.push_back(row);
            }
        markersFound_ += owed.size();
        report(name, complaintsAboutLog(log, owed));
    }

    std::filesystem::path logOf(const std::string& date) const {
        return station_->folder() / ("Sonavault_" + date + ".csv");
    }

    void checkFolder() {
        std::set<std::string> dates;
        for (const auto& [date, stretches] : station_->air().days()) dates.insert(date);
        report("the folder", complaintsAboutFolder(station_->folder(), dates));
    }

    void checkUse() {
        report("the program", complaintsAboutUse(station_->runs()));
        long growth = 0;
        double longest = 0;
        for (const auto& run : station_->runs()) {
            growth = std::max(growth, run.lastKilobytes - run.firstKilobytes);
            longest = std::max(longest, run.seconds);
        }
        std::cout << "Most growth of a run: " << growth << " KB; the longest took " << longest
                  << " s; " << station_->runs().size() << " runs\n";
    }

    void checkEverything() {
        for (const auto& [date, stretches] : station_->air().days()) {
            checkAir(date, stretches);
            checkLog(date);
        }
        checkFolder();
        checkUse();
        const double heard = station_->air().heard();
        EXPECT_LE(station_->air().excused(), kMostExcused * heard)
            << "the machine was too busy for a life to prove anything";
        EXPECT_GE(static_cast<double>(secondsFound_), kLeastFound * secondsTold_);
        std::cout << station_->air().days().size() << " days, " << stationSeconds_ / 3600
                  << " hours of files, " << secondsFound_ << " whole seconds of " << secondsTold_
                  << " found where they belong, " << secondsSharp_ << " of them from "
                  << earliest_ * 1000 << " to " << latest_ * 1000 << " ms off, "
                  << station_->air().excused() << " s excused, " << markersFound_ << " markers\n";
    }

    std::unique_ptr<LivingStation> station_;
    double stationSeconds_ = 0;
    double secondsTold_ = 0;
    long long secondsFound_ = 0;
    long long secondsSharp_ = 0;
    std::size_t markersFound_ = 0;
    double earliest_ = 0;
    double latest_ = 0;
};

TEST_F(StationLife, leaves_every_second_of_every_day_accounted_for) {
    using Clock = std::chrono::steady_clock;
    const auto begun = Clock::now();
    const auto minutes = [&] {
        return std::chrono::duration<double, std::ratio<60>>(Clock::now() - begun).count();
    };
    begin(chosenSeed());
    int rounds = 0;
    do liveRound(rounds++);
    while (minutes() * (rounds + 1) / rounds < chosenMinutes());
    station_->live(1);
    station_->air().interrupt(station_->now(), 0.45);
    station_->kill();
    station_->killAutomation();
    checkEverything();
    std::cout << rounds << " rounds, " << minutes() << " minutes\n";
}

}  // namespace
}  // namespace sonavault::testing
