#include "noxvisuals/fake_navigation.h"

#include "navigation/nox_navigation.h"

using nox::test::NavigationRecord;

namespace {

struct FakeNavigation {
  GObject parent;
  NavigationRecord *record;
};

struct FakeNavigationClass {
  GObjectClass parent_class;
};

void fake_navigation_new_position(NoxNavigation *self, gfloat x, gfloat y, gboolean pressed) {
  NavigationRecord *record = reinterpret_cast<FakeNavigation *>(self)->record;
  const std::lock_guard lock(record->mutex);
  record->positions.push_back({x, y, pressed != FALSE});
}

void fake_navigation_interface_init(NoxNavigationInterface *iface) {
  iface->new_position = fake_navigation_new_position;
}

G_DEFINE_TYPE_WITH_CODE(FakeNavigation, fake_navigation, G_TYPE_OBJECT,
                        G_IMPLEMENT_INTERFACE(NOX_TYPE_NAVIGATION, fake_navigation_interface_init))

void fake_navigation_finalize(GObject *object) {
  NavigationRecord *record = reinterpret_cast<FakeNavigation *>(object)->record;
  // Taken once: every call into the object is over, and a checker of threads sees that it is.
  const std::lock_guard lock(record->mutex);
  --record->alive;
  G_OBJECT_CLASS(fake_navigation_parent_class)->finalize(object);
}

void fake_navigation_class_init(FakeNavigationClass *klass) {
  G_OBJECT_CLASS(klass)->finalize = fake_navigation_finalize;
}

void fake_navigation_init(FakeNavigation * /*self*/) {}

}  // namespace

namespace nox::test {

GObject *fake_navigation_new(NavigationRecord *record) {
  auto *navigation =
      static_cast<FakeNavigation *>(g_object_new(fake_navigation_get_type(), nullptr));
  navigation->record = record;
  ++record->alive;
  return G_OBJECT(navigation);
}

}  // namespace nox::test
