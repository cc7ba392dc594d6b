// One JSON object on one line, written field by field.
#ifndef NOX_VISUALS_JSON_OBJECT_H_
#define NOX_VISUALS_JSON_OBJECT_H_

#include <cstdint>
#include <string>
#include <string_view>

namespace nox::app {

class JsonObject {
 public:
  // `text` must be UTF-8 (is_utf8); NUL and all are kept.
  void text(std::string_view name, std::string_view text);
  void boolean(std::string_view name, bool value);
  void integer(std::string_view name, std::uint64_t value);
  void number(std::string_view name, double value);  // rounded to six decimals
  void raw(std::string_view name, std::string_view json);

  // The object so far, closed.
  std::string str() const { return body_ + "}"; }

 private:
  void begin(std::string_view name);

  std::string body_ = "{";
};

bool is_utf8(std::string_view bytes);

// A string literal with its quotes, of UTF-8 text.
std::string json_string(std::string_view text);

// The shortest digits of `value` rounded to six decimals; "0" rather than "-0". `value` is finite.
std::string json_number(double value);

// The fewest digits that read back as this very float, which is finite.
std::string json_float(float value);

}  // namespace nox::app

#endif  // NOX_VISUALS_JSON_OBJECT_H_
