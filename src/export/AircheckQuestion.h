#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace sonavault {

/// The question which kind of aircheck to build, and of which hours.
struct AircheckQuestion {
    std::string message;
    std::string information;
    std::vector<std::string> buttons;  ///< the first is the default

    // Two choices of an hour, below the text.
    std::string startLabel;
    std::string endLabel;
    std::vector<std::string> hours;  ///< the titles of both, one an hour, from 0
    int startHour = 0;               ///< chosen at first
    int endHour = 0;
};

/// What the person answered.
struct AircheckAnswer {
    std::size_t button = 0;  ///< the last one when the question was closed without a choice
    int startHour = 0;       ///< Range: 0 to 23
    int endHour = 0;
};

}  // namespace sonavault
