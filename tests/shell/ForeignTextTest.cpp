#include "shell/ForeignText.h"

#include <gtest/gtest.h>

namespace sonavault::testing {
namespace {

TEST(ForeignText, stays_as_it_is_when_it_is_short) {
    EXPECT_EQ(shortened(""), "");
    EXPECT_EQ(shortened("Grüße — 🎙"), "Grüße — 🎙");
    const std::string most(kMostBytesOfForeignText, 'x');
    EXPECT_EQ(shortened(most), most);
    EXPECT_EQ(shortened(most + 'y'), most);
}

TEST(ForeignText, is_never_cut_within_a_character) {
    const std::string text = "aü—🎙";  // of 1, 2, 3 and 4 bytes
    const std::string whole[] = {"",    "a",   "a",   "aü",  "aü",        "aü",
                                 "aü—", "aü—", "aü—", "aü—", "aü—🎙"};
    for (std::size_t most = 0; most <= text.size(); ++most)
        EXPECT_EQ(shortened(text, most), whole[most]) << most;
}

TEST(ForeignText, is_printed_without_what_moves_a_terminal_or_ends_a_line) {
    EXPECT_EQ(printable("a\nb\rc\td"), "a b c d");
    EXPECT_EQ(printable("\x1b[2J\x7f"), " [2J ");
    EXPECT_EQ(printable(std::string("a\0b", 3)), "a b");
    EXPECT_EQ(printable("a\u0085b\u009bc\u2028d\u2029e"), "a b c d e");
    EXPECT_EQ(printable("Grüße — 🎙"), "Grüße — 🎙");
}

}  // namespace
}  // namespace sonavault::testing
