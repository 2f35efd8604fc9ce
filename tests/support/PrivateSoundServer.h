#pragma once

#include <sys/types.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "support/TempFolder.h"

namespace sonavault::testing {

/// A sound server of the test's own, with trouble on demand.
///
/// It has no hardware: what is played into its sink "line" is what its default input, "Monitor of
/// Line", hears. The server and the players are direct children, which end with the thread that
/// started them at the latest.
///
/// Thread: one, which must live as long as the server is needed.
/// Errors: std::runtime_error in words.
class PrivateSoundServer {
  public:
    struct Devices {
        int sampleRate = 48000;  ///< Units: hertz. Of everything in the server
        int channels = 2;
        bool line = true;  ///< false: a server with no device at all
    };

    /// A server that is not started yet; its address is known already.
    PrivateSoundServer() : PrivateSoundServer(Devices{}) {}
    explicit PrivateSoundServer(const Devices& devices);
    ~PrivateSoundServer();
    PrivateSoundServer(const PrivateSoundServer&) = delete;
    PrivateSoundServer& operator=(const PrivateSoundServer&) = delete;

    /// Returns when clients can connect. All that was changed at run time is as at the first start
    /// again.
    void start();

    /// At once and without a farewell, frozen or not. Players end with it.
    void kill();

    /// The server keeps its connections but answers nothing.
    void freeze();
    void thaw();

    /// What a client needs to find this server, for a child process.
    const std::map<std::string, std::string>& environment() const { return environment_; }

    /// The same for this process. Call it while no other thread reads the environment.
    void exportEnvironment() const;

    /// Plays a sine of this frequency at half of full scale on all channels, until stopPlaying() or
    /// for two minutes, into `sink`. Several play at once.
    void playTone(double hertz, const std::string& sink = "line");

    /// Plays a sound file once.
    void playFile(const std::filesystem::path& file, const std::string& sink = "line");

    void stopPlaying();

    /// Writes down what comes out of `sink` from soon after on, until stopPlaying(), in a process
    /// of its own.
    void listenTo(const std::string& sink = "line");

    /// All that was written down since then, at the server's rate, its channels side by side.
    std::vector<float> heard() const;

    /// One more sink, and its monitor "{name}.monitor" as one more input.
    void addSink(const std::string& name, int sampleRate, int channels);

    void setDefaultInput(const std::string& source);

    /// Runs the server's control program with these arguments and waits for it; gives what it
    /// printed.
    std::string control(const std::vector<std::string>& arguments);

    /// What the server printed, for a failing test's message.
    std::string output() const { return readFile(folder_ / "output"); }

  private:
    pid_t launch(const std::vector<std::string>& command, const std::string& outputName) const;
    void awaitConnection();
    void writeConfiguration() const;
    static void end(pid_t child);

    TempFolder folder_;
    const Devices devices_;
    std::map<std::string, std::string> environment_;
    pid_t server_ = 0;
    std::vector<pid_t> players_;
};

}  // namespace sonavault::testing
