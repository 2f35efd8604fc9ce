#include "system/ReviewedDay.h"

#include "store/MarkerLogWriter.h"
#include "support/Ffmpeg.h"
#include "support/TempFolder.h"
#include "system/Listening.h"

namespace sonavault::testing {
namespace {

// Ten seconds again and again, which is much faster than to compute twenty minutes.
constexpr auto kBursts =
    R"(aevalsrc=0.5*sin(2*PI*1000*t)*lt(t\,0.5):s=22050:d=10,aloop=loop=119:size=220500)";

std::string manifest() {
    return R"({"version": 1, "start_offset_sec": )" + std::to_string(ReviewedDay::kStartsAt) + "}";
}

}  // namespace

ReviewedDay::ReviewedDay(const Station& station, const std::string& log)
    : audio(station.dayFile("mp3")) {
    std::filesystem::create_directories(audio.parent_path());
    encodeWithFfmpeg(audio, kBursts, "-ac 1 -ar 22050 -b:a 24k");
    writeFile(station.dayFile("json"), manifest());
    writeFile(station.dayFile("csv"), kMarkerLogHeader + log);
}

std::vector<double> burstsIn(const std::filesystem::path& file) {
    constexpr double kAudibleDb = -40;
    constexpr double kLeastPause = 5;
    const Heard heard = listenTo(file);
    std::vector<double> begins;
    for (const Stretch& pause : silences(heard, kAudibleDb, kLeastPause))
        if (pause.to < heard.durationSec() - 0.1) begins.push_back(pause.to);
    return begins;
}

bool isPieceOf(const std::filesystem::path& cut, const std::filesystem::path& day) {
    const std::string piece = readFile(cut);
    return !piece.empty() && readFile(day).find(piece) != std::string::npos;
}

}  // namespace sonavault::testing
