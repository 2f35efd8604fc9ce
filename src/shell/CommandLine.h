#pragma once

#include <string>
#include <vector>

namespace sonavault {

/// What the words behind the program's name ask for: nothing but its version and its help can be.
struct CommandLine {
    enum Request { run, version, help, unknown };

    Request request = run;
    std::string word;  ///< for `unknown`: the first one that was not understood
};

/// `words`: without the program's own name. A word that is not understood outweighs all others.
CommandLine parseCommandLine(const std::vector<std::string>& words);

/// The answer on standard output to a request for the version or the help.
std::string versionText();
std::string helpText();

/// The answer on standard error to `word`.
std::string unknownOptionText(const std::string& word);

}  // namespace sonavault
