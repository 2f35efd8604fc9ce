#include "system/PrivateDisplay.h"

#include <stdexcept>

namespace sonavault::testing {

using namespace std::chrono_literals;

PrivateDisplay::PrivateDisplay()
    // The server chooses a number that is free and writes it once clients can connect.
    : server_(std::make_unique<ChildProcess>(
          std::vector<std::string>{"Xvfb", "-displayfd", "1", "-screen", "0", "1680x1050x24",
                                   "-nolisten", "tcp", "-noreset", "-fbdir",
                                   memory_.path().string()},
          std::map<std::string, std::string>{})) {
    const auto number = server_->waitForLine("", 20s);
    if (!number) throw std::runtime_error("the X server did not start");
    name_ = ":" + number->text;
}

std::map<std::string, std::string> PrivateDisplay::environment() const {
    return {{"DISPLAY", name_}, {"QT_QPA_PLATFORM", "xcb"}};
}

void PrivateDisplay::press(const std::string& chord, const std::string& title) const {
    ChildProcess hands({"xdotool", "search", "--sync", "--onlyvisible", "--name", title,
                        "windowfocus", "--sync", "key", chord},
                       environment());
    // How it ended says little: a window that the chord closes is gone before the keys are
    // released.
    if (!hands.waitForEnd(20s)) throw std::runtime_error("nobody could press " + chord);
}

}  // namespace sonavault::testing
