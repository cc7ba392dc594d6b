// Tells ThreadSanitizer of GLib's locks.
//
// A GMutex and a bit lock are futexes inside a library that the sanitizer does not watch: it sees
// what two threads do to our memory, but not the lock that keeps them apart. Linked into a program
// under the sanitizer, the functions below stand in front of GLib's own, for every library that the
// program loads, and say at each lock what its next holder may rely on. Nothing is suppressed: what
// no lock keeps apart is reported as before. GRWLock and GRecMutex are locks of pthread's, which
// the sanitizer knows by itself.
#include <dlfcn.h>
#include <glib.h>
#include <sanitizer/tsan_interface.h>

namespace {

// What earlier holders did has happened before what this thread does next. All bits of a word count
// as one lock.
void acquired(const volatile void *lock) {
  __tsan_acquire(const_cast<void *>(lock));
}

// What this thread did so far happens before what the next holder does.
void releasing(const volatile void *lock) {
  __tsan_release(const_cast<void *>(lock));
}

}  // namespace

// `glib` is GLib's own function of that name.
#define IN_FRONT_OF(name) \
  static auto *const glib = reinterpret_cast<decltype(&(name))>(dlsym(RTLD_NEXT, #name))

extern "C" {

// What libraries that are not watched read and write counts for nothing, since most of what orders
// it is not seen either. What our own code does counts, whoever calls it. The search for deadlocks
// is left out: it ends a program whose thread holds more than 64 locks, as one that pushes through
// a long row of pads does, and of locks we have none.
const char *__tsan_default_options() {
  return "ignore_noninstrumented_modules=1:detect_deadlocks=0";
}

void g_mutex_lock(GMutex *mutex) {
  IN_FRONT_OF(g_mutex_lock);
  glib(mutex);
  acquired(mutex);
}

gboolean g_mutex_trylock(GMutex *mutex) {
  IN_FRONT_OF(g_mutex_trylock);
  const gboolean locked = glib(mutex);
  if (locked != FALSE) acquired(mutex);
  return locked;
}

void g_mutex_unlock(GMutex *mutex) {
  IN_FRONT_OF(g_mutex_unlock);
  releasing(mutex);
  glib(mutex);
}

void g_cond_wait(GCond *condition, GMutex *mutex) {
  IN_FRONT_OF(g_cond_wait);
  releasing(mutex);
  glib(condition, mutex);
  acquired(mutex);
}

gboolean g_cond_wait_until(GCond *condition, GMutex *mutex, gint64 end_time) {
  IN_FRONT_OF(g_cond_wait_until);
  releasing(mutex);
  const gboolean signalled = glib(condition, mutex, end_time);
  acquired(mutex);
  return signalled;
}

void g_bit_lock(volatile gint *address, gint bit) {
  IN_FRONT_OF(g_bit_lock);
  glib(address, bit);
  acquired(address);
}

gboolean g_bit_trylock(volatile gint *address, gint bit) {
  IN_FRONT_OF(g_bit_trylock);
  const gboolean locked = glib(address, bit);
  if (locked != FALSE) acquired(address);
  return locked;
}

void g_bit_unlock(volatile gint *address, gint bit) {
  IN_FRONT_OF(g_bit_unlock);
  releasing(address);
  glib(address, bit);
}

// In parentheses: each of these is also the name of a macro.
void(g_pointer_bit_lock)(volatile void *address, gint bit) {
  IN_FRONT_OF(g_pointer_bit_lock);
  glib(address, bit);
  acquired(address);
}

gboolean(g_pointer_bit_trylock)(volatile void *address, gint bit) {
  IN_FRONT_OF(g_pointer_bit_trylock);
  const gboolean locked = glib(address, bit);
  if (locked != FALSE) acquired(address);
  return locked;
}

void(g_pointer_bit_unlock)(volatile void *address, gint bit) {
  IN_FRONT_OF(g_pointer_bit_unlock);
  releasing(address);
  glib(address, bit);
}

#if GLIB_CHECK_VERSION(2, 80, 0)
void(g_pointer_bit_lock_and_get)(gpointer address, guint bit, guintptr *value) {
  IN_FRONT_OF(g_pointer_bit_lock_and_get);
  glib(address, bit, value);
  acquired(address);
}

void(g_pointer_bit_unlock_and_set)(void *address, guint bit, gpointer value, guintptr preserved) {
  IN_FRONT_OF(g_pointer_bit_unlock_and_set);
  releasing(address);
  glib(address, bit, value, preserved);
}
#endif

}  // extern "C"
