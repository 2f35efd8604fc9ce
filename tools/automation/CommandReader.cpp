#include "automation/CommandReader.h"

#include <iostream>
#include <mutex>
#include <thread>
#include <utility>

namespace sonavault::automation {

struct CommandReader::Inbox {
    std::mutex mutex;
    std::vector<std::string> lines;
};

// The thread is left to itself: nothing can wake it from its reading, and it holds all it uses.
CommandReader::CommandReader() : inbox_(std::make_shared<Inbox>()) {
    std::thread([inbox = inbox_] {
        for (std::string line; std::getline(std::cin, line);) {
            std::scoped_lock lock(inbox->mutex);
            inbox->lines.push_back(std::move(line));
        }
    }).detach();
}

std::vector<std::string> CommandReader::take() {
    std::scoped_lock lock(inbox_->mutex);
    return std::exchange(inbox_->lines, {});
}

}  // namespace sonavault::automation
