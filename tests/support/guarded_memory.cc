#include "support/guarded_memory.h"

#include <cstring>

#include "support/guarded_plane.h"

namespace {

struct GuardedMemory {
  GstMemory memory;
  nox::test::GuardedBytes *bytes;  // owned
};

using GuardedAllocator = GstAllocator;
using GuardedAllocatorClass = GstAllocatorClass;

}  // namespace

G_DEFINE_TYPE(GuardedAllocator, guarded_allocator, GST_TYPE_ALLOCATOR)

namespace {

GuardedMemory *guarded(GstMemory *memory) {
  return reinterpret_cast<GuardedMemory *>(memory);
}

GstMemory *guarded_alloc(GstAllocator *allocator, gsize size, GstAllocationParams * /*params*/) {
  auto *memory = g_new0(GuardedMemory, 1);
  memory->bytes = new nox::test::GuardedBytes(size);
  gst_memory_init(GST_MEMORY_CAST(memory), GST_MEMORY_FLAG_NO_SHARE, allocator, nullptr, size, 0, 0,
                  size);
  return GST_MEMORY_CAST(memory);
}

void guarded_free(GstAllocator * /*allocator*/, GstMemory *memory) {
  delete guarded(memory)->bytes;
  g_free(memory);
}

gpointer guarded_map(GstMemory *memory, gsize /*size*/, GstMapFlags /*flags*/) {
  return guarded(memory)->bytes->data();
}

void guarded_unmap(GstMemory * /*memory*/) {}

GstMemory *guarded_copy(GstMemory *memory, gssize offset, gssize size) {
  const gsize first = memory->offset + static_cast<gsize>(offset);
  const gsize count =
      size < 0 ? memory->size - static_cast<gsize>(offset) : static_cast<gsize>(size);
  GstMemory *copy = guarded_alloc(memory->allocator, count, nullptr);
  std::memcpy(guarded(copy)->bytes->data(), guarded(memory)->bytes->data() + first, count);
  return copy;
}

}  // namespace

static void guarded_allocator_class_init(GuardedAllocatorClass *klass) {
  klass->alloc = guarded_alloc;
  klass->free = guarded_free;
}

static void guarded_allocator_init(GuardedAllocator *allocator) {
  allocator->mem_type = "guarded";
  allocator->mem_map = guarded_map;
  allocator->mem_unmap = guarded_unmap;
  allocator->mem_copy = guarded_copy;
  GST_OBJECT_FLAG_SET(allocator, GST_ALLOCATOR_FLAG_CUSTOM_ALLOC);
}

namespace nox::test {

GstMemory *new_guarded_memory(gsize size) {
  auto *allocator =
      static_cast<GstAllocator *>(g_object_new(guarded_allocator_get_type(), nullptr));
  gst_object_ref_sink(allocator);
  GstMemory *memory = gst_allocator_alloc(allocator, size, nullptr);
  gst_object_unref(allocator);  // the memory holds it
  return memory;
}

}  // namespace nox::test
