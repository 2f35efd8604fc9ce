#pragma once

#include <string>

namespace sonavault {

/// Where the online documentation is.
std::string helpAddress();

/// The name of the site in an address: "help.example" of "https://help.example/page".
std::string helpSite(const std::string& address);

/// The page that is shown when the documentation can't be loaded. HTML, UTF-8
///
/// `error`: what went wrong, put in as it stands.
std::string fallbackPage(const std::string& site, const std::string& error);

}  // namespace sonavault
