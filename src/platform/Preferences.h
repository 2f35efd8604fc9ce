#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace sonavault {

/// One preference domain: an INI file that other programs may read and write at any time.
///
/// Each read sees what is on disk at that moment, each write is on disk when it returns, and never
/// half-written. What can't be written, on a full disk or in a folder that takes nothing, holds for
/// this process alone and as long as nobody else writes to the file. A value of the wrong kind
/// reads as absent.
///
/// Thread: main.
class Preferences {
  public:
    explicit Preferences(std::filesystem::path file) : file_(std::move(file)) {}

    /// The file of a domain such as "com.calderwave.sonavault", in the person's configuration
    /// folder.
    static std::filesystem::path fileForDomain(const std::string& domain);

    bool contains(const std::string& key) const;
    /// A comma that a hand wrote without quotes around the text belongs to the text.
    std::optional<std::string> text(const std::string& key) const;
    std::optional<long long> integer(const std::string& key) const;
    std::optional<double> real(const std::string& key) const;
    std::optional<bool> boolean(const std::string& key) const;
    std::optional<std::string> bytes(const std::string& key) const;

    void setText(const std::string& key, const std::string& value);
    void setInteger(const std::string& key, long long value);
    void setReal(const std::string& key, double value);
    void setBoolean(const std::string& key, bool value);

    /// Any bytes, which in the file are `@ByteArray(...)` and not a text.
    void setBytes(const std::string& key, std::string_view value);

  private:
    std::filesystem::path file_;
};

/// The person's home folder, from the environment.
std::filesystem::path homeFolder();

/// Where the program keeps what it can make anew at any time.
std::filesystem::path cacheFolder();

}  // namespace sonavault
