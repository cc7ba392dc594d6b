// An object that implements the navigation interface and records what it is told.
#ifndef NOXVISUALS_FAKE_NAVIGATION_H_
#define NOXVISUALS_FAKE_NAVIGATION_H_

#include <glib-object.h>

#include <atomic>
#include <mutex>
#include <vector>

namespace nox::test {

struct ToldPosition {
  float x;
  float y;
  bool pressed;
};

// What all fake objects of a program were told, by whatever thread, and how many of them live.
struct NavigationRecord {
  std::mutex mutex;
  std::vector<ToldPosition> positions;
  std::atomic<int> alive{0};
};

// Returns a new object, owned by the caller, that writes to `record`.
GObject *fake_navigation_new(NavigationRecord *record);

}  // namespace nox::test

#endif  // NOXVISUALS_FAKE_NAVIGATION_H_
