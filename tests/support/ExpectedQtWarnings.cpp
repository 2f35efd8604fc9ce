#include "support/ExpectedQtWarnings.h"

#include <gtest/gtest.h>

#include <QString>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <mutex>

namespace sonavault::testing {
namespace {

struct Expectation {
    std::string part;
    int count = 0;
};

std::mutex mutex;
std::map<int, Expectation> expectations;  // guarded by mutex
int lastId = 0;                           // guarded by mutex

bool wasExpected(const std::string& text) {
    std::scoped_lock lock(mutex);
    bool expected = false;
    for (auto& [id, each] : expectations) {
        if (text.find(each.part) == std::string::npos) continue;
        ++each.count;
        expected = true;
    }
    return expected;
}

void takeMessage(QtMsgType type, const QMessageLogContext&, const QString& message) {
    const std::string text = message.toStdString();
    if (type == QtDebugMsg || type == QtInfoMsg) {
        std::fprintf(stderr, "Qt: %s\n", text.c_str());
    } else if (type == QtFatalMsg) {
        std::fprintf(stderr, "Qt, fatal: %s\n", text.c_str());
        std::abort();
    } else if (!wasExpected(text)) {
        ADD_FAILURE() << "Qt warns: " << text;
    }
}

}  // namespace

ExpectedQtWarnings::ExpectedQtWarnings(const std::string& part)
    : id_([&part] {
          std::scoped_lock lock(mutex);
          expectations[++lastId].part = part;
          return lastId;
      }()) {}

ExpectedQtWarnings::~ExpectedQtWarnings() {
    std::scoped_lock lock(mutex);
    expectations.erase(id_);
}

int ExpectedQtWarnings::count() const {
    std::scoped_lock lock(mutex);
    return expectations[id_].count;
}

void watchQtWarnings() {
    qInstallMessageHandler(takeMessage);
}

}  // namespace sonavault::testing
