// A value or a problem: what a function returns that may fail for a reason worth telling.
// No exception leaves a module of this program; a Result carries the reason instead.
#pragma once

#include <string>
#include <utility>
#include <variant>

namespace zorvel {

// What went wrong, in words for the person at the screen, and the system's error number if the
// cause was the system (0 otherwise).
struct Problem {
    std::string message;
    int systemError = 0;
};

// Reason: what there is to tell of a failure; not the same type as T.
template <class T, class Reason = Problem>
class Result {
  public:
    Result(T value) : content_(std::in_place_index<0>, std::move(value)) {}
    Result(Reason problem) : content_(std::in_place_index<1>, std::move(problem)) {}

    [[nodiscard]] bool ok() const { return content_.index() == 0; }
    explicit operator bool() const { return ok(); }

    // Only where ok().
    [[nodiscard]] T& value() & { return *std::get_if<0>(&content_); }
    [[nodiscard]] const T& value() const& { return *std::get_if<0>(&content_); }
    [[nodiscard]] T&& value() && { return std::move(*std::get_if<0>(&content_)); }
    // Only where not ok().
    [[nodiscard]] const Reason& problem() const { return *std::get_if<1>(&content_); }

  private:
    std::variant<T, Reason> content_;
};

}  // namespace zorvel
