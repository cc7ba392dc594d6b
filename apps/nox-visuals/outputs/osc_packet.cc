#include "nox-visuals/outputs/osc_packet.h"

#include <lo/lo.h>

#include <memory>
#include <stdexcept>
#include <type_traits>

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

// Handles are void pointers up to liblo 0.31, pointers to types of their own from 0.32 on.
template <typename Handle>
using Owner = std::unique_ptr<std::remove_pointer_t<Handle>, void (*)(Handle)>;

// Takes over what liblo has allocated.
std::string take_bytes(void *bytes, std::size_t size) {
  const std::unique_ptr<void, void (*)(void *)> owner(bytes, std::free);
  if (bytes == nullptr) throw std::runtime_error("an OSC packet cannot be made");
  return {static_cast<const char *>(bytes), size};
}

}  // namespace

std::string osc_packet(const OscMessage &message) {
  const Owner<lo_message> made(to_lo(message), lo_message_free);
  std::size_t size = 0;
  void *bytes = lo_message_serialise(made.get(), message.path.c_str(), nullptr, &size);
  return take_bytes(bytes, size);
}

std::string osc_packet(const std::vector<OscMessage> &bundle) {
  const Owner<lo_bundle> made(lo_bundle_new(LO_TT_IMMEDIATE), lo_bundle_free_recursive);
  for (const OscMessage &message : bundle) {
    lo_bundle_add_message(made.get(), message.path.c_str(), to_lo(message));
  }
  std::size_t size = 0;
  void *bytes = lo_bundle_serialise(made.get(), nullptr, &size);
  return take_bytes(bytes, size);
}

}  // namespace nox::app
