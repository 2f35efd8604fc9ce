#include "system/Desk.h"

#include <stdexcept>

#include "review/TimelineRows.h"
#include "support/Eventually.h"

namespace sonavault::testing {

namespace {

constexpr Size kFirstSize{1480, 920};

}  // namespace

Desk::Desk() {
    sound.start();
    station.setEnvironment(sound.environment());
    station.setEnvironment(desktop.environment());
    station.useLineInput();
}

void Desk::open() {
    program = station.start();
    desktop.awaitFront(kWindow);
    const Box window = desktop.windowBox(kWindow);
    menuBarHeight_ = window.height - kFirstSize.height;
    if (window.width != kFirstSize.width || menuBarHeight_ < 10)
        throw std::runtime_error("the window has another size than it is to open with");
    content_ = {window.x, window.y + menuBarHeight_, kFirstSize.width, kFirstSize.height};
}

void Desk::resize(Size content) {
    const Size wanted{content.width, content.height + menuBarHeight_};
    desktop.resizeWindow(kWindow, wanted);
    Box window;
    const auto hasIt = [&] {
        window = desktop.windowBox(kWindow);
        return window.width == wanted.width && window.height == wanted.height;
    };
    if (!eventually(hasIt)) throw std::runtime_error("the window did not take that size");
    content_ = {window.x, window.y + menuBarHeight_, content.width, content.height};
}

void Desk::chooseFromMenu(std::size_t menu, std::size_t item) const {
    constexpr double kInTheFirstTitle = 20;
    desktop.click({content_.x + kInTheFirstTitle, content_.y - menuBarHeight_ / 2});
    std::vector<std::string> keys(menu, "Right");
    // A menu that a click opened has no item marked, one that the arrows opened its first.
    keys.insert(keys.end(), menu == 0 ? item + 1 : item, "Down");
    keys.emplace_back("Return");
    desktop.press(keys);
}

void Desk::confirm() const {
    desktop.awaitFront(kAlert);
    desktop.press({"Return"});
}

void Desk::dismiss() const {
    desktop.awaitFront(kAlert);
    desktop.press({"Escape"});
}

std::string Desk::preference(const std::string& key) const {
    const std::string all = readFile(station.home() / ".config/com.calderwave.sonavault.conf");
    const auto at = all.find("\n" + key + "=");
    if (at == std::string::npos) return "";
    const auto begin = at + key.size() + 2;
    return all.substr(begin, all.find('\n', begin) - begin);
}

bool Desk::eventuallyPrefers(const std::string& key, const std::string& value) const {
    return eventually([&] { return preference(key) == value; });
}

bool Desk::eventuallySays(const std::string& part) {
    return program->waitForLine(part, kEventually).has_value();
}

bool Desk::eventuallyIsCalm(const Box& part) const {
    constexpr int kSame = 10;
    ScreenPicture before = desktop.look();
    int same = 0;
    return desktop.awaitSight([&](const ScreenPicture& screen) {
        same = screen.differences(part, before) == 0 ? same + 1 : 0;
        before = screen;
        return same == kSame;
    });
}

bool Desk::eventuallyShowsPlayheadAt(double second) const {
    const Point place = places().onPlayhead(second);
    return desktop.awaitSight([&](const ScreenPicture& screen) {
        return screen.count({place.x - 2, place.y, 4, 1}, pixelOf(kColorPlayhead)) >= 2;
    });
}

}  // namespace sonavault::testing
