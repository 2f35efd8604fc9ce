#pragma once

#include <string>
#include <utility>
#include <variant>

namespace sonavault {

/// Nothing to report: the value of an operation that either works or has an error.
struct Done {};

/// Either what an operation gave or why it could not: the caller must look before it takes the
/// value.
///
/// `E` is the reason in words unless the caller has to tell reasons apart.
template <class T, class E = std::string>
class [[nodiscard]] Result {
  public:
    Result(T value)
        : content_(std::in_place_index<0>, std::move(value)) {}  // NOLINT: meant to convert

    static Result failure(E error) { return Result(std::in_place_index<1>, std::move(error)); }

    explicit operator bool() const { return content_.index() == 0; }
    T& value() { return std::get<0>(content_); }
    const T& value() const { return std::get<0>(content_); }
    const E& error() const { return std::get<1>(content_); }

  private:
    Result(std::in_place_index_t<1> tag, E error) : content_(tag, std::move(error)) {}

    std::variant<T, E> content_;
};

/// An operation that gives nothing but may fail with a reason in words.
using Outcome = Result<Done>;

}  // namespace sonavault
