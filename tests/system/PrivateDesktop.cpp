#include "system/PrivateDesktop.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <stdexcept>

#include "support/Eventually.h"

namespace sonavault::testing {

namespace {

using Gestures = std::vector<std::string>;

Gestures operator+(Gestures first, const Gestures& then) {
    first.insert(first.end(), then.begin(), then.end());
    return first;
}

Gestures movedTo(Point place) {
    return {"mousemove", std::to_string(std::lround(std::floor(place.x))),
            std::to_string(std::lround(std::floor(place.y)))};
}

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
    const auto status = asked.waitForEnd(kEventually);
    if (status != 0) return std::nullopt;
    return asked.text();
}

void PrivateDesktop::use(const std::vector<std::string>& command) const {
    if (!ask(command)) throw std::runtime_error("nobody could do " + command.at(1));
}

void PrivateDesktop::awaitFront(const std::string& title) const {
    std::string front;
    // Before the window manager is up there is none to ask for.
    const auto isInFront = [&] {
        front = ask({"xdotool", "getactivewindow", "getwindowname"}).value_or("");
        while (!front.empty() && front.back() == '\n') front.pop_back();
        return front == title;
    };
    if (eventually(isInFront)) return;
    throw std::runtime_error("\"" + title + "\" did not come to the front, but \"" + front + "\"");
}

void PrivateDesktop::closeFront(const std::string& title) const {
    const auto isGone = [&] { return windowCount(title) == 0; };
    for (int tries = 0; tries < 3; ++tries) {
        awaitFront(title);
        press({"alt+F4"});
        if (eventually(isGone, kEventually / 3)) return;
    }
    throw std::runtime_error("\"" + title + "\" can't be closed");
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

void PrivateDesktop::typeOn(const std::string& text) const {
    use({"xdotool", "type", "--delay", "30", text});
    press({"Return"});
}

void PrivateDesktop::useMouse(const std::vector<std::string>& gestures) const {
    std::vector<std::string> command{"xdotool"};
    command.insert(command.end(), gestures.begin(), gestures.end());
    use(command);
}

void PrivateDesktop::moveTo(Point place) const {
    useMouse(movedTo(place));
}

void PrivateDesktop::click(Point place) const {
    useMouse(movedTo(place) + Gestures{"click", "1"});
}

void PrivateDesktop::rightClick(Point place) const {
    useMouse(movedTo(place) + Gestures{"click", "3"});
}

void PrivateDesktop::drag(Point from, Point to) const {
    constexpr int kSteps = 8;
    Gestures gestures = movedTo(from) + Gestures{"mousedown", "1"};
    for (int i = 1; i <= kSteps; ++i) {
        const double part = static_cast<double>(i) / kSteps;
        gestures = gestures +
                   movedTo({from.x + part * (to.x - from.x), from.y + part * (to.y - from.y)}) +
                   Gestures{"sleep", "0.02"};
    }
    useMouse(gestures + Gestures{"mouseup", "1"});
}

void PrivateDesktop::hold(Point place, std::chrono::milliseconds length) const {
    const std::string seconds = std::to_string(std::chrono::duration<double>(length).count());
    useMouse(movedTo(place) + Gestures{"mousedown", "1", "sleep", seconds, "mouseup", "1"});
}

void PrivateDesktop::turnWheel(Point place, int notches) const {
    const std::string button = notches > 0 ? "4" : "5";
    useMouse(movedTo(place) + Gestures{"click", "--delay", "30", "--repeat",
                                       std::to_string(std::abs(notches)), button});
}

bool PrivateDesktop::hasWindow(const std::string& title) const {
    return windowCount(title) > 0;
}

int PrivateDesktop::windowCount(const std::string& title) const {
    const auto found =
        ask({"xdotool", "search", "--onlyvisible", "--name", "^" + title + "$"}).value_or("");
    return static_cast<int>(std::count(found.begin(), found.end(), '\n'));
}

// Only the pointer tells where the inside of a window is: asked for its place, it tells that of its
// frame.
Box PrivateDesktop::windowBox(const std::string& title) const {
    std::string told;
    // A window that opens or is resized may not be found for a moment.
    const auto patience = std::chrono::steady_clock::now() + kEventually;
    while (told.find("\nWIDTH=") == std::string::npos || told.find("\nSCREEN=") == told.npos) {
        if (std::chrono::steady_clock::now() > patience) throw std::runtime_error("no " + title);
        told = ask({"xdotool", "search", "--onlyvisible", "--name", "^" + title + "$",
                    "getwindowgeometry", "--shell", "mousemove", "--window", "%1", "0", "0",
                    "getmouselocation", "--shell"})
                   .value_or("");
    }
    // The place is told twice, first by the frame.
    const auto value = [&](const std::string& name) {
        return std::stod(told.substr(told.rfind("\n" + name + "=") + name.size() + 2));
    };
    return {value("X"), value("Y"), value("WIDTH"), value("HEIGHT")};
}

void PrivateDesktop::activate(const std::string& title) const {
    use({"xdotool", "search", "--onlyvisible", "--name", "^" + title + "$", "windowactivate"});
    awaitFront(title);
}

void PrivateDesktop::resizeWindow(const std::string& title, Size inside) const {
    const auto points = [](double value) { return std::to_string(std::lround(value)); };
    use({"xdotool", "search", "--onlyvisible", "--name", "^" + title + "$", "windowsize",
         points(inside.width), points(inside.height)});
}

bool PrivateDesktop::awaitSight(const std::function<bool(const ScreenPicture&)>& isSo) const {
    return eventually([&] { return isSo(look()); });
}

void PrivateDesktop::takePicture(const std::string& name) const {
    const std::filesystem::path folder = SONAVAULT_PICTURES;
    std::filesystem::create_directories(folder);
    use({"ffmpeg", "-v", "error", "-y", "-f", "x11grab", "-video_size", "1680x1050", "-i",
         display_.environment().at("DISPLAY"), "-frames:v", "1",
         (folder / (name + ".png")).string()});
}

}  // namespace sonavault::testing
