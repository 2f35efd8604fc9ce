#include "system/PrivateDesktop.h"

#include <stdexcept>
#include <thread>

namespace sonavault::testing {

using namespace std::chrono_literals;

namespace {

constexpr auto kPatience = 20s;

}  // namespace

PrivateDesktop::PrivateDesktop() {
    auto environment = display_.environment();
    environment["HOME"] = home_.path().string();
    environment["XDG_CONFIG_HOME"] = home_.path().string();
    environment["XDG_CACHE_HOME"] = home_.path().string();
    windowManager_ = std::make_unique<ChildProcess>(
        std::vector<std::string>{"openbox", "--sm-disable"}, environment);
}

std::optional<std::string> PrivateDesktop::ask(const std::vector<std::string>& command) const {
    ChildProcess asked(command, display_.environment());
    const auto status = asked.waitForEnd(kPatience);
    if (status != 0) return std::nullopt;
    return asked.text();
}

void PrivateDesktop::use(const std::vector<std::string>& command) const {
    if (!ask(command)) throw std::runtime_error("nobody could do " + command.at(1));
}

void PrivateDesktop::awaitFront(const std::string& title) const {
    const auto patience = std::chrono::steady_clock::now() + kPatience;
    std::string front;
    while (std::chrono::steady_clock::now() < patience) {
        front = ask({"xdotool", "getactivewindow", "getwindowname"}).value_or("");
        while (!front.empty() && front.back() == '\n') front.pop_back();
        if (front == title) return;
        std::this_thread::sleep_for(50ms);
    }
    throw std::runtime_error("\"" + title + "\" did not come to the front, but \"" + front + "\"");
}

void PrivateDesktop::press(const std::vector<std::string>& chords) const {
    std::vector<std::string> command{"xdotool", "key", "--delay", "60"};
    command.insert(command.end(), chords.begin(), chords.end());
    use(command);
}

void PrivateDesktop::fillIn(const std::string& text) const {
    press({"ctrl+a"});
    use({"xdotool", "type", "--delay", "15", text});
}

bool PrivateDesktop::hasWindow(const std::string& title) const {
    return ask({"xdotool", "search", "--onlyvisible", "--name", "^" + title + "$"}).has_value();
}

void PrivateDesktop::takePicture(const std::filesystem::path& file) const {
    std::filesystem::create_directories(file.parent_path());
    use({"ffmpeg", "-v", "error", "-y", "-f", "x11grab", "-video_size", "1680x1050", "-i",
         display_.environment().at("DISPLAY"), "-frames:v", "1", file.string()});
}

}  // namespace sonavault::testing
