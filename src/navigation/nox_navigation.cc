#include "navigation/nox_navigation.h"

// GObject is the prerequisite: without one, the interface could not be the type of an object
// property.
G_DEFINE_INTERFACE(NoxNavigation, nox_navigation, G_TYPE_OBJECT)

static void nox_navigation_default_init(NoxNavigationInterface * /*iface*/) {}

void nox_navigation_new_position(NoxNavigation *self, gfloat x, gfloat y, gboolean pressed) {
  g_return_if_fail(NOX_IS_NAVIGATION(self));
  const NoxNavigationInterface *iface = NOX_NAVIGATION_GET_IFACE(self);
  if (iface->new_position != nullptr) iface->new_position(self, x, y, pressed);
}
