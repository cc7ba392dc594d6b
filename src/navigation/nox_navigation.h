/* The interface of objects that want to know where the pen is.
 *
 * Usable from C, C++ and, through introspection, from every language that GObject has a binding
 * for. */
#ifndef NAVIGATION_NOX_NAVIGATION_H_
#define NAVIGATION_NOX_NAVIGATION_H_

#include <glib-object.h>

#ifdef _WIN32
#ifdef NOX_NAVIGATION_BUILD
#define NOX_NAVIGATION_API __declspec(dllexport) extern
#else
#define NOX_NAVIGATION_API __declspec(dllimport) extern
#endif
#else
#define NOX_NAVIGATION_API __attribute__((visibility("default"))) extern
#endif

G_BEGIN_DECLS

#define NOX_TYPE_NAVIGATION (nox_navigation_get_type())

/**
 * NoxNavigation:
 *
 * An object that is told every position of the pen.
 */
NOX_NAVIGATION_API G_DECLARE_INTERFACE(NoxNavigation, nox_navigation, NOX, NAVIGATION, GObject)

/**
 * NoxNavigationInterface:
 * @parent_interface: the parent interface
 * @new_position: tells the object a position
 *
 * The virtual methods of #NoxNavigation.
 */
struct _NoxNavigationInterface {
  GTypeInterface parent_interface;

  /**
   * NoxNavigationInterface::new_position:
   * @self: the object
   * @x: horizontal position
   * @y: vertical position
   * @pressed: whether the pen is pressed
   *
   * See nox_navigation_new_position().
   */
  void (*new_position)(NoxNavigation *self, gfloat x, gfloat y, gboolean pressed);
};

/**
 * nox_navigation_new_position:
 * @self: the object to tell
 * @x: horizontal position as a fraction of the picture's width, from 0 at the right edge towards 1
 * at the left (mirrored, as seen by somebody who faces the camera)
 * @y: vertical position as a fraction of the picture's height, from 0 at the top towards 1
 * @pressed: whether the pen is pressed
 *
 * Tells @self a new position of the pen. Called on the thread that carries the video, so an
 * implementation returns quickly and hands over to its own thread what takes longer. An object that
 * leaves the method out hears nothing.
 */
NOX_NAVIGATION_API void nox_navigation_new_position(NoxNavigation *self, gfloat x, gfloat y,
                                                    gboolean pressed);

G_END_DECLS

#endif /* NAVIGATION_NOX_NAVIGATION_H_ */
