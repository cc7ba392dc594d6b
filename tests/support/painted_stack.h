// How much stack a piece of work takes.
#ifndef SUPPORT_PAINTED_STACK_H_
#define SUPPORT_PAINTED_STACK_H_

#include <pthread.h>
#include <sys/mman.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <new>

namespace nox::test {

// The stack of a thread, filled with a pattern before and searched for it behind. Under it lies an
// unreadable page: work that needs more ends the test program.
class PaintedStack {
 public:
  explicit PaintedStack(std::size_t size) : size_(size) {
    void *map = mmap(nullptr, kGuard + size_, PROT_READ | PROT_WRITE,
                     MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (map == MAP_FAILED) throw std::bad_alloc();
    guard_ = static_cast<std::uint8_t *>(map);
    if (mprotect(guard_, kGuard, PROT_NONE) != 0) throw std::bad_alloc();
    std::fill_n(stack(), size_, kPaint);
  }
  ~PaintedStack() { munmap(guard_, kGuard + size_); }
  PaintedStack(const PaintedStack &) = delete;
  PaintedStack &operator=(const PaintedStack &) = delete;

  // Runs the work in a thread with this stack. False when no thread could be had.
  bool run(std::function<void()> work) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstack(&attributes, stack(), size_);
    pthread_t thread;
    const bool started = pthread_create(&thread, &attributes, call, &work) == 0;
    if (started) pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
    return started;
  }

  // The bytes that were used, the thread's own included.
  std::size_t used() {
    const std::uint8_t *end = stack() + size_;
    return static_cast<std::size_t>(end -
                                    std::find_if(static_cast<const std::uint8_t *>(stack()), end,
                                                 [](std::uint8_t byte) { return byte != kPaint; }));
  }

 private:
  static constexpr std::size_t kGuard = 64 * 1024;  // a multiple of every page size
  static constexpr std::uint8_t kPaint = 0xA5;

  static void *call(void *work) {
    (*static_cast<std::function<void()> *>(work))();
    return nullptr;
  }
  std::uint8_t *stack() { return guard_ + kGuard; }

  std::size_t size_;
  std::uint8_t *guard_ = nullptr;
};

}  // namespace nox::test

#endif  // SUPPORT_PAINTED_STACK_H_
