#include <QCoreApplication>
#include <iostream>

#include "pastdays/PastDays.h"
#include "pastdays/PastDaysOptions.h"

int main(int argc, char** argv) {
    using namespace sonavault::pastdays;
    constexpr int kBadUsage = 2;
    const QCoreApplication application(argc, argv);
    const auto options = parsePastDaysOptions(QCoreApplication::arguments());
    if (!options) {
        std::cerr << "sonavault-past-days: " << options.error() << " (see --help)\n";
        return kBadUsage;
    }
    const auto& [recordings, seed, wantsHelp, wantsVersion] = options.value();
    if (wantsHelp || wantsVersion) {
        std::cout << (wantsHelp ? pastDaysHelpText() : pastDaysVersionText());
        return 0;
    }
    const auto made = makePastDays(
        recordings, fiveDays(seed), standardMaterial(seed), sonavault::SystemClock().now(),
        [](const std::string& line) { std::cout << "past days: " << line << std::endl; });
    if (made) return 0;
    std::cerr << "sonavault-past-days: " << made.error() << "\n";
    return 1;
}
