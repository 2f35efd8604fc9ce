#pragma once

#include <filesystem>
#include <string_view>
#include <utility>

#include "platform/Result.h"

namespace sonavault {

/// An open file as the system numbers it, closed at the end of the scope unless it is released.
class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(other.release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor();

    int number() const { return number_; }

    /// Whoever takes it closes it.
    int release() { return std::exchange(number_, -1); }

  private:
    int number_;  // negative: none
};

/// Opens a plain file and waits for nobody, also where a pipe bears the name. Errors: the system's
/// words, also for what is no plain file.
Result<Descriptor> openForReading(const std::filesystem::path& file);

/// Errors: words, for a folder, a pipe, a device.
Outcome requirePlainFile(int descriptor);

/// Writes all of `bytes`, or gives the system's number of the error that left a part of them out; 0
/// when there was none. A disk that takes nothing counts as full.
int writeAll(int descriptor, std::string_view bytes);

/// The same at the end of a file that nobody else writes to, and takes back the part that was
/// written when not all could be.
int appendAllOrNothing(int descriptor, std::string_view bytes);

}  // namespace sonavault
