#include "pastdays/PastDaysOptions.h"

#include <QCommandLineParser>

#include "store/Version.h"

namespace sonavault::pastdays {
namespace {

constexpr int kMostSeed = 1'000'000;

void describe(QCommandLineParser& parser) {
    parser.setApplicationDescription(
        "Makes five recorded days for a demonstration, on the five dates before today: a full "
        "one,\n"
        "one with outages, one that begins at 06:30, one with hour marks only, and a legacy .m4a.\n"
        "A date that has a recording keeps it.");
    parser.addOption({{"h", "help"}, "Show this help."});
    parser.addOption({"version", "Show the version."});
    parser.addOption({"home",
                      "The home of a demonstration: the days go into the recordings of the station "
                      "folder Calderwave/Station in it.",
                      "folder"});
    parser.addOption({"recordings", "The folder itself that the days go into.", "folder"});
    parser.addOption({"airchecks",
                      "The program's preferences of that home, in which two scheduled airchecks "
                      "are to be stored in place of any others.",
                      "file"});
    parser.addOption({"seed", "Another number, other days (1).", "number", "1"});
}

Result<std::filesystem::path> recordingsOf(const QCommandLineParser& parser) {
    using Found = Result<std::filesystem::path>;
    const std::string home = parser.value("home").toStdString();
    const std::string recordings = parser.value("recordings").toStdString();
    // There is no default, so that no demonstration gets into a station by mistake.
    if (home.empty() == recordings.empty())
        return Found::failure("one of --home and --recordings is needed");
    if (!recordings.empty()) return std::filesystem::path(recordings);
    return std::filesystem::path(home) / "Calderwave" / "Station" / "Logs" / "Audio";
}

}  // namespace

Result<PastDaysOptions> parsePastDaysOptions(const QStringList& arguments) {
    using Parsed = Result<PastDaysOptions>;
    QCommandLineParser parser;
    describe(parser);
    if (!parser.parse(arguments)) return Parsed::failure(parser.errorText().toStdString());
    if (!parser.positionalArguments().isEmpty())
        return Parsed::failure(
            QString("\"%1\" is no option").arg(parser.positionalArguments().first()).toStdString());
    PastDaysOptions options;
    options.wantsHelp = parser.isSet("help");
    options.wantsVersion = parser.isSet("version");
    if (options.wantsHelp || options.wantsVersion) return options;
    bool isNumber = false;
    const int seed = parser.value("seed").toInt(&isNumber);
    if (!isNumber || seed < 0 || seed > kMostSeed)
        return Parsed::failure("--seed: \"" + parser.value("seed").toStdString() +
                               "\" is not possible here");
    options.seed = static_cast<unsigned>(seed);
    options.airchecks = parser.value("airchecks").toStdString();
    const auto recordings = recordingsOf(parser);
    if (!recordings) return Parsed::failure(recordings.error());
    options.recordings = recordings.value();
    return options;
}

std::string pastDaysHelpText() {
    QCommandLineParser parser;
    describe(parser);
    return parser.helpText().toStdString();
}

std::string pastDaysVersionText() {
    return std::string("sonavault-past-days ") + kSonavaultVersion + "\n";
}

}  // namespace sonavault::pastdays
