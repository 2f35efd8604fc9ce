#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "export/ScheduledAircheckCard.h"

namespace sonavault {
namespace {

QJsonObject objectOf(const ScheduledAircheckCard& card) {
    QJsonArray days;
    for (const int day : card.daysOfWeek) days.append(day);
    return {{"id", QString::fromStdString(card.id)},
            {"label", QString::fromStdString(card.label)},
            {"daysOfWeek", days},
            {"startHour", card.startHour},
            {"endHour", card.endHour},
            {"mode", QString::fromStdString(card.mode)},
            {"active", card.active},
            {"lastRunDate", QString::fromStdString(card.lastRunDate)}};
}

// Each of these takes a value of its kind, and is false for all others.

bool take(const QJsonValue& value, std::string& text) {
    text = value.toString().toStdString();
    return value.isString();
}

bool take(const QJsonValue& value, int& number) {
    // What is no whole number, or too large for one, comes out as another number.
    number = value.toInt();
    return value.isDouble() && value.toDouble() == number;
}

bool take(const QJsonValue& value, bool& flag) {
    flag = value.toBool();
    return value.isBool();
}

bool take(const QJsonValue& value, std::vector<int>& numbers) {
    for (const auto& each : value.toArray())
        if (!take(QJsonValue(each), numbers.emplace_back())) return false;
    return value.isArray();
}

std::optional<ScheduledAircheckCard> cardOf(const QJsonObject& object) {
    ScheduledAircheckCard card;
    const bool whole =
        take(object["id"], card.id) && take(object["label"], card.label) &&
        take(object["daysOfWeek"], card.daysOfWeek) && take(object["startHour"], card.startHour) &&
        take(object["endHour"], card.endHour) && take(object["mode"], card.mode) &&
        take(object["active"], card.active) && take(object["lastRunDate"], card.lastRunDate);
    if (!whole) return std::nullopt;
    return card;
}

}  // namespace

std::string encodeCards(const std::vector<ScheduledAircheckCard>& cards) {
    QJsonArray array;
    for (const auto& card : cards) array.append(objectOf(card));
    return QJsonDocument(array).toJson(QJsonDocument::Compact).toStdString();
}

std::optional<std::vector<ScheduledAircheckCard>> decodeCards(std::string_view json) {
    const auto document = QJsonDocument::fromJson(
        QByteArray::fromRawData(json.data(), static_cast<qsizetype>(json.size())));
    if (!document.isArray()) return std::nullopt;
    std::vector<ScheduledAircheckCard> cards;
    for (const auto& each : document.array()) {
        auto card = cardOf(QJsonValue(each).toObject());
        if (!card) return std::nullopt;
        cards.push_back(std::move(*card));
    }
    return cards;
}

}  // namespace sonavault
