#pragma once

#include <string>

namespace sonavault {

/// Where the air comes from.
enum class SVRecorderSourceMode {
    lineInput,   ///< the computer's default audio input
    cadenzoTCP,  ///< the automation, over the audio link
};

/// The value that preferences and manifests store: "line_input" or "cadenzo_tcp".
inline std::string rawValue(SVRecorderSourceMode mode) {
    return mode == SVRecorderSourceMode::lineInput ? "line_input" : "cadenzo_tcp";
}

/// The mode of a stored value; the line input for any text that is none.
inline SVRecorderSourceMode sourceModeFromRawValue(const std::string& stored) {
    return stored == "cadenzo_tcp" ? SVRecorderSourceMode::cadenzoTCP
                                   : SVRecorderSourceMode::lineInput;
}

/// The words for people: "line input" or "Cadenzo TCP".
inline std::string statusWords(SVRecorderSourceMode mode) {
    return mode == SVRecorderSourceMode::lineInput ? "line input" : "Cadenzo TCP";
}

}  // namespace sonavault
