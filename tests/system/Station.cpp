#include "system/Station.h"

#include <cstdlib>
#include <ctime>
#include <stdexcept>

namespace sonavault::testing {

namespace {

/// A zone in which it is now between noon and one o'clock.
std::string zoneOfNoon(std::time_t now, int& hoursEast) {
    std::tm utc{};
    gmtime_r(&now, &utc);
    hoursEast = 12 - utc.tm_hour;
    return "<NOON>" + std::to_string(-hoursEast);
}

std::string isoDate(std::time_t moment) {
    std::tm utc{};
    gmtime_r(&moment, &utc);
    char text[16];
    std::strftime(text, sizeof text, "%Y-%m-%d", &utc);
    return text;
}

}  // namespace

Station::Station() {
    const auto now = std::time(nullptr);
    int hoursEast = 0;
    environment_["TZ"] = zoneOfNoon(now, hoursEast);
    date_ = isoDate(now + hoursEast * 3600);
    const auto runtime = temp_ / "runtime";
    std::filesystem::create_directories(runtime);
    std::filesystem::permissions(runtime, std::filesystem::perms::owner_all);
    std::filesystem::create_directories(home() / "Calderwave/Station");
    environment_["HOME"] = home().string();
    environment_["XDG_CONFIG_HOME"] = (home() / ".config").string();
    environment_["XDG_RUNTIME_DIR"] = runtime.string();
    environment_["QT_QPA_PLATFORM"] = "offscreen";
    // A hub that happens to run on this machine is none of a test's business.
    environment_["SWITCHBOARD_SOCKET"] = (runtime / "switchboard.sock").string();
}

void Station::choose(const std::string& key, const std::string& value) {
    preferences_[key] = value;
    std::string file = "[General]\n";
    for (const auto& [name, chosen] : preferences_) file += name + "=" + chosen + "\n";
    writeFile(home() / ".config/com.calderwave.sonavault.conf", file);
}

void Station::setEnvironment(const std::map<std::string, std::string>& more) {
    for (const auto& [name, value] : more) environment_[name] = value;
}

std::unique_ptr<ChildProcess> Station::start(ChildProcess::Output output) const {
    return std::make_unique<ChildProcess>(std::vector<std::string>{SONAVAULT_PROGRAM}, environment_,
                                          output);
}

std::unique_ptr<ChildProcess> Station::startAutomation(
    const std::vector<std::string>& options) const {
    std::vector<std::string> command{SONAVAULT_AUTOMATION};
    command.insert(command.end(), options.begin(), options.end());
    return std::make_unique<ChildProcess>(command, environment_);
}

std::unique_ptr<ChildProcess> Station::startHub() const {
    return std::make_unique<ChildProcess>(std::vector<std::string>{SONAVAULT_HUB}, environment_);
}

std::filesystem::path Station::dayFile(const std::string& suffix) const {
    return audioFolder() / ("Sonavault_" + date_ + "." + suffix);
}

double number(const std::string& line, const std::string& label) {
    const auto at = line.find(label);
    if (at == std::string::npos) throw std::runtime_error("no " + label + " in " + line);
    return std::strtod(line.c_str() + at + label.size(), nullptr);
}

double seconds(std::chrono::system_clock::time_point from,
               std::chrono::system_clock::time_point to) {
    return std::chrono::duration<double>(to - from).count();
}

}  // namespace sonavault::testing
