#include "help/HelpPage.h"

namespace sonavault {
namespace {

constexpr auto kHead = R"(<!DOCTYPE html>
<html>
<head>
<meta charset="utf-8">
<title>Sonavault Help</title>
<style>
body { font-family: -apple-system, system-ui, sans-serif; background: #f5f5f5; color: #333;
       padding: 60px 40px; max-width: 600px; margin: 0 auto; line-height: 1.5; }
h1 { color: #B85A10; font-weight: 600; }
code { background: #eaeaea; padding: 2px 6px; border-radius: 3px; font-size: 0.95em; }
.err { color: #888; font-size: 12px; margin-top: 40px; font-family: ui-monospace, Menlo, monospace; }
</style>
</head>
<body>
<h1>Help is currently unavailable</h1>
)";

constexpr auto kAdvice =
    "<p>This usually means your internet connection is offline, or the Calderwave Systems website "
    "is temporarily unreachable. Please check your connection and try again.</p>\n";

}  // namespace

std::string helpAddress() {
    return SONAVAULT_HELP_URL;
}

std::string helpSite(const std::string& address) {
    const auto scheme = address.find("://");
    const auto begin = scheme == std::string::npos ? 0 : scheme + 3;
    const auto end = address.find_first_of("/?#:", begin);
    return address.substr(begin, end == std::string::npos ? end : end - begin);
}

std::string fallbackPage(const std::string& site, const std::string& error) {
    return kHead +
           ("<p>Sonavault couldn't load the help documentation from <code>" + site +
            "</code>.</p>\n") +
           kAdvice + "<p class=\"err\">" + error + "</p>\n</body>\n</html>\n";
}

}  // namespace sonavault
