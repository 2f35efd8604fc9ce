#include "life/LivingStation.h"

#include <csignal>
#include <fstream>
#include <stdexcept>
#include <thread>

#include "platform/LocalTime.h"
#include "store/RecordingManifest.h"
#include "system/SentMarkers.h"

namespace sonavault::testing {

namespace {

using namespace std::chrono_literals;

constexpr auto kSync = "Sonavault sync:";
constexpr auto kPad = "Sonavault recorder: wall-clock pad";

// The file is as near to the clock as its recorder cares to keep it. Units: milliseconds
constexpr double kCaughtUpMs = 60;

// The automation, its link and the main queue pass a marker on in much less, busy or not.
constexpr double kOnTheWaySec = 0.7;

// The recorder makes up with silence for what comes later than this.
constexpr double kStandstillSec = 0.04;

double secondsOf(std::chrono::system_clock::time_point moment) {
    return std::chrono::duration<double>(moment.time_since_epoch()).count();
}

/// The longest that a thread of `child` was kept waiting for a processor since the look that gave
/// `known`, which is made anew. A wait counts when it is over.
double longestWait(const ChildProcess& child, std::map<std::string, double>& known) {
    auto waits = child.waitsForProcessor();
    double longest = 0;
    for (const auto& [thread, waited] : waits)
        if (const auto before = known.find(thread); before != known.end())
            longest = std::max(longest, waited - before->second);
    known = std::move(waits);
    return longest;
}

/// What one sender after another uses: rates below, at and above the file's, and both byte orders.
std::vector<std::string> formatOf(int number) {
    static const std::vector<std::vector<std::string>> kFormats{
        {"--rate", "44100", "--channels", "1"},
        {"--rate", "22050", "--channels", "2", "--byte-order", "big"},
        {"--rate", "48000", "--channels", "1", "--marker-byte-order", "big"},
        {"--rate", "16000", "--channels", "3"},
    };
    return kFormats[static_cast<std::size_t>(number) % kFormats.size()];
}

}  // namespace

LivingStation::LivingStation(unsigned seed, const std::string& zone)
    : seed_(seed),
      random_(seed),
      zone_(zone.c_str()),
      disk_(station_.audioFolder(), kRoom),
      formats_(static_cast<int>(seed % 4)) {
    std::filesystem::remove(logFile());
    if (!disk_.isMounted()) giveUp("the right to mount a disk of one's own is needed");
    station_.setEnvironment(clock_.environment());
    station_.setEnvironment(sound_.environment());
    station_.setEnvironment({{"TZ", zone}});
    station_.resumeOnLaunch();
    station_.useLink();
    // The address sanitizer keeps freed memory for a while, which would look like growth.
    const std::string options = clock_.environment().at("ASAN_OPTIONS") + ":quarantine_size_mb=1";
    station_.setEnvironment({{"ASAN_OPTIONS", options}});
}

LivingStation::~LivingStation() {
    if (program_) kill();
    killAutomation();
    killHub();
}

void LivingStation::giveUp(const std::string& why) {
    throw std::runtime_error(why + "\nthe last of the journal:\n" + journal_.last(20));
}

double LivingStation::between(double least, double most) {
    return std::uniform_real_distribution<double>(least, most)(random_);
}

double LivingStation::now() const {
    return secondsOf(std::chrono::system_clock::now()) + static_cast<double>(ahead_);
}

void LivingStation::setClock(double moment) {
    moveClock(std::lround(moment - now()));
}

void LivingStation::moveClock(long seconds) {
    const std::string before = dateOf(now());
    ahead_ += seconds;
    clock_.showAhead(ahead_);
    const std::string date = dateOf(now());
    if (date == before) return;
    for (OwedRow* row : onTheirWay()) row->otherDay = date;
}

double LivingStation::momentOf(const HeardLine& line) const {
    return secondsOf(line.at) + static_cast<double>(ahead_);
}

std::string LivingStation::dateOf(double moment) const {
    return isoDateString(after(WallTime{}, moment));
}

HeardLine LivingStation::expect(ChildProcess& child, const std::string& part, std::size_t from,
                                double patience) {
    const auto line =
        child.waitForLine(part, std::chrono::milliseconds(std::llround(patience * 1000)), from);
    if (!line) {
        const auto lines = child.lines();
        std::string said;
        for (std::size_t i = lines.size() - std::min<std::size_t>(lines.size(), 25);
             i < lines.size(); ++i)
            said += lines[i].text + "\n";
        giveUp("no \"" + part + "\"; the last that was said:\n" + said);
    }
    return *line;
}

// The programs

void LivingStation::startHub() {
    hub_ = station_.startHub();
    expect(*hub_, "listening on", 0);
}

void LivingStation::killHub() {
    if (!hub_) return;
    hub_->signal(SIGKILL);
    hub_->waitForEnd(5s);
    MovableClock::cleanUpAfter(*hub_);
    hub_.reset();
}

void LivingStation::startAutomation() {
    std::vector<std::string> options{"--signal", "clock-chords", "--chunk", "5"};
    const auto format = formatOf(formats_++);
    options.insert(options.end(), format.begin(), format.end());
    automation_ = station_.startAutomation(options);
    automationLinesSeen_ = 0;
}

void LivingStation::killAutomation() {
    if (!automation_) return;
    doubtWhatIsOnItsWay();
    automation_->signal(SIGKILL);
    automation_->waitForEnd(5s);
    MovableClock::cleanUpAfter(*automation_);
    automation_.reset();
}

std::string LivingStation::started() const {
    return std::string("Sonavault recorder: started (") +
           (fromLine_ ? "line input" : "Cadenzo TCP") + ") → ";
}

double LivingStation::launch() {
    program_ = station_.start();
    isNewRun_ = true;
    return momentOf(expect(*program_, started(), 0, 60));
}

/// The rows of what was sent so lately that it may not have arrived.
std::vector<OwedRow*> LivingStation::onTheirWay() {
    const double sure = secondsOf(std::chrono::system_clock::now()) - kOnTheWaySec;
    std::erase_if(lastSent_, [&](const auto& each) { return each.first <= sure; });
    std::vector<OwedRow*> rows;
    for (const auto& [sentAt, row] : lastSent_) rows.push_back(row);
    return rows;
}

// Nobody knows whether what was sent just now was written.
void LivingStation::doubtWhatIsOnItsWay() {
    for (OwedRow* row : onTheirWay()) row->mayBeLost = true;
}

void LivingStation::kill() {
    look();
    doubtWhatIsOnItsWay();
    if (!program_->isAlive()) giveUp("the program ended by itself:\n" + program_->text());
    program_->signal(SIGKILL);
    program_->waitForEnd(5s);
    keepLog();
    MovableClock::cleanUpAfter(*program_);
    program_.reset();
}

void LivingStation::useLineInput() {
    fromLine_ = true;
    station_.useLineInput();
}

void LivingStation::useLink() {
    fromLine_ = false;
    station_.useLink();
}

void LivingStation::look() {
    if (!program_ || !program_->isAlive()) return;
    const double at = secondsOf(std::chrono::system_clock::now());
    const long memory = program_->residentKilobytes();
    const int descriptors = program_->openDescriptors();
    if (isNewRun_) {
        launchedAt_ = at;
        runs_.push_back({0, memory, memory, descriptors, descriptors});
    }
    isNewRun_ = false;
    runs_.back().seconds = at - launchedAt_;
    runs_.back().lastKilobytes = memory;
    runs_.back().lastDescriptors = descriptors;
}

// The account

void LivingStation::settle(double moment, double slack, std::size_t fromLine, double misplaced) {
    air_.resume(moment, slack, misplaced);
    constexpr double kCertainGap = 0.3;
    const double patience = 30 + air_.gap() / 10;
    if (air_.gap() > kCertainGap) {
        expect(*program_, kPad, fromLine);
        fromLine = program_->lineCount();
    }
    double late = 0;
    while (!isCaughtUp(fromLine, patience, late)) fromLine = program_->lineCount();
    constexpr double kUsual = 0.01;
    air_.open(now() + 0.1, !fromLine_, late > kUsual ? late : 0);
    look();
}

/// Whether the next line about the clock says so. `late`: how late the buffers before it may have
/// been, the last of which settled where the file stands.
bool LivingStation::isCaughtUp(std::size_t fromLine, double patience, double& late) {
    const double end = now() + patience;
    lateness();
    late = 0;
    std::optional<HeardLine> line;
    while (!line && now() < end) {
        line = program_->waitForLine(kSync, 20ms, fromLine);
        late = std::max(late, lateness());
    }
    if (!line) line = expect(*program_, kSync, fromLine, 0.1);  // tells what was said instead
    return number(line->text, "drift=") <= kCaughtUpMs;
}

void LivingStation::settleInNewDay(std::size_t fromLine) {
    const auto line = expect(*program_, kSync, fromLine);
    const std::string date = dateOf(now());
    const auto manifest = station_.audioFolder() / ("Sonavault_" + date + ".json");
    const auto startedAt = readManifestStartedAt(manifest);
    if (!startedAt) giveUp("no manifest " + manifest.string() + "\n" + program_->text());
    air_.beginDay(date, secondsSince1970(*startedAt));
    settle(secondsSince1970(*startedAt), 0, fromLine);
}

double LivingStation::followRollover(std::size_t fromLine) {
    expect(*program_, "Sonavault recorder: rolled over → ", fromLine);
    const std::string date = dateOf(now());
    const auto startedAt =
        readManifestStartedAt(station_.audioFolder() / ("Sonavault_" + date + ".json"));
    if (!startedAt) giveUp("no manifest of " + date);
    // The buffers that come between the two files belong to neither.
    air_.interrupt(secondsSince1970(*startedAt), 0.2);
    air_.beginDay(date, secondsSince1970(*startedAt));
    settle(secondsSince1970(*startedAt), 0, program_->lineCount());
    return secondsSince1970(*startedAt);
}

/// How late the programs may have come since the last look. Units: seconds
double LivingStation::lateness() {
    double late = watch_.takeLongest();
    double longest = longestWait(*program_, recorderWaits_);
    if (automation_) longest += longestWait(*automation_, automationWaits_);
    late = std::max(late, longest);
    if (!automation_) return late;
    const auto lines = automation_->lines();
    for (; automationLinesSeen_ < lines.size(); ++automationLinesSeen_)
        if (lines[automationLinesSeen_].text.find("having been too late") != std::string::npos)
            late = std::max(late, 1.0);
    return late;
}

void LivingStation::watchTheMachine() {
    const double stood = lateness();
    if (stood < kStandstillSec || !air_.isOpen()) return;
    note("the machine stood still for " + std::to_string(stood) + " s");
    std::this_thread::sleep_for(300ms);
    lateness();
    air_.excuse(now(), stood);
}

std::filesystem::path LivingStation::logFile() const {
    return std::filesystem::temp_directory_path() /
           ("sonavault-life-" + std::to_string(seed_) + ".log");
}

void LivingStation::keepLog() const {
    std::ofstream(logFile(), std::ios::app) << program_->text() << "--- killed\n";
}

void LivingStation::live(double seconds) {
    const double end = now() + seconds;
    double nextMarker = now() + between(0, 1);
    while (now() < end) {
        std::this_thread::sleep_for(20ms);
        watchTheMachine();
        if (automation_ && !fromLine_ && now() >= nextMarker) {
            sendMarker();
            nextMarker = now() + between(0.5, 2);
        }
    }
    if (!program_->isAlive()) giveUp("the program ended by itself:\n" + program_->text());
}

void LivingStation::sendMarker() {
    static const std::vector<std::string> kTypes{"note", "hour", "mic_start", "mic_end", "vt_pre"};
    const std::string label = "Number " + std::to_string(++markers_) + ", \"live\"";
    const std::size_t from = automation_->lineCount();
    automation_->type("marker " + kTypes[random_() % kTypes.size()] + " duration=1.5 " + label);
    const auto sent = expect(*automation_, "marker sent: ", from);
    const auto json = sent.text.substr(sent.text.find('{'));
    OwedRow row;
    row.text = rowOf(json);
    // Near midnight the day of its arrival may be the one or the other.
    const std::string date = dateOf(now());
    for (const double edge : {-2.5, 2.5})
        if (dateOf(now() + edge) != date) row.otherDay = dateOf(now() + edge);
    auto& rows = rows_[date];
    rows.push_back(row);
    lastSent_.emplace_back(secondsOf(sent.at), &rows.back());
}

void LivingStation::publishSilence() {
    const std::string length = std::to_string(++markers_) + ".5";
    hub_->type(
        R"(publish Cadenzo cadenzo.playback-state-changed {"playbackState":"silence","cause":"a test","silenceDurationSec":)" +
        length + "}");
    OwedRow row;
    row.text = ",silence_start,Cadenzo dead-air start — a test — " + length + "s,0\n";
    row.isWhole = false;
    auto& rows = rows_[dateOf(now())];
    rows.push_back(row);
    lastSent_.emplace_back(secondsOf(std::chrono::system_clock::now()), &rows.back());
}

}  // namespace sonavault::testing
