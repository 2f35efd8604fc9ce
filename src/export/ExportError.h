#pragma once

#include <cstdint>
#include <string>

namespace sonavault {

/// Why an export gave no file.
class ExportError {
  public:
    enum class Kind : std::uint8_t {
        readFailed,
        writeFailed,
        unsupportedSourceFormat,
        noSource,
        noSelections,
        noValidFrames
    };

    /// `detail`: the underlying error's words when reading or writing failed, the file's suffix
    /// when its format is not supported.
    explicit ExportError(Kind kind, std::string detail = {})
        : kind_(kind), detail_(std::move(detail)) {}

    Kind kind() const { return kind_; }

    /// The sentence for the person.
    std::string errorDescription() const;

  private:
    Kind kind_;
    std::string detail_;
};

}  // namespace sonavault
