#pragma once

#include <QStringList>
#include <string>

#include "platform/Result.h"

namespace sonavault::demohub {

/// What the program was asked to do.
struct HubOptions {
    std::string socketPath;
    bool wantsHelp = false;  ///< nothing else matters then
};

/// `arguments` with the program's name first. Errors: what is wrong with them, in words.
Result<HubOptions> parseHubOptions(const QStringList& arguments);

/// What --help prints.
std::string hubHelpText();

}  // namespace sonavault::demohub
