#include "support/PrivateSoundServer.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <numbers>
#include <stdexcept>
#include <string_view>
#include <thread>

namespace sonavault::testing {

namespace {

constexpr std::chrono::seconds kStartWithin{20};
// Without this a sink that idles hands on its sound in blocks of up to 2 s, which no sound card
// does.
constexpr char kLikeHardware[] = "norewinds=1";

// What the server and the players print, all together.
constexpr char kOutput[] = "output";

constexpr int kToneSeconds = 120;

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (auto& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

/// This process's environment, overlaid.
std::vector<std::string> overlay(const std::map<std::string, std::string>& changes) {
    std::vector<std::string> all;
    for (char** entry = environ; *entry; ++entry) {
        const std::string_view text(*entry);
        if (!changes.contains(std::string(text.substr(0, text.find('='))))) all.emplace_back(text);
    }
    for (const auto& [name, value] : changes) all.push_back(name + "=" + value);
    return all;
}

bool accepts(const std::filesystem::path& socketPath) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = socketPath.string();
    if (path.size() >= sizeof address.sun_path) throw std::runtime_error("too long: " + path);
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool accepted =
        ::connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    ::close(descriptor);
    return accepted;
}

std::string toneSamples(double hertz, int sampleRate) {
    std::string bytes(
        static_cast<std::size_t>(kToneSeconds) * static_cast<std::size_t>(sampleRate) * 4, '\0');
    for (std::size_t i = 0; i < bytes.size() / 4; ++i) {
        const auto turn = hertz * static_cast<double>(i) / sampleRate;
        const auto sample = static_cast<float>(0.5 * std::sin(2 * std::numbers::pi * turn));
        std::memcpy(bytes.data() + 4 * i, &sample, 4);
    }
    return bytes;
}

}  // namespace

PrivateSoundServer::PrivateSoundServer(const Devices& devices) : devices_(devices) {
    const std::string folder = folder_.path().string();
    environment_ = {{"PULSE_SERVER", "unix:" + folder + "/native"},
                    {"PULSE_RUNTIME_PATH", folder},
                    {"PULSE_STATE_PATH", folder},
                    {"PULSE_COOKIE", folder + "/cookie"},
                    // A program that finds no server turns to the machine's own sound card.
                    {"ALSA_CONFIG_PATH", folder + "/no-sound-card.conf"},
                    {"XDG_RUNTIME_DIR", folder}};
    writeConfiguration();
}

PrivateSoundServer::~PrivateSoundServer() {
    kill();
}

void PrivateSoundServer::writeConfiguration() const {
    const auto rate = std::to_string(devices_.sampleRate);
    // One rate only: an idle device would else take that of the first stream.
    writeFile(folder_ / "daemon.conf",
              "default-sample-rate = " + rate + "\nalternate-sample-rate = " + rate + "\n");
    std::string script = "load-module module-native-protocol-unix auth-anonymous=1 socket=" +
                         (folder_ / "native").string() + "\n";
    if (devices_.line)
        script += "load-module module-null-sink sink_name=line rate=" + rate +
                  " channels=" + std::to_string(devices_.channels) + " " + kLikeHardware +
                  " sink_properties=device.description=Line\n"
                  "set-default-sink line\nset-default-source line.monitor\n";
    writeFile(folder_ / "server.pa", script);
    writeFile(folder_ / "no-sound-card.conf", "");
}

void PrivateSoundServer::start() {
    if (server_ != 0) throw std::runtime_error("the sound server runs already");
    std::filesystem::remove(folder_ / "native");
    server_ = launch({"pulseaudio", "-n", "-F", (folder_ / "server.pa").string(), "--daemonize=no",
                      "--exit-idle-time=-1", "--use-pid-file=no", "--disallow-exit=yes",
                      "--disable-shm=yes", "--realtime=no", "--high-priority=no"},
                     kOutput);
    awaitConnection();
}

void PrivateSoundServer::awaitConnection() {
    const auto giveUp = std::chrono::steady_clock::now() + kStartWithin;
    while (!accepts(folder_ / "native")) {
        if (::waitpid(server_, nullptr, WNOHANG) == server_) {
            server_ = 0;
            throw std::runtime_error("the sound server ended at once: " + output());
        }
        if (std::chrono::steady_clock::now() > giveUp)
            throw std::runtime_error("the sound server does not answer: " + output());
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

void PrivateSoundServer::kill() {
    if (server_ != 0) end(server_);
    server_ = 0;
    stopPlaying();
}

void PrivateSoundServer::freeze() {
    if (server_ == 0 || ::kill(server_, SIGSTOP) != 0)
        throw std::runtime_error("nothing to freeze");
    // Only once it is reported as stopped does the server surely do nothing any more.
    ::waitpid(server_, nullptr, WUNTRACED);
}

void PrivateSoundServer::thaw() {
    if (server_ == 0 || ::kill(server_, SIGCONT) != 0) throw std::runtime_error("nothing to thaw");
}

void PrivateSoundServer::exportEnvironment() const {
    for (const auto& [name, value] : environment_) ::setenv(name.c_str(), value.c_str(), 1);
}

void PrivateSoundServer::playTone(double hertz, const std::string& sink) {
    const auto file = folder_ / ("tone-" + std::to_string(hertz));
    if (!std::filesystem::exists(file)) writeFile(file, toneSamples(hertz, devices_.sampleRate));
    // So much lies at the server that a stall of the machine leaves no hole in the tone.
    players_.push_back(launch({"pacat", "--playback", "--raw", "--format=float32ne", "--channels=1",
                               "--rate=" + std::to_string(devices_.sampleRate),
                               "--latency-msec=500", "--device=" + sink, file.string()},
                              kOutput));
}

void PrivateSoundServer::playFile(const std::filesystem::path& file, const std::string& sink) {
    players_.push_back(launch({"paplay", "--device=" + sink, file.string()}, kOutput));
}

void PrivateSoundServer::listenTo(const std::string& sink) {
    // One that was killed may have left half a frame.
    std::filesystem::remove(folder_ / "heard");
    players_.push_back(launch({"pacat", "--record", "--raw", "--format=float32ne",
                               "--channels=" + std::to_string(devices_.channels),
                               "--rate=" + std::to_string(devices_.sampleRate), "--latency-msec=50",
                               "--device=" + sink + ".monitor"},
                              "heard"));
}

std::vector<float> PrivateSoundServer::heard() const {
    const auto bytes = readFile(folder_ / "heard");
    std::vector<float> samples(bytes.size() / sizeof(float));
    if (!samples.empty()) std::memcpy(samples.data(), bytes.data(), samples.size() * sizeof(float));
    return samples;
}

void PrivateSoundServer::stopPlaying() {
    for (const auto player : players_) end(player);
    players_.clear();
}

void PrivateSoundServer::addSink(const std::string& name, int sampleRate, int channels) {
    control({"load-module", "module-null-sink", "sink_name=" + name,
             "rate=" + std::to_string(sampleRate), "channels=" + std::to_string(channels),
             kLikeHardware, "sink_properties=device.description=" + name});
}

void PrivateSoundServer::setDefaultInput(const std::string& source) {
    control({"set-default-source", source});
}

std::string PrivateSoundServer::control(const std::vector<std::string>& arguments) {
    std::vector<std::string> command{"pactl"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    std::filesystem::remove(folder_ / "answer");
    const pid_t child = launch(command, "answer");
    int status = 0;
    if (::waitpid(child, &status, 0) != child || status != 0)
        throw std::runtime_error("pactl " + arguments.front() +
                                 " failed: " + readFile(folder_ / "answer"));
    return readFile(folder_ / "answer");
}

pid_t PrivateSoundServer::launch(const std::vector<std::string>& command,
                                 const std::string& outputName) const {
    auto changes = environment_;
    changes["HOME"] = folder_.path().string();
    changes["XDG_CONFIG_HOME"] = folder_.path().string();
    changes["PULSE_CONFIG"] = (folder_ / "daemon.conf").string();
    auto argumentTexts = command;
    auto environmentTexts = overlay(changes);
    const auto arguments = pointersTo(argumentTexts);
    const auto variables = pointersTo(environmentTexts);
    const std::string outputFile = (folder_ / outputName).string();

    // Between fork and exec only what a signal handler may do: other threads may hold locks.
    const pid_t child = ::fork();
    if (child < 0) throw std::runtime_error("can't start " + command.front());
    if (child == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        const int out = ::open(outputFile.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
        ::dup2(out, STDOUT_FILENO);
        ::dup2(out, STDERR_FILENO);
        ::execvpe(arguments[0], arguments.data(), variables.data());
        ::_exit(127);
    }
    return child;
}

void PrivateSoundServer::end(pid_t child) {
    ::kill(child, SIGKILL);
    while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
}

}  // namespace sonavault::testing
