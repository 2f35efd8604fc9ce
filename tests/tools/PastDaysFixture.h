#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include "pastdays/PastDays.h"
#include "platform/AudioDecoder.h"
#include "support/TempFolder.h"

namespace sonavault::pastdays {

/// A Saturday afternoon.
inline const WallTime kNow = WallTime(std::chrono::hours(20'778 * 24 + 15));

/// The pieces of the demonstration, a tenth as long: enough to be told apart, and soon made.
inline Material shortMaterial(unsigned seed = 1) {
    Material material = standardMaterial(seed);
    for (auto* recipes : {&material.recipes, &material.legacyRecipes})
        for (Recipe& recipe : *recipes) recipe.seconds /= 10;
    return material;
}

/// Makes one day, yesterday's, and gives its audio file.
inline std::filesystem::path makeYesterday(const std::filesystem::path& folder, const PastDay& day,
                                           unsigned seed = 1) {
    const auto made =
        makePastDays(folder, {day}, shortMaterial(seed), kNow, [](const std::string&) {});
    if (!made) ADD_FAILURE() << made.error();
    return folder / (day.legacy ? "Sonavault_2026-11-20.m4a" : "Sonavault_2026-11-20.mp3");
}

/// All samples of a file of one channel.
inline std::vector<float> decoded(const std::filesystem::path& file) {
    auto decoder = AudioDecoder::open(file);
    if (!decoder) {
        ADD_FAILURE() << decoder.error();
        return {};
    }
    std::vector<float> samples(static_cast<std::size_t>(decoder.value()->length()));
    float* const plane = samples.data();
    const auto read = decoder.value()->read(std::span(&plane, 1), decoder.value()->length());
    EXPECT_EQ(read, decoder.value()->length());
    return samples;
}

}  // namespace sonavault::pastdays
