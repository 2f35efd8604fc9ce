#include "shell/CommandLine.h"

#include "store/Version.h"

namespace sonavault {

CommandLine parseCommandLine(const std::vector<std::string>& words) {
    CommandLine line;
    for (const auto& word : words) {
        if (word != "--version" && word != "--help") return {CommandLine::unknown, word};
        if (line.request == CommandLine::run)
            line.request = word == "--version" ? CommandLine::version : CommandLine::help;
    }
    return line;
}

std::string versionText() {
    return std::string("Sonavault ") + kSonavaultVersion;
}

std::string helpText() {
    return "Sonavault records what a radio station sends, one file a day.\n"
           "\n"
           "  sonavault             starts the program; a copy that runs already is ended\n"
           "  sonavault --version   tells the version\n"
           "  sonavault --help      shows this text\n"
           "\n"
           "Without a display it records without a window.";
}

std::string unknownOptionText(const std::string& word) {
    return "sonavault: there is no option \"" + word + "\"; sonavault --help shows what there is";
}

}  // namespace sonavault
