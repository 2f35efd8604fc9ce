#include "platform/AudioFormat.h"

#include <charconv>

namespace sonavault {

std::string describe(const AudioFormat& format) {
    char rate[32];
    const auto end =
        std::to_chars(rate, rate + sizeof rate, format.sampleRate, std::chars_format::fixed, 6).ptr;
    std::string text(rate, end);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.ends_with('.')) text.pop_back();
    return text + " Hz, " + std::to_string(format.channels) + " ch, Float32, " +
           (format.interleaved ? "interleaved" : "non-interleaved");
}

}  // namespace sonavault
