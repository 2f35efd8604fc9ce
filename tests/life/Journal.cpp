#include "life/Journal.h"

#include <algorithm>
#include <cstdio>

#include "life/DayCheck.h"

namespace sonavault::testing {

void Journal::note(double stationTime, const std::string& what) {
    const std::chrono::duration<double> age = std::chrono::steady_clock::now() - begin_;
    char begin[32];
    std::snprintf(begin, sizeof begin, "%8.2f s  ", age.count());
    entries_.push_back({stationTime, begin + utcText(stationTime) + "  " + what + "\n"});
    std::fputs(("[  life    ] " + entries_.back().line).c_str(), stdout);
    std::fflush(stdout);
}

std::string Journal::last(std::size_t count) const {
    std::string text;
    const std::size_t first = entries_.size() - std::min(count, entries_.size());
    for (std::size_t i = first; i < entries_.size(); ++i) text += entries_[i].line;
    return text;
}

std::string Journal::around(double from, double to) const {
    constexpr double kMargin = 30;
    std::string text;
    for (const auto& entry : entries_)
        if (entry.stationTime > from - kMargin && entry.stationTime < to + kMargin)
            text += entry.line;
    return text;
}

}  // namespace sonavault::testing
