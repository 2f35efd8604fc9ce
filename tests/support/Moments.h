#pragma once

#include <gtest/gtest.h>

#include <string>

#include "platform/LocalTime.h"

namespace sonavault::testing {

/// The moment that "2026-03-02T13:05:09.123Z" or "2026-03-02T14:05:09.123+01:00" names.
inline WallTime at(const std::string& iso8601) {
    WallTime moment;
    EXPECT_TRUE(parseIso8601WithFraction(iso8601, moment)) << iso8601;
    return moment;
}

}  // namespace sonavault::testing
