#include "platform/JsonFields.h"

#include <QJsonDocument>
#include <cmath>

namespace sonavault {

Result<JsonFields> JsonFields::parse(std::string_view json) {
    using Parsed = Result<JsonFields>;
    QJsonParseError parsing;
    const auto document = QJsonDocument::fromJson(
        QByteArray::fromRawData(json.data(), static_cast<qsizetype>(json.size())), &parsing);
    if (parsing.error != QJsonParseError::NoError)
        return Parsed::failure(parsing.errorString().toStdString());
    if (!document.isObject()) return Parsed::failure("not a JSON object");
    return JsonFields(document.object());
}

void JsonFields::require(const char* key) {
    if (!find(key) && error_.empty()) error_ = std::string("key ") + key + " is missing";
}

std::optional<std::string> JsonFields::text(const char* key) {
    const auto value = find(key);
    if (!value) return std::nullopt;
    if (value->isString()) return value->toString().toStdString();
    return refuse(key, "a text"), std::nullopt;
}

std::optional<double> JsonFields::number(const char* key) {
    const auto value = find(key);
    if (!value) return std::nullopt;
    if (value->isDouble()) return value->toDouble();
    return refuse(key, "a number"), std::nullopt;
}

std::optional<std::int64_t> JsonFields::integer(const char* key) {
    const auto value = find(key);
    if (!value) return std::nullopt;
    constexpr double kLargestExact = 9007199254740992.0;  // 2^53
    if (value->isDouble()) {
        const double number = value->toDouble();
        if (number == std::trunc(number) && std::abs(number) <= kLargestExact)
            return static_cast<std::int64_t>(number);
    }
    return refuse(key, "an integer"), std::nullopt;
}

std::optional<bool> JsonFields::boolean(const char* key) {
    const auto value = find(key);
    if (!value) return std::nullopt;
    if (value->isBool()) return value->toBool();
    return refuse(key, "true or false"), std::nullopt;
}

std::optional<QJsonValue> JsonFields::find(const char* key) const {
    const auto found = object_.constFind(QLatin1String(key));
    if (found == object_.constEnd() || found->isNull()) return std::nullopt;
    return *found;
}

void JsonFields::refuse(const char* key, const char* wanted) {
    if (error_.empty()) error_ = std::string("key ") + key + " is not " + wanted;
}

}  // namespace sonavault
