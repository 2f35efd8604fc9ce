#include "export/ScheduledAircheckCard.h"

#include <QString>
#include <QUuid>
#include <algorithm>
#include <chrono>

#include "platform/Format.h"

namespace sonavault {

ScheduledAircheckCard ScheduledAircheckCard::newDraft() {
    return {.id = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper().toStdString(),
            .label = "New aircheck",
            .mode = aircheckModeName(AircheckMode::voicetracked)};
}

bool ScheduledAircheckCard::isReady() const {
    const bool isNamed = !QString::fromStdString(label).trimmed().isEmpty();
    return active && !daysOfWeek.empty() && isNamed && endHour >= startHour;
}

bool ScheduledAircheckCard::isDue(const LocalTime& now) const {
    if (!isReady()) return false;
    const int today = dayOfWeek(now);
    if (std::find(daysOfWeek.begin(), daysOfWeek.end(), today) == daysOfWeek.end()) return false;
    const double nowSec = now.hour * 3600 + now.minute * 60 + now.second;
    // As a double, for a stored hour may be any number.
    return nowSec >= (endHour + 1.0) * 3600 && lastRunDate != isoDate(now);
}

std::string isoDate(const LocalTime& moment) {
    return zeroPadded(moment.year, 4) + "-" + zeroPadded(moment.month, 2) + "-" +
           zeroPadded(moment.day, 2);
}

int dayOfWeek(const LocalTime& moment) {
    const std::chrono::year_month_day date{std::chrono::year(moment.year),
                                           std::chrono::month(static_cast<unsigned>(moment.month)),
                                           std::chrono::day(static_cast<unsigned>(moment.day))};
    return static_cast<int>(std::chrono::weekday(std::chrono::sys_days(date)).iso_encoding());
}

std::string scheduledAircheckName(const ScheduledAircheckCard& card, const std::string& date) {
    // No file's name can have either of these; the second would end it.
    const auto safeLabel = QString::fromStdString(card.label)
                               .replace('/', '_')
                               .replace(QChar(QChar::Null), '_')
                               .trimmed()
                               .toStdString();
    return "Aircheck_" + safeLabel + "_" + aircheckTag(card.mode) + "_" + date + "_" +
           zeroPadded(card.startHour, 2) + "-" + zeroPadded(card.endHour, 2) + ".mp3";
}

}  // namespace sonavault
