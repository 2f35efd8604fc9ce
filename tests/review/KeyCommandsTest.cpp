#include "review/KeyCommands.h"

#include <gtest/gtest.h>

#include <vector>

namespace sonavault::testing {
namespace {

using enum KeyCommand;

constexpr std::uint32_t kCapsLock = 0x10000;
constexpr std::uint32_t kControl = 0x40000;
constexpr std::uint32_t kOption = 0x80000;

std::optional<KeyCommand> inTimeline(const KeyEvent& event) {
    return keyCommand(event, KeySituation{});
}
KeyEvent typed(const std::string& text, std::uint32_t modifiers = 0) {
    return {.keyCode = 1, .charactersIgnoringModifiers = text, .modifierFlags = modifiers};
}
KeyEvent pressed(std::uint16_t code, std::uint32_t modifiers = 0) {
    return {.keyCode = code, .modifierFlags = modifiers};
}

TEST(KeyCommands, space_plays_under_any_modifier) {
    for (const auto modifiers : {0U, kShiftKeyMask, kCommandKeyMask, kOption | kControl})
        EXPECT_EQ(inTimeline(pressed(kSpaceKeyCode, modifiers)), togglePlayback);
}

TEST(KeyCommands, space_passes_while_the_airchecks_are_shown) {
    EXPECT_EQ(keyCommand(pressed(kSpaceKeyCode), {.activeTab = "airchecks"}), std::nullopt);
}

TEST(KeyCommands, what_is_typed_into_a_text_stays_typing_on_either_tab) {
    for (const auto* tab : {"logs", "airchecks"})
        EXPECT_EQ(keyCommand(typed("["), {.editsText = true, .activeTab = tab}), std::nullopt);
}

TEST(KeyCommands, a_key_in_another_window_passes) {
    EXPECT_EQ(keyCommand(pressed(kSpaceKeyCode), {.inMainWindow = false}), std::nullopt);
    EXPECT_EQ(keyCommand(typed("e"), {.inMainWindow = false}), std::nullopt);
}

TEST(KeyCommands, arrows_step_by_marker_by_ten_seconds_or_by_hour) {
    EXPECT_EQ(inTimeline(pressed(kLeftArrowKeyCode)), previousMarker);
    EXPECT_EQ(inTimeline(pressed(kRightArrowKeyCode)), nextMarker);
    EXPECT_EQ(inTimeline(pressed(kLeftArrowKeyCode, kShiftKeyMask)), tenSecondsBack);
    EXPECT_EQ(inTimeline(pressed(kRightArrowKeyCode, kShiftKeyMask)), tenSecondsOn);
    EXPECT_EQ(inTimeline(pressed(kLeftArrowKeyCode, kCommandKeyMask)), previousHour);
    EXPECT_EQ(inTimeline(pressed(kRightArrowKeyCode, kCommandKeyMask)), nextHour);
}

TEST(KeyCommands, command_goes_before_shift_on_the_arrows) {
    const auto both = kShiftKeyMask | kCommandKeyMask;
    EXPECT_EQ(inTimeline(pressed(kLeftArrowKeyCode, both)), previousHour);
    EXPECT_EQ(inTimeline(pressed(kRightArrowKeyCode, both)), nextHour);
}

TEST(KeyCommands, other_modifiers_make_no_difference) {
    EXPECT_EQ(inTimeline(pressed(kLeftArrowKeyCode, kOption | kControl)), previousMarker);
    EXPECT_EQ(inTimeline(typed("c", kOption | kControl)), clearAllSelections);
}

TEST(KeyCommands, brackets_and_letters_mark_under_any_modifier) {
    for (const auto modifiers : {0U, kShiftKeyMask, kCommandKeyMask}) {
        EXPECT_EQ(inTimeline(typed("[", modifiers)), markSelectionStart);
        EXPECT_EQ(inTimeline(typed("i", modifiers)), markSelectionStart);
        EXPECT_EQ(inTimeline(typed("]", modifiers)), markSelectionEnd);
        EXPECT_EQ(inTimeline(typed("o", modifiers)), markSelectionEnd);
        EXPECT_EQ(inTimeline(typed("e", modifiers)), exportSelections);
    }
}

TEST(KeyCommands, undo_and_record_need_command) {
    EXPECT_EQ(inTimeline(typed("z", kCommandKeyMask)), undoLastChange);
    EXPECT_EQ(inTimeline(typed("z")), std::nullopt);
    EXPECT_EQ(inTimeline(typed("r", kCommandKeyMask)), toggleRecording);
    EXPECT_EQ(inTimeline(typed("r")), std::nullopt);
}

TEST(KeyCommands, copy_and_select_all_stay_with_the_menus) {
    EXPECT_EQ(inTimeline(typed("c")), clearAllSelections);
    EXPECT_EQ(inTimeline(typed("c", kCommandKeyMask)), std::nullopt);
    EXPECT_EQ(inTimeline(typed("a")), exportAircheck);
    EXPECT_EQ(inTimeline(typed("a", kCommandKeyMask)), std::nullopt);
}

TEST(KeyCommands, capitals_are_the_same_keys) {
    EXPECT_EQ(inTimeline(typed("E", kCapsLock)), exportSelections);
    EXPECT_EQ(inTimeline(typed("Z", kCommandKeyMask | kShiftKeyMask)), undoLastChange);
}

TEST(KeyCommands, anything_else_passes) {
    for (const auto* text : {"", "x", "1", "ee", "é", "{", "\t"})
        EXPECT_EQ(inTimeline(typed(text)), std::nullopt) << text;
    EXPECT_EQ(inTimeline({.keyCode = 1}), std::nullopt);
}

/// Notes down what it was asked for.
class FakeKeyCommandHost final : public KeyCommandHost {
  public:
    void togglePlayback() override { calls.emplace_back("play"); }
    void jumpToMarker(int direction) override { note("marker", direction); }
    void jumpRelative(double seconds) override { note("seconds", static_cast<int>(seconds)); }
    void jumpRelativeHour(int delta) override { note("hour", delta); }
    void markSelectionStart() override { calls.emplace_back("start"); }
    void markSelectionEnd() override { calls.emplace_back("end"); }
    void undoLastChange() override { calls.emplace_back("undo"); }
    void clearAllSelections() override { calls.emplace_back("clear"); }
    void exportSelections() override { calls.emplace_back("export"); }
    void exportAircheck() override { calls.emplace_back("aircheck"); }
    void toggleRecording() override { calls.emplace_back("record"); }

    std::vector<std::string> calls;

  private:
    void note(const std::string& what, int amount) {
        calls.push_back(what + " " + std::to_string(amount));
    }
};

TEST(KeyCommands, each_command_does_one_thing) {
    FakeKeyCommandHost host;
    for (const auto command :
         {togglePlayback, previousHour, nextHour, tenSecondsBack, tenSecondsOn, previousMarker,
          nextMarker, markSelectionStart, markSelectionEnd, undoLastChange, clearAllSelections,
          exportSelections, exportAircheck, toggleRecording})
        perform(command, host);
    const std::vector<std::string> expected{
        "play",  "hour -1", "hour 1", "seconds -10", "seconds 10", "marker -1", "marker 1",
        "start", "end",     "undo",   "clear",       "export",     "aircheck",  "record"};
    EXPECT_EQ(host.calls, expected);
}

}  // namespace
}  // namespace sonavault::testing
