#include "support/Ffmpeg.h"

#include <cstdlib>
#include <cstring>
#include <stdexcept>

#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

void run(const std::string& arguments) {
    // Its memory checks, if any, are not ours.
    const std::string command = "ffmpeg -nostdin -v error -y " + arguments;
    if (std::system(command.c_str()) != 0) throw std::runtime_error("failed: " + command);
}

std::string quoted(const std::string& text) {
    return "'" + text + "'";
}

}  // namespace

void encodeWithFfmpeg(const std::filesystem::path& file, const std::string& sound,
                      const std::string& options) {
    const bool mp3 = file.extension() == ".mp3";
    run("-f lavfi -i " + quoted(sound) + " -map_metadata -1 " +
        (mp3 ? "-c:a libmp3lame -id3v2_version 0 -write_xing 0 " : "") + options + " " +
        quoted(file.string()));
}

std::string lively(double seconds, int seed) {
    const std::string length = std::to_string(seconds);
    return "anoisesrc=r=44100:a=0.4:seed=" + std::to_string(seed) + ":d=" + length +
           ",tremolo=f=0.7:d=0.9[n];sine=f=523:r=44100:d=" + length +
           "[s];[n][s]amix=inputs=2:normalize=0";
}

std::vector<float> decodeWithFfmpeg(const std::filesystem::path& file) {
    const TempFolder folder;
    const auto raw = folder / "raw";
    run("-i " + quoted(file.string()) + " -f f32le " + quoted(raw.string()));
    const std::string bytes = readFile(raw);
    std::vector<float> samples(bytes.size() / sizeof(float));
    std::memcpy(samples.data(), bytes.data(), samples.size() * sizeof(float));
    return samples;
}

}  // namespace sonavault::testing
