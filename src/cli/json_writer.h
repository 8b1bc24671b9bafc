// Writes JSON (RFC 8259) as a stream, without a tree in memory: each element of the outermost array
// or object is on a line of its own. UTF-8 stays as it is; numbers are the shortest that read back
// the same, null if not finite. The caller must alternate keys and values and end what it begins.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "cli/output.h"

namespace zorvel::cli {

class JsonWriter {
  public:
    explicit JsonWriter(Output& output) : output_(output) {}

    void beginArray() { begin('['); }
    void endArray() { end(']'); }
    void beginObject() { begin('{'); }
    void endObject() { end('}'); }

    void key(std::string_view name);
    void string(std::string_view text);
    void number(double value);
    void integer(std::int64_t value);
    void boolean(bool value);
    void null();

    // A key with its value; null if the value is absent.
    void field(std::string_view name, std::string_view text);
    void field(std::string_view name, double value);
    void field(std::string_view name, std::int64_t value);
    template <class T>
    void field(std::string_view name, const std::optional<T>& value) {
        if (value) {
            field(name, *value);
        } else {
            key(name);
            null();
        }
    }

  private:
    void begin(char bracket);
    void end(char bracket);
    void separate();
    void scalar(std::string_view text);
    void quote(std::string_view text);

    Output& output_;
    int depth_ = 0;
    bool first_ = true;      // the innermost array or object is empty
    bool afterKey_ = false;  // a value follows on the same line
};

}  // namespace zorvel::cli
