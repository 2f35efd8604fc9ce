#include "review/KeyCommands.h"

namespace sonavault {

namespace {

bool has(const KeyEvent& event, std::uint32_t modifier) {
    return (event.modifierFlags & modifier) != 0;
}

/// Of an arrow: with Command, with Shift alone, with neither.
KeyCommand arrow(const KeyEvent& event, KeyCommand hour, KeyCommand seconds, KeyCommand marker) {
    if (has(event, kCommandKeyMask)) return hour;
    return has(event, kShiftKeyMask) ? seconds : marker;
}

/// The one letter that the key prints, in lower case; 0 for none or more than one.
char letterOf(const KeyEvent& event) {
    const auto& text = event.charactersIgnoringModifiers;
    if (!text || text->size() != 1) return 0;
    const char letter = text->front();
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

std::optional<KeyCommand> textCommand(char letter, bool command) {
    using enum KeyCommand;
    const auto when = [](bool wanted, KeyCommand what) {
        return wanted ? std::optional(what) : std::nullopt;
    };
    switch (letter) {
        case '[':
        case 'i':
            return markSelectionStart;
        case ']':
        case 'o':
            return markSelectionEnd;
        case 'z':
            return when(command, undoLastChange);
        case 'c':
            return when(!command, clearAllSelections);
        case 'e':
            return exportSelections;
        case 'a':
            return when(!command, exportAircheck);
        case 'r':
            return when(command, toggleRecording);
        default:
            return std::nullopt;
    }
}

}  // namespace

std::optional<KeyCommand> keyCommand(const KeyEvent& event, const KeySituation& situation) {
    using enum KeyCommand;
    if (situation.editsText || situation.activeTab != "logs" || !situation.inMainWindow)
        return std::nullopt;
    switch (event.keyCode) {
        case kSpaceKeyCode:
            return togglePlayback;
        case kLeftArrowKeyCode:
            return arrow(event, previousHour, tenSecondsBack, previousMarker);
        case kRightArrowKeyCode:
            return arrow(event, nextHour, tenSecondsOn, nextMarker);
        default:
            return textCommand(letterOf(event), has(event, kCommandKeyMask));
    }
}

void perform(KeyCommand command, KeyCommandHost& host) {
    using enum KeyCommand;
    constexpr double kStepSec = 10;
    switch (command) {
        case togglePlayback:
            return host.togglePlayback();
        case previousHour:
            return host.jumpRelativeHour(-1);
        case nextHour:
            return host.jumpRelativeHour(1);
        case tenSecondsBack:
            return host.jumpRelative(-kStepSec);
        case tenSecondsOn:
            return host.jumpRelative(kStepSec);
        case previousMarker:
            return host.jumpToMarker(-1);
        case nextMarker:
            return host.jumpToMarker(1);
        case markSelectionStart:
            return host.markSelectionStart();
        case markSelectionEnd:
            return host.markSelectionEnd();
        case undoLastChange:
            return host.undoLastChange();
        case clearAllSelections:
            return host.clearAllSelections();
        case exportSelections:
            return host.exportSelections();
        case exportAircheck:
            return host.exportAircheck();
        case toggleRecording:
            return host.toggleRecording();
    }
}

}  // namespace sonavault
