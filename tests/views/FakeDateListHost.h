#pragma once

#include <QDate>
#include <functional>
#include <string>
#include <vector>

#include "views/DateListView.h"

namespace sonavault::testing {

/// A program around the list of days that does nothing but remember.
class FakeDateListHost final : public DateListHost {
  public:
    bool isRecording() const override { return recording; }
    float recordingInputDb() const override { return inputDb; }
    std::string todayDateString() const override { return today; }
    void selectAndLoadRecording(const std::string& date) override {
        loaded.push_back(date);
        if (onLoad) onLoad(date);
    }
    void toggleRecordingFromMenu() override { ++toggled; }
    void deleteRecording(const DailyRecording& row) override { deleted.push_back(row); }

    bool recording = false;
    float inputDb = -160;
    std::string today = "2026-05-08";

    std::function<void(const std::string& date)> onLoad;
    std::vector<std::string> loaded;
    std::vector<DailyRecording> deleted;
    int toggled = 0;
};

/// Today, of which nine hours are recorded, and the given number of days before it.
inline std::vector<DailyRecording> someDays(int past) {
    std::vector<DailyRecording> days{{.date = "2026-05-08",
                                      .dayOfWeek = "Fri",
                                      .live = true,
                                      .recorded = "09:00",
                                      .markerCount = 80}};
    for (int i = 0; i < past; ++i) {
        const QDate date = QDate(2026, 5, 7).addDays(-i);
        days.push_back({.date = date.toString(Qt::ISODate).toStdString(),
                        .dayOfWeek = "Thu",
                        .recorded = "24:00",
                        .markerCount = 200 + i});
    }
    return days;
}

}  // namespace sonavault::testing
