#include "nox-visuals/json_object.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace nox::app {
namespace {

// How long the UTF-8 sequence at the start of `bytes` is; 0 when it is none. Overlong forms,
// surrogates and what lies beyond U+10FFFF are none.
std::size_t sequence_length(std::string_view bytes) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  const unsigned lead = byte(0);
  if (lead < 0x80) return 1;
  const std::size_t length = lead < 0xC2   ? 0
                             : lead < 0xE0 ? 2
                             : lead < 0xF0 ? 3
                             : lead < 0xF5 ? 4
                                           : 0;
  if (length == 0 || bytes.size() < length) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0U) != 0x80) return 0;
  }
  const unsigned second = byte(1);
  const bool wrong = (lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) ||
                     (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F);
  return wrong ? 0 : length;
}

template <typename Number, typename... Format>
std::string digits(Number value, Format... format) {
  std::array<char, 400> text;  // a double has at most 309 digits before the point
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value, format...);
  return {text.data(), end.ptr};
}

}  // namespace

bool is_utf8(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::size_t length = sequence_length(bytes);
    if (length == 0) return false;
    bytes.remove_prefix(length);
  }
  return true;
}

std::string json_string(std::string_view text) {
  std::string out = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) {
      std::array<char, 7> escape;
      std::snprintf(escape.data(), escape.size(), "\\u%04x", static_cast<unsigned>(c));
      out += escape.data();
    } else {
      out += c;
    }
  }
  return out + "\"";
}

std::string json_number(double value) {
  std::string text = digits(value, std::chars_format::fixed, 6);
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.') text.pop_back();
  return text == "-0" ? "0" : text;
}

std::string json_float(float value) {
  return digits(value);
}

void JsonObject::begin(std::string_view name) {
  if (body_.size() > 1) body_ += ',';
  body_ += json_string(name);
  body_ += ':';
}

void JsonObject::text(std::string_view name, std::string_view text) {
  begin(name);
  body_ += json_string(text);
}

void JsonObject::boolean(std::string_view name, bool value) {
  begin(name);
  body_ += value ? "true" : "false";
}

void JsonObject::integer(std::string_view name, std::uint64_t value) {
  begin(name);
  body_ += std::to_string(value);
}

void JsonObject::number(std::string_view name, double value) {
  begin(name);
  body_ += json_number(value);
}

void JsonObject::raw(std::string_view name, std::string_view json) {
  begin(name);
  body_ += json;
}

}  // namespace nox::app
