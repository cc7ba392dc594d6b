#include "nox-visuals/outputs/osc_packet.h"

#include <lo/lo.h>

#include <memory>
#include <stdexcept>

namespace nox::app {
namespace {

struct Adder {
  lo_message message;
  void operator()(std::int32_t value) const { lo_message_add_int32(message, value); }
  void operator()(float value) const { lo_message_add_float(message, value); }
  void operator()(const std::string &value) const { lo_message_add_string(message, value.c_str()); }
};

lo_message to_lo(const OscMessage &message) {
  lo_message made = lo_message_new();
  for (const OscArgument &argument : message.arguments) std::visit(Adder{made}, argument);
  return made;
}

// Takes over what liblo has allocated.
std::string take_bytes(void *bytes, std::size_t size) {
  const std::unique_ptr<void, void (*)(void *)> owner(bytes, std::free);
  if (bytes == nullptr) throw std::runtime_error("an OSC packet cannot be made");
  return {static_cast<const char *>(bytes), size};
}

}  // namespace

std::string osc_packet(const OscMessage &message) {
  const std::unique_ptr<void, void (*)(lo_message)> made(to_lo(message), lo_message_free);
  std::size_t size = 0;
  void *bytes = lo_message_serialise(made.get(), message.path.c_str(), nullptr, &size);
  return take_bytes(bytes, size);
}

std::string osc_packet(const std::vector<OscMessage> &bundle) {
  const std::unique_ptr<void, void (*)(lo_bundle)> made(lo_bundle_new(LO_TT_IMMEDIATE),
                                                        lo_bundle_free_recursive);
  for (const OscMessage &message : bundle) {
    lo_bundle_add_message(made.get(), message.path.c_str(), to_lo(message));
  }
  std::size_t size = 0;
  void *bytes = lo_bundle_serialise(made.get(), nullptr, &size);
  return take_bytes(bytes, size);
}

}  // namespace nox::app
