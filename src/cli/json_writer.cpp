#include "cli/json_writer.h"

#include <array>
#include <cmath>

#include "base/numbers.h"

namespace zorvel::cli {
namespace {

bool mustEscape(char byte) {
    return static_cast<unsigned char>(byte) < 0x20 || byte == '"' || byte == '\\';
}

void writeEscape(Output& output, char byte) {
    constexpr std::string_view digits = "0123456789abcdef";
    switch (byte) {
        case '"':
            output.write("\\\"");
            return;
        case '\\':
            output.write("\\\\");
            return;
        case '\n':
            output.write("\\n");
            return;
        case '\r':
            output.write("\\r");
            return;
        case '\t':
            output.write("\\t");
            return;
        default:
            break;
    }
    const auto code = static_cast<unsigned char>(byte);
    const std::array<char, 6> escape = {'\\', 'u', '0', '0', digits[code >> 4], digits[code & 15]};
    output.write({escape.data(), escape.size()});
}

}  // namespace

void JsonWriter::begin(char bracket) {
    separate();
    output_.write(bracket);
    ++depth_;
    first_ = true;
}

void JsonWriter::end(char bracket) {
    if (--depth_ == 0 && !first_) output_.write('\n');
    output_.write(bracket);
    if (depth_ == 0) output_.write('\n');
    first_ = false;
}

void JsonWriter::separate() {
    if (!afterKey_ && depth_ > 0) {
        if (!first_) output_.write(depth_ == 1 ? "," : ", ");
        if (depth_ == 1) output_.write("\n  ");
    }
    afterKey_ = false;
    first_ = false;
}

void JsonWriter::scalar(std::string_view text) {
    separate();
    output_.write(text);
}

void JsonWriter::quote(std::string_view text) {
    output_.write('"');
    while (!text.empty()) {
        std::size_t plain = 0;
        while (plain < text.size() && !mustEscape(text[plain])) ++plain;
        output_.write(text.substr(0, plain));
        if (plain < text.size()) writeEscape(output_, text[plain++]);
        text.remove_prefix(plain);
    }
    output_.write('"');
}

void JsonWriter::key(std::string_view name) {
    separate();
    quote(name);
    output_.write(": ");
    afterKey_ = true;
}

void JsonWriter::string(std::string_view text) {
    separate();
    quote(text);
}

void JsonWriter::number(double value) {
    scalar(std::isfinite(value) ? shortestText(value) : "null");
}

void JsonWriter::integer(std::int64_t value) {
    scalar(integerText(value));
}

void JsonWriter::boolean(bool value) {
    scalar(value ? "true" : "false");
}

void JsonWriter::null() {
    scalar("null");
}

void JsonWriter::field(std::string_view name, std::string_view text) {
    key(name);
    string(text);
}

void JsonWriter::field(std::string_view name, double value) {
    key(name);
    number(value);
}

void JsonWriter::field(std::string_view name, std::int64_t value) {
    key(name);
    integer(value);
}

}  // namespace zorvel::cli
