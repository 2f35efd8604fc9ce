#include "platform/MappingGuard.h"

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <csignal>
#include <cstdint>
#include <mutex>

namespace sonavault {

namespace {

/// A mapping that is looked after. Read by a signal handler, hence without a lock.
struct Slot {
    std::atomic<bool> taken = false;
    std::atomic<std::uintptr_t> begin = 0;  // 0 while the rest does not hold
    std::atomic<std::uintptr_t> end = 0;
};

std::array<Slot, 256> slots;
std::uintptr_t pageBytes = 4096;

bool isLookedAfter(std::uintptr_t address) {
    for (const Slot& slot : slots) {
        const std::uintptr_t begin = slot.begin.load(std::memory_order_acquire);
        if (begin != 0 && address >= begin && address < slot.end.load(std::memory_order_relaxed))
            return true;
    }
    return false;
}

extern "C" void putZerosInPlace(int signal, siginfo_t* info, void*) {
    const auto address = reinterpret_cast<std::uintptr_t>(info->si_addr);
    void* const page = static_cast<char*>(info->si_addr) - address % pageBytes;
    const bool mended =
        isLookedAfter(address) &&
        ::mmap(page, pageBytes, PROT_READ, MAP_FIXED | MAP_PRIVATE | MAP_ANONYMOUS, -1, 0) == page;
    // Of anybody else's memory it is the end, as ever: what failed is done again after this.
    if (!mended) std::signal(signal, SIG_DFL);
}

void handleLostPages() {
    pageBytes = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
    struct sigaction action {};
    action.sa_sigaction = putZerosInPlace;
    action.sa_flags = SA_SIGINFO;
    ::sigaction(SIGBUS, &action, nullptr);
}

std::size_t takeSlot() {
    std::size_t i = 0;
    while (i < slots.size() && slots[i].taken.exchange(true)) ++i;
    return i;
}

}  // namespace

MappingGuard::MappingGuard(const void* begin, std::size_t size) : slot_(takeSlot()) {
    static std::once_flag once;
    std::call_once(once, handleLostPages);
    if (slot_ == slots.size()) return;
    const auto address = reinterpret_cast<std::uintptr_t>(begin);
    slots[slot_].end.store(address + size, std::memory_order_relaxed);
    slots[slot_].begin.store(address, std::memory_order_release);
}

MappingGuard::~MappingGuard() {
    if (slot_ == slots.size()) return;
    slots[slot_].begin = 0;
    slots[slot_].taken = false;
}

}  // namespace sonavault
