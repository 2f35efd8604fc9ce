#include "help/HelpPage.h"

#include <gtest/gtest.h>

namespace sonavault::testing {
namespace {

/// What stands between two marks of a text.
std::string between(const std::string& text, const std::string& begin, const std::string& end) {
    const auto from = text.find(begin);
    if (from == std::string::npos) return "no " + begin;
    const auto to = text.find(end, from + begin.size());
    return text.substr(from + begin.size(), to - from - begin.size());
}

/// One style of the page, with the blanks between its declarations made equal.
std::string styleOf(const std::string& page, const std::string& selector) {
    std::string style = between(page, "\n" + selector + " {", "}");
    std::string tidy;
    for (const char each : style) {
        const bool blank = each == ' ' || each == '\n';
        if (!blank)
            tidy += each;
        else if (!tidy.empty() && tidy.back() != ' ')
            tidy += ' ';
    }
    while (!tidy.empty() && tidy.back() == ' ') tidy.pop_back();
    return tidy;
}

TEST(HelpPage, says_to_the_letter_that_there_is_no_help) {
    const std::string page = fallbackPage("help.example", "ERR_NAME_NOT_RESOLVED");
    EXPECT_EQ(between(page, "<title>", "</title>"), "Sonavault Help");
    EXPECT_EQ(between(page, "<h1>", "</h1>"), "Help is currently unavailable");
    const std::string body = between(page, "</h1>\n", "</body>");
    EXPECT_EQ(
        body,
        "<p>Sonavault couldn't load the help documentation from "
        "<code>help.example</code>.</p>\n"
        "<p>This usually means your internet connection is offline, or the Calderwave Systems "
        "website is temporarily unreachable. Please check your connection and try again.</p>\n"
        "<p class=\"err\">ERR_NAME_NOT_RESOLVED</p>\n");
}

TEST(HelpPage, has_its_styles) {
    const std::string page = fallbackPage("", "");
    EXPECT_EQ(
        styleOf(page, "body"),
        "font-family: -apple-system, system-ui, sans-serif; background: #f5f5f5; color: #333; "
        "padding: 60px 40px; max-width: 600px; margin: 0 auto; line-height: 1.5;");
    EXPECT_EQ(styleOf(page, "h1"), "color: #B85A10; font-weight: 600;");
    EXPECT_EQ(styleOf(page, "code"),
              "background: #eaeaea; padding: 2px 6px; border-radius: 3px; font-size: 0.95em;");
    EXPECT_EQ(styleOf(page, ".err"),
              "color: #888; font-size: 12px; margin-top: 40px; "
              "font-family: ui-monospace, Menlo, monospace;");
}

TEST(HelpPage, puts_the_error_in_as_it_stands) {
    EXPECT_NE(fallbackPage("s", "<b>a & \"b\"</b>").find("<p class=\"err\"><b>a & \"b\"</b></p>"),
              std::string::npos);
}

TEST(HelpPage, names_the_site_of_an_address) {
    EXPECT_EQ(helpSite("https://help.example/sonavault"), "help.example");
    EXPECT_EQ(helpSite("https://help.example"), "help.example");
    EXPECT_EQ(helpSite("http://127.0.0.1:9/page?a=b#c"), "127.0.0.1");
    EXPECT_EQ(helpSite("help.example/page"), "help.example");
    EXPECT_EQ(helpSite(""), "");
}

TEST(HelpPage, is_served_securely) {
    EXPECT_EQ(helpAddress().rfind("https://", 0), 0u) << helpAddress();
    EXPECT_FALSE(helpSite(helpAddress()).empty());
}

}  // namespace
}  // namespace sonavault::testing
