#include <QCoreApplication>
#include <iostream>

#include "pastdays/DemoCards.h"
#include "pastdays/PastDays.h"
#include "pastdays/PastDaysOptions.h"

namespace {

using namespace sonavault;
using namespace sonavault::pastdays;

constexpr int kBadUsage = 2;

void say(const std::string& line) {
    std::cout << "past days: " << line << std::endl;
}

int run(const PastDaysOptions& options) {
    const WallTime now = SystemClock().now();
    if (!options.airchecks.empty()) {
        Preferences preferences(options.airchecks);
        storeDemoCards(preferences, localTime(now));
    }
    const auto made = makePastDays(options.recordings, fiveDays(options.seed),
                                   standardMaterial(options.seed), now, say);
    if (made) return 0;
    std::cerr << "sonavault-past-days: " << made.error() << "\n";
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const auto options = parsePastDaysOptions(QCoreApplication::arguments());
    if (!options) {
        std::cerr << "sonavault-past-days: " << options.error() << " (see --help)\n";
        return kBadUsage;
    }
    if (options.value().wantsHelp || options.value().wantsVersion) {
        std::cout << (options.value().wantsHelp ? pastDaysHelpText() : pastDaysVersionText());
        return 0;
    }
    return run(options.value());
}
