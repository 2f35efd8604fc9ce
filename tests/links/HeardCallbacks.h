#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "links/SVAudioServer.h"

namespace sonavault::testing {

/// Everything an audio server called back, as the test reads it from its own thread.
class HeardCallbacks {
  public:
    /// Sets the server's callbacks to this, which must outlive it.
    void listenTo(SVAudioServer& server) {
        server.onHandshake = [this](const AudioFormat& format) {
            note("handshake " + describe(format));
        };
        server.onDisconnect = [this] { note("disconnect"); };
        server.onBuffer = [this](const AudioBufferView& buffer) { keep(buffer); };
        server.onListenerStateChange = [this](ListenerState state) {
            std::scoped_lock lock(mutex_);
            states_.push_back(state);
        };
    }

    /// Handshakes, disconnects and (in one "samples" however many buffers) audio, in their order.
    std::vector<std::string> events() const { return locked(events_); }
    std::vector<float> samples() const { return locked(samples_); }
    std::vector<ListenerState> states() const { return locked(states_); }
    std::size_t sampleCount() const {
        std::scoped_lock lock(mutex_);
        return samples_.size();
    }
    std::string lastEvent() const {
        const auto all = events();
        return all.empty() ? std::string() : all.back();
    }
    int disconnects() const {
        int found = 0;
        for (const auto& event : events()) found += event == "disconnect";
        return found;
    }

  private:
    template <class T>
    T locked(const T& value) const {
        std::scoped_lock lock(mutex_);
        return value;
    }

    void note(const std::string& event) {
        std::scoped_lock lock(mutex_);
        events_.push_back(event);
    }

    void keep(const AudioBufferView& buffer) {
        std::scoped_lock lock(mutex_);
        if (events_.empty() || events_.back() != "samples") events_.emplace_back("samples");
        const auto words = static_cast<std::size_t>(buffer.frames * buffer.format.channels);
        samples_.insert(samples_.end(), buffer.planes[0], buffer.planes[0] + words);
    }

    mutable std::mutex mutex_;
    std::vector<std::string> events_;
    std::vector<float> samples_;
    std::vector<ListenerState> states_;
};

}  // namespace sonavault::testing
