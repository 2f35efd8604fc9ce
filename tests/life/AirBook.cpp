#include "life/AirBook.h"

#include <algorithm>

namespace sonavault::testing {

namespace {

// Closing a file adds a frame or two, killing it loses as much: near 0 nobody can tell whether the
// file is ahead of the clock or is filled up.
constexpr double kUnsureAhead = 0.5;

}  // namespace

double surelySilent(double outage) {
    constexpr double kShare = 0.8;
    constexpr double kEdges = 0.8;
    return std::max(0.0, kShare * outage - kEdges);
}

void AirBook::beginDay(const std::string& date, double startedAt) {
    date_ = date;
    fileEnd_ = startedAt;
    ahead_ = slack_ = gap_ = silent_ = 0;
    days_[date];
}

void AirBook::open(double moment, bool tellsTime, double late) {
    open_.emplace();
    open_->from = moment;
    open_->ahead = ahead_;
    open_->slack = slack_ + late;
    open_->silentBefore = silent_;
    open_->tellsTime = tellsTime;
}

void AirBook::interrupt(double moment, double unsure) {
    if (!open_) return;
    open_->to = moment - unsure;
    if (open_->to > open_->from) days_[date_].push_back(*open_);
    open_.reset();
    fileEnd_ = moment + ahead_;
}

void AirBook::resume(double moment, double slack, double misplaced) {
    const double surplus = fileEnd_ - moment;
    gap_ = std::max(0.0, -surplus);
    silent_ = surelySilent(gap_ - misplaced);
    ahead_ = std::max(0.0, surplus);
    slack_ = surplus > -kUnsureAhead - slack_ ? slack_ + slack : 0;
}

void AirBook::excuse(double moment, double length) {
    const bool toldTime = open_ && open_->tellsTime;
    interrupt(moment, length + 0.3);
    gap_ = silent_ = 0;
    slack_ += length;
    excused_ += length + 0.6;
    open(moment + 0.3, toldTime);
}

double AirBook::heard() const {
    double sum = 0;
    for (const auto& [date, stretches] : days_)
        for (const auto& stretch : stretches) sum += stretch.to - stretch.from;
    return sum;
}

}  // namespace sonavault::testing
