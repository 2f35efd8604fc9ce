#pragma once

#include <QJsonObject>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Result.h"

namespace sonavault {

/// Takes typed values out of a JSON object by key, and remembers the first key that is missing or
/// of a wrong type. A null counts as absent; keys that nobody asks for are passed over.
class JsonFields {
  public:
    /// The fields of `json`, UTF-8. Errors: words, when that is no JSON, or no object.
    static Result<JsonFields> parse(std::string_view json);

    /// Makes the absence of a key an error.
    void require(const char* key);

    std::optional<std::string> text(const char* key);
    std::optional<double> number(const char* key);
    /// Range: whole numbers up to 2^53 either way, which a double holds exactly.
    std::optional<std::int64_t> integer(const char* key);
    std::optional<bool> boolean(const char* key);

    /// Empty as long as all was well.
    const std::string& error() const { return error_; }

  private:
    explicit JsonFields(QJsonObject object) : object_(std::move(object)) {}

    std::optional<QJsonValue> find(const char* key) const;
    void refuse(const char* key, const char* wanted);

    QJsonObject object_;
    std::string error_;
};

}  // namespace sonavault
