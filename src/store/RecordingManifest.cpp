#include "store/RecordingManifest.h"

#include <QJsonDocument>
#include <QJsonObject>

#include "platform/FileQueries.h"
#include "platform/JsonFields.h"
#include "platform/LocalTime.h"
#include "platform/ReadFile.h"
#include "store/StationFolder.h"

namespace sonavault {

namespace {

constexpr auto kVersion = "version";
constexpr auto kSourceMode = "source_mode";
constexpr auto kStartedAt = "started_at_iso8601";
constexpr auto kStartOffset = "start_offset_sec";
constexpr auto kSampleRate = "sample_rate";
constexpr auto kChannels = "channels";
constexpr auto kBitrate = "bitrate_kbps";
constexpr auto kDeviceName = "device_name";
constexpr auto kRecordedBy = "recorded_by";
constexpr auto kNotes = "notes";

void put(QJsonObject& object, const char* key, const std::optional<std::string>& text) {
    if (text) object.insert(QLatin1String(key), QString::fromStdString(*text));
}

void put(QJsonObject& object, const char* key, const std::optional<std::int64_t>& number) {
    if (number) object.insert(QLatin1String(key), static_cast<qint64>(*number));
}

Result<RecordingManifest> readAndDecode(const std::filesystem::path& file) {
    const auto bytes = readWholeFile(file);
    if (!bytes) return Result<RecordingManifest>::failure(bytes.error());
    return decodeManifest(bytes.value());
}

}  // namespace

std::string encodeManifest(const RecordingManifest& manifest) {
    QJsonObject object;
    object.insert(QLatin1String(kVersion), static_cast<qint64>(manifest.version));
    object.insert(QLatin1String(kStartOffset), manifest.startOffsetSec);
    put(object, kSourceMode, manifest.sourceMode);
    put(object, kStartedAt, manifest.startedAtIso8601);
    put(object, kSampleRate, manifest.sampleRate);
    put(object, kChannels, manifest.channels);
    put(object, kBitrate, manifest.bitrateKbps);
    put(object, kDeviceName, manifest.deviceName);
    put(object, kRecordedBy, manifest.recordedBy);
    put(object, kNotes, manifest.notes);
    return QJsonDocument(object).toJson(QJsonDocument::Indented).toStdString();
}

Result<RecordingManifest> decodeManifest(std::string_view json) {
    using Decoded = Result<RecordingManifest>;
    auto parsed = JsonFields::parse(json);
    if (!parsed) return Decoded::failure(parsed.error());

    JsonFields& fields = parsed.value();
    fields.require(kVersion);
    fields.require(kStartOffset);
    RecordingManifest manifest;
    manifest.version = fields.integer(kVersion).value_or(0);
    manifest.startOffsetSec = fields.number(kStartOffset).value_or(0);
    manifest.sourceMode = fields.text(kSourceMode);
    manifest.startedAtIso8601 = fields.text(kStartedAt);
    manifest.sampleRate = fields.integer(kSampleRate);
    manifest.channels = fields.integer(kChannels);
    manifest.bitrateKbps = fields.integer(kBitrate);
    manifest.deviceName = fields.text(kDeviceName);
    manifest.recordedBy = fields.text(kRecordedBy);
    manifest.notes = fields.text(kNotes);
    if (!fields.error().empty()) return Decoded::failure(fields.error());
    return manifest;
}

std::filesystem::path manifestURL(const std::filesystem::path& audio) {
    return sidecarURL(audio, "json");
}

std::optional<RecordingManifest> loadManifest(const std::filesystem::path& audio, Log& log) {
    const auto file = manifestURL(audio);
    if (!pathExists(file)) return std::nullopt;
    auto manifest = readAndDecode(file);
    if (manifest) return std::move(manifest.value());
    log.line("Sonavault: Manifest load failed at " + file.string() + ": " + manifest.error());
    return std::nullopt;
}

std::optional<RecordingManifest> readManifest(const std::filesystem::path& file) {
    auto manifest = readAndDecode(file);
    if (!manifest) return std::nullopt;
    return std::move(manifest.value());
}

std::optional<WallTime> readManifestStartedAt(const std::filesystem::path& file) {
    const auto manifest = readManifest(file);
    WallTime moment;
    if (!manifest || !manifest->startedAtIso8601 ||
        !parseIso8601WithFraction(*manifest->startedAtIso8601, moment))
        return std::nullopt;
    return moment;
}

}  // namespace sonavault
