#include "system/MovableClock.h"

namespace sonavault::testing {

namespace {

// The dynamic loader finds it for the machine's own architecture.
constexpr auto kLibrary = "/usr/$LIB/faketime/libfaketimeMT.so.1";

}  // namespace

std::map<std::string, std::string> MovableClock::environment() const {
    return {{"LD_PRELOAD", kLibrary},
            {"FAKETIME_TIMESTAMP_FILE", (folder_ / "clock").string()},
            {"FAKETIME_NO_CACHE", "1"},
            // Timers measure time and must not be disturbed.
            {"FAKETIME_DONT_FAKE_MONOTONIC", "1"},
            {"NO_FAKE_STAT", "1"},
            // The address sanitizer, where it is built in, would insist on being loaded first.
            {"ASAN_OPTIONS", "verify_asan_link_order=0"}};
}

void MovableClock::showAhead(long seconds) const {
    writeFile(folder_ / "next", (seconds < 0 ? "" : "+") + std::to_string(seconds) + "\n");
    // In one step, for the program reads the file at every look at the clock.
    std::filesystem::rename(folder_ / "next", folder_ / "clock");
}

void MovableClock::cleanUpAfter(const ChildProcess& program) {
    std::error_code absent;
    for (const char* name : {"faketime_shm_", "sem.faketime_sem_"})
        std::filesystem::remove("/dev/shm/" + std::string(name) + std::to_string(program.pid()),
                                absent);
}

}  // namespace sonavault::testing
