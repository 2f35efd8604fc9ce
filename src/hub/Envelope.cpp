#include "hub/Envelope.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QUuid>
#include <algorithm>
#include <cmath>

namespace sonavault {
namespace {

// The serialiser would write such numbers as null, and the reader would take it for a value.
bool fitsJson(const QJsonValue& value) {
    if (value.isDouble()) return std::isfinite(value.toDouble());
    if (value.isArray()) {
        const QJsonArray array = value.toArray();
        return std::all_of(array.begin(), array.end(), fitsJson);
    }
    if (value.isObject()) {
        const QJsonObject object = value.toObject();
        return std::all_of(object.begin(), object.end(), fitsJson);
    }
    return true;
}

QString text(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

void insertIfSet(QJsonObject& object, QLatin1String key, const std::optional<std::string>& value) {
    if (value) object.insert(key, text(*value));
}

// Half a character (a lone surrogate) has no form in UTF-8: such a text can't be said again.
std::optional<std::string> textOf(const QJsonValue& value) {
    const QString text = value.toString();
    if (!value.isString() || !text.isValidUtf16()) return std::nullopt;
    return text.toStdString();
}

// JSON does not tell 7 from 7.0: both are whole.
std::optional<std::int64_t> integerOf(const QJsonValue& value) {
    const qint64 read = value.toInteger(0);
    if (read == 0 && value.toInteger(1) != 0) return std::nullopt;
    return read;
}

Result<Envelope, SwitchboardError> malformed(std::string message) {
    return Result<Envelope, SwitchboardError>::failure(
        {SwitchboardError::Code::malformedReply, std::nullopt, std::move(message), std::nullopt});
}

Envelope envelopeOf(const QJsonObject& object, std::string type, std::string from) {
    Envelope envelope;
    envelope.v = integerOf(object[QLatin1String("v")]).value_or(kProtocolVersion);
    envelope.id = textOf(object[QLatin1String("id")]);
    envelope.type = std::move(type);
    envelope.from = std::move(from);
    if (const auto to = object[QLatin1String("to")]; !to.isUndefined()) envelope.to = to;
    envelope.topic = textOf(object[QLatin1String("topic")]);
    envelope.ref = textOf(object[QLatin1String("ref")]);
    envelope.timeoutMs = integerOf(object[QLatin1String("timeout_ms")]);
    if (const auto payload = object[QLatin1String("payload")]; payload.isObject())
        envelope.payload = payload.toObject();
    return envelope;
}

}  // namespace

Result<std::string> Envelope::encode() const {
    if ((to && !fitsJson(*to)) || (payload && !fitsJson(*payload)))
        return Result<std::string>::failure("a number is not finite");
    QJsonObject object{{QLatin1String("v"), static_cast<qint64>(v)},
                       {QLatin1String("type"), text(type)},
                       {QLatin1String("from"), text(from)}};
    insertIfSet(object, QLatin1String("id"), id);
    if (to) object.insert(QLatin1String("to"), *to);
    insertIfSet(object, QLatin1String("topic"), topic);
    insertIfSet(object, QLatin1String("ref"), ref);
    if (timeoutMs) object.insert(QLatin1String("timeout_ms"), static_cast<qint64>(*timeoutMs));
    if (payload) object.insert(QLatin1String("payload"), *payload);
    return QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString();
}

Result<Envelope, SwitchboardError> Envelope::decode(std::string_view line) {
    QJsonParseError fault;
    const auto document = QJsonDocument::fromJson(
        QByteArray::fromRawData(line.data(), static_cast<qsizetype>(line.size())), &fault);
    if (fault.error != QJsonParseError::NoError)
        return malformed(fault.errorString().toStdString());
    if (!document.isObject()) return malformed("envelope not a JSON object");
    const QJsonObject object = document.object();
    auto type = textOf(object[QLatin1String("type")]);
    auto from = textOf(object[QLatin1String("from")]);
    if (!type || !from) return malformed("envelope missing required type/from");
    return envelopeOf(object, std::move(*type), std::move(*from));
}

std::string newEnvelopeId() {
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper().toStdString();
}

}  // namespace sonavault
