#pragma once

#include <QStringList>
#include <filesystem>
#include <string>

#include "platform/Result.h"

namespace sonavault::pastdays {

/// What the program was asked to do.
struct PastDaysOptions {
    std::filesystem::path recordings;  ///< where the days go
    std::filesystem::path airchecks;   ///< preferences that get scheduled airchecks; may be empty
    unsigned seed = 1;                 ///< another seed, other days
    bool wantsHelp = false;            ///< nothing else matters then
    bool wantsVersion = false;         ///< nor then
};

/// `arguments` with the program's name first. Errors: what is wrong with them, in words.
Result<PastDaysOptions> parsePastDaysOptions(const QStringList& arguments);

/// What --help prints.
std::string pastDaysHelpText();

/// What --version prints.
std::string pastDaysVersionText();

}  // namespace sonavault::pastdays
