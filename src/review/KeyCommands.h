#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace sonavault {

/// The two modifiers that are looked at, as bits of KeyEvent::modifierFlags.
inline constexpr std::uint32_t kShiftKeyMask = 0x20000;
inline constexpr std::uint32_t kCommandKeyMask = 0x100000;

/// The keys that are known by their place and not by what they print.
inline constexpr std::uint16_t kSpaceKeyCode = 49;
inline constexpr std::uint16_t kLeftArrowKeyCode = 123;
inline constexpr std::uint16_t kRightArrowKeyCode = 124;

/// A key that went down.
struct KeyEvent {
    std::uint16_t keyCode = 0;
    std::optional<std::string> charactersIgnoringModifiers;
    std::uint32_t modifierFlags = 0;
};

/// Where the key went down.
struct KeySituation {
    bool editsText = false;          ///< the active window's focus is in a text that is edited
    std::string activeTab = "logs";  ///< the tab that is shown
    bool inMainWindow = true;        ///< the key belongs to the main window
};

/// What a key asks for.
enum class KeyCommand : std::uint8_t {
    togglePlayback,
    previousHour,
    nextHour,
    tenSecondsBack,
    tenSecondsOn,
    previousMarker,
    nextMarker,
    markSelectionStart,
    markSelectionEnd,
    undoLastChange,
    clearAllSelections,
    exportSelections,
    exportAircheck,
    toggleRecording,
};

/// The command of a key. With one, the key ends here, even when the command then finds nothing to
/// do; without one it goes on to the widgets and menus.
std::optional<KeyCommand> keyCommand(const KeyEvent& event, const KeySituation& situation);

/// What carries the commands out; each knows by itself when there is nothing to do.
///
/// Thread: main.
class KeyCommandHost {
  public:
    virtual ~KeyCommandHost() = default;

    virtual void togglePlayback() = 0;
    /// `direction`: 1 for the next, -1 for the previous.
    virtual void jumpToMarker(int direction) = 0;
    virtual void jumpRelative(double seconds) = 0;
    virtual void jumpRelativeHour(int delta) = 0;
    virtual void markSelectionStart() = 0;
    virtual void markSelectionEnd() = 0;
    virtual void undoLastChange() = 0;
    virtual void clearAllSelections() = 0;
    virtual void exportSelections() = 0;
    virtual void exportAircheck() = 0;
    /// Starts or stops the recorder, if there is one.
    virtual void toggleRecording() = 0;
};

/// Has `host` do what `command` asks for.
void perform(KeyCommand command, KeyCommandHost& host);

}  // namespace sonavault
