#include "nox-visuals/support/osc_text.h"

#include <bit>
#include <cstdint>
#include <cstdio>
#include <stdexcept>

namespace nox::app::test {
namespace {

class Reader {
 public:
  explicit Reader(const std::string &bytes) : bytes_(bytes) {}

  bool at_end() const { return at_ == bytes_.size(); }

  std::uint32_t number() {
    const std::string four = take(4);
    std::uint32_t value = 0;
    for (const char byte : four) value = value << 8 | static_cast<unsigned char>(byte);
    return value;
  }

  // Ends with a NUL and is filled up to four bytes.
  std::string text() {
    const std::size_t end = bytes_.find('\0', at_);
    if (end == std::string::npos) throw std::runtime_error("a string without an end");
    std::string value = bytes_.substr(at_, end - at_);
    take((value.size() / 4 + 1) * 4);
    return value;
  }

  std::string take(std::size_t size) {
    if (bytes_.size() - at_ < size) throw std::runtime_error("a packet that is too short");
    at_ += size;
    return bytes_.substr(at_ - size, size);
  }

 private:
  const std::string &bytes_;
  std::size_t at_ = 0;
};

std::string argument(char type, Reader *reader) {
  char text[32];
  switch (type) {
    case 'i':
      return std::to_string(static_cast<std::int32_t>(reader->number()));
    case 'f':
      std::snprintf(text, sizeof text, "%.6g",
                    static_cast<double>(std::bit_cast<float>(reader->number())));
      return text;
    case 's':
      return reader->text();
    default:
      throw std::runtime_error("a type that nobody sends");
  }
}

std::string message_text(const std::string &packet) {
  Reader reader(packet);
  std::string line = reader.text();
  const std::string types = reader.text();
  line += " " + types;
  for (const char type : types.substr(1)) line += " " + argument(type, &reader);
  if (!reader.at_end()) throw std::runtime_error("bytes after the last argument");
  return line;
}

}  // namespace

std::vector<std::string> osc_text(const std::string &packet) {
  if (!packet.starts_with("#bundle")) return {message_text(packet)};
  Reader reader(packet);
  reader.text();
  if (reader.number() != 0 || reader.number() != 1) {
    throw std::runtime_error("a time tag that is not 'immediately'");
  }
  std::vector<std::string> lines;
  while (!reader.at_end()) lines.push_back(message_text(reader.take(reader.number())));
  return lines;
}

}  // namespace nox::app::test
