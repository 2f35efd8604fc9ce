#pragma once

#include <gtest/gtest.h>

#include <deque>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "life/AirBook.h"
#include "life/Journal.h"
#include "life/MachineWatch.h"
#include "support/PrivateSoundServer.h"
#include "support/ScopedTimeZone.h"
#include "system/MovableClock.h"
#include "system/SmallDisk.h"
#include "system/Station.h"

namespace sonavault::testing {

/// A station that is lived through: the recorder, the automation and the hub under one clock that
/// can be set, and an account of what each day's files must hold by now.
///
/// What does not come in time fails the test and throws, for nothing can be told of what follows.
///
/// Thread: one.
class LivingStation {
  public:
    /// `zone`: for the variable TZ.
    LivingStation(unsigned seed, const std::string& zone);
    ~LivingStation();

    // The clock

    /// What the station's clock shows. Units: seconds since 1970
    double now() const;
    void setClock(double moment);
    void moveClock(long seconds);

    // The programs

    void startHub();
    void killHub();
    void startAutomation();
    void killAutomation();
    /// Returns when it records. Gives the moment of that.
    double launch();
    void kill();
    bool isRunning() const { return program_ != nullptr; }
    ChildProcess& program() { return *program_; }
    ChildProcess& automation() { return *automation_; }
    ChildProcess& hub() { return *hub_; }
    PrivateSoundServer& sound() { return sound_; }
    /// The days lie on a disk of their own, with room for a life of a day: a round takes some 16
    /// MB.
    static constexpr auto kRoom = "size=8g";
    SmallDisk& disk() { return disk_; }
    void useLineInput();
    void useLink();

    /// The line after number `from` with `part`, waiting for it.
    HeardLine expect(ChildProcess& child, const std::string& part, std::size_t from,
                     double patience = 20);
    /// The station's moment at which a line was heard; the clock must not have been set since.
    double momentOf(const HeardLine& line) const;

    // The account

    /// Air is back since `moment`: waits until the file has caught up with the clock. The rest is
    /// as AirBook::resume() takes it.
    void settle(double moment, double slack, std::size_t fromLine, double misplaced = 0);
    /// A new file begins: waits for its manifest, and until it gets its air.
    void settleInNewDay(std::size_t fromLine);
    /// The file changed at midnight, with the recording going on. Gives the moment at which the new
    /// one begins.
    double followRollover(std::size_t fromLine);
    /// Lets time pass, with a marker now and then.
    void live(double seconds);
    void sendMarker();
    /// A playback event on the hub, which is to become a row of the day's log.
    void publishSilence();
    void note(const std::string& what) { journal_.note(now(), what); }

    AirBook& air() { return air_; }
    Journal& journal() { return journal_; }
    std::mt19937& random() { return random_; }
    double between(double least, double most);
    const std::map<std::string, std::deque<OwedRow>>& rows() const { return rows_; }
    /// All that the recorder said.
    std::filesystem::path logFile() const;
    std::filesystem::path folder() const { return station_.audioFolder(); }
    std::string dateOf(double moment) const;

    /// How each run of the program used the machine.
    const std::vector<ProgramRun>& runs() const { return runs_; }
    /// Writes down what the running program uses.
    void look();

  private:
    void watchTheMachine();
    double lateness();
    bool isCaughtUp(std::size_t fromLine, double patience, double& late);
    std::vector<OwedRow*> onTheirWay();
    void doubtWhatIsOnItsWay();
    void keepLog() const;
    std::string started() const;
    [[noreturn]] void giveUp(const std::string& why);

    const unsigned seed_;
    std::mt19937 random_;
    Journal journal_;
    AirBook air_;
    ScopedTimeZone zone_;
    MovableClock clock_;
    long ahead_ = 0;
    PrivateSoundServer sound_;
    Station station_;
    SmallDisk disk_;
    MachineWatch watch_;
    /// How long each thread had waited for a processor at the last look.
    std::map<std::string, double> recorderWaits_;
    std::map<std::string, double> automationWaits_;
    bool fromLine_ = false;
    int markers_ = 0;
    int formats_ = 0;
    double launchedAt_ = 0;
    std::size_t automationLinesSeen_ = 0;
    std::map<std::string, std::deque<OwedRow>> rows_;
    /// When each was sent, by the clock of the machine.
    std::vector<std::pair<double, OwedRow*>> lastSent_;
    std::vector<ProgramRun> runs_;
    bool isNewRun_ = true;
    std::unique_ptr<ChildProcess> hub_;
    std::unique_ptr<ChildProcess> automation_;
    std::unique_ptr<ChildProcess> program_;
};

}  // namespace sonavault::testing
