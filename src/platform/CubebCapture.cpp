#include "platform/CubebCapture.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

namespace sonavault {

namespace {

constexpr char kClientName[] = "Sonavault";
constexpr char kStreamName[] = "Line input";

// Where most people's sound goes through a server of this kind, asking for it first avoids a device
// of the system being taken from under that server. The library goes on to its own order when there
// is none.
#ifdef __linux__
constexpr const char* kFirstChoice = "pulse";
#else
constexpr const char* kFirstChoice = nullptr;
#endif

// The pieces in which the device hands over: short against the 50 ms by which a buffer may be late
// before it counts as a gap in the air.
constexpr double kPieceSeconds = 0.02;

constexpr double kLeastRate = 8000;
constexpr double kHighestRate = 192000;
constexpr int kMostChannels = 8;

// Runs on the sound system's thread: no lock, no allocation, no log line.
long takeSamples(cubeb_stream*, void* user, const void* input, void*, long frames) {
    auto& run = *static_cast<CubebCaptureRun*>(user);
    if (input && frames > 0) {
        run.ring.push(static_cast<const float*>(input), frames);
        run.arrived.release();
    }
    return frames;
}

void takeState(cubeb_stream*, void* user, cubeb_state state) {
    if (state == CUBEB_STATE_ERROR) static_cast<CubebCaptureRun*>(user)->failed = true;
}

std::string reason(int code) {
    switch (code) {
        case CUBEB_ERROR_INVALID_FORMAT:
            return "it can't give this format";
        case CUBEB_ERROR_INVALID_PARAMETER:
            return "it can't be opened this way";
        case CUBEB_ERROR_NOT_SUPPORTED:
            return "it can't record";
        case CUBEB_ERROR_DEVICE_UNAVAILABLE:
            return "it is not available";
        default:
            return "it refused";
    }
}

CubebDefaultInput describeDevice(const cubeb_device_info& device) {
    CubebDefaultInput input;
    input.format.sampleRate =
        std::clamp(static_cast<double>(device.default_rate), kLeastRate, kHighestRate);
    input.format.channels =
        static_cast<int>(std::clamp<std::uint32_t>(device.max_channels, 1, kMostChannels));
    input.format.interleaved = true;
    if (device.friendly_name) input.name = device.friendly_name;
    return input;
}

}  // namespace

Result<std::unique_ptr<CubebContext>> CubebContext::open() {
    using Opened = Result<std::unique_ptr<CubebContext>>;
    cubeb* context = nullptr;
    if (cubeb_init(&context, kClientName, kFirstChoice) != CUBEB_OK)
        return Opened::failure("there is no sound system");
    return std::unique_ptr<CubebContext>(new CubebContext(context));
}

std::optional<CubebDefaultInput> CubebContext::defaultInput() {
    cubeb_device_collection devices{};
    if (cubeb_enumerate_devices(get(), CUBEB_DEVICE_TYPE_INPUT, &devices) != CUBEB_OK)
        return std::nullopt;
    std::optional<CubebDefaultInput> found;
    for (std::size_t i = 0; i < devices.count && !found; ++i)
        if (devices.device[i].preferred != CUBEB_DEVICE_PREF_NONE)
            found = describeDevice(devices.device[i]);
    cubeb_device_collection_destroy(get(), &devices);
    return found;
}

void CubebCapture::StopAndDestroy::operator()(cubeb_stream* stream) const {
    cubeb_stream_stop(stream);
    cubeb_stream_destroy(stream);
}

Result<std::unique_ptr<CubebCapture>> CubebCapture::open(std::shared_ptr<CubebCaptureRun> run,
                                                         const std::string& backend) {
    using Opened = Result<std::unique_ptr<CubebCapture>>;
    auto context = CubebContext::open();
    if (!context) return Opened::failure(context.error());
    if (!backend.empty() && context.value()->backend() != backend)
        return Opened::failure("the sound server is gone");
    std::unique_ptr<CubebCapture> capture(
        new CubebCapture(std::move(run), std::move(context.value())));
    if (auto begun = capture->begin(); !begun) return Opened::failure(begun.error());
    return capture;
}

Outcome CubebCapture::begin() {
    cubeb_stream_params params{};
    params.format = CUBEB_SAMPLE_FLOAT32NE;
    params.rate = static_cast<std::uint32_t>(std::lround(run_->format.sampleRate));
    params.channels = static_cast<std::uint32_t>(run_->format.channels);
    params.layout = CUBEB_LAYOUT_UNDEFINED;
    params.prefs = CUBEB_STREAM_PREF_NONE;
    const auto piece = static_cast<std::uint32_t>(std::lround(params.rate * kPieceSeconds));

    cubeb_stream* stream = nullptr;
    int code = cubeb_stream_init(context_->get(), &stream, kStreamName, nullptr, &params, nullptr,
                                 nullptr, piece, takeSamples, takeState, run_.get());
    if (code == CUBEB_OK) {
        stream_.reset(stream);
        code = cubeb_stream_start(stream);
    }
    if (code == CUBEB_OK) return Done{};
    const auto input = context_->defaultInput();
    if (!input) return Outcome::failure("there is no input device (" + context_->backend() + ")");
    return Outcome::failure("the input device \"" + input->name +
                            "\" can't be opened: " + reason(code));
}

}  // namespace sonavault
