// A value or a problem: the result of a function that may fail for a reason.
// No exception leaves a module of this program; a Result carries the reason instead.
#pragma once

#include <string>
#include <utility>
#include <variant>

namespace zorvel {

// What went wrong, in words for the user, and the system's error number (0 if the system was not
// the cause).
struct Problem {
    std::string message;
    int systemError = 0;
};

// Reason: describes a failure; not the same type as T.
template <class T, class Reason = Problem>
class Result {
  public:
    Result(T value) : content_(std::in_place_index<0>, std::move(value)) {}
    Result(Reason problem) : content_(std::in_place_index<1>, std::move(problem)) {}

    [[nodiscard]] bool ok() const { return content_.index() == 0; }
    explicit operator bool() const { return ok(); }

    // Only if ok().
    [[nodiscard]] T& value() & { return *std::get_if<0>(&content_); }
    [[nodiscard]] const T& value() const& { return *std::get_if<0>(&content_); }
    [[nodiscard]] T&& value() && { return std::move(*std::get_if<0>(&content_)); }
    // Only if not ok().
    [[nodiscard]] const Reason& problem() const { return *std::get_if<1>(&content_); }

  private:
    std::variant<T, Reason> content_;
};

}  // namespace zorvel
