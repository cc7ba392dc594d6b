#include "navigation/nox_navigation.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

struct Position {
  float x, y;
  gboolean pressed;
};

// An object that keeps what it is told.
struct Recorder {
  GObject parent;
  std::vector<Position> *positions;
};
struct RecorderClass {
  GObjectClass parent_class;
};

void recorder_new_position(NoxNavigation *self, gfloat x, gfloat y, gboolean pressed) {
  reinterpret_cast<Recorder *>(self)->positions->push_back({x, y, pressed});
}

void recorder_navigation_init(NoxNavigationInterface *iface) {
  iface->new_position = recorder_new_position;
}

G_DEFINE_TYPE_WITH_CODE(Recorder, recorder, G_TYPE_OBJECT,
                        G_IMPLEMENT_INTERFACE(NOX_TYPE_NAVIGATION, recorder_navigation_init))

void recorder_class_init(RecorderClass * /*klass*/) {}
void recorder_init(Recorder * /*self*/) {}

// An object that implements the interface and leaves its method out.
struct Deaf {
  GObject parent;
};
struct DeafClass {
  GObjectClass parent_class;
};

G_DEFINE_TYPE_WITH_CODE(Deaf, deaf, G_TYPE_OBJECT,
                        G_IMPLEMENT_INTERFACE(NOX_TYPE_NAVIGATION, nullptr))

void deaf_class_init(DeafClass * /*klass*/) {}
void deaf_init(Deaf * /*self*/) {}

TEST(NoxNavigation, IsAnInterfaceWithGObjectAmongItsPrerequisites) {
  EXPECT_STREQ(g_type_name(NOX_TYPE_NAVIGATION), "NoxNavigation");
  EXPECT_TRUE(G_TYPE_IS_INTERFACE(NOX_TYPE_NAVIGATION));
  EXPECT_TRUE(g_type_is_a(NOX_TYPE_NAVIGATION, G_TYPE_OBJECT));
}

TEST(NoxNavigation, CanBeTheTypeOfAnObjectProperty) {
  GParamSpec *spec = g_param_spec_object("navigation-object", "nick", "blurb", NOX_TYPE_NAVIGATION,
                                         G_PARAM_READWRITE);
  ASSERT_NE(spec, nullptr);
  g_param_spec_ref_sink(spec);
  g_param_spec_unref(spec);
}

TEST(NoxNavigation, HandsThePositionToTheObject) {
  std::vector<Position> positions;
  auto *recorder = static_cast<Recorder *>(g_object_new(recorder_get_type(), nullptr));
  recorder->positions = &positions;
  nox_navigation_new_position(NOX_NAVIGATION(recorder), 0.25F, 0.75F, TRUE);
  nox_navigation_new_position(NOX_NAVIGATION(recorder), 0.5F, 1.0F, FALSE);
  g_object_unref(recorder);
  ASSERT_EQ(positions.size(), 2U);
  EXPECT_EQ(positions[0].x, 0.25F);
  EXPECT_EQ(positions[0].y, 0.75F);
  EXPECT_TRUE(positions[0].pressed);
  EXPECT_EQ(positions[1].x, 0.5F);
  EXPECT_FALSE(positions[1].pressed);
}

// What was logged while it lives, in place of GLib's own answer.
class CriticalLog {
 public:
  CriticalLog() : handler_(g_log_set_handler(nullptr, G_LOG_LEVEL_CRITICAL, collect, this)) {}
  ~CriticalLog() { g_log_remove_handler(nullptr, handler_); }
  CriticalLog(const CriticalLog &) = delete;
  CriticalLog &operator=(const CriticalLog &) = delete;

  const std::vector<std::string> &messages() const { return messages_; }

 private:
  static void collect(const gchar * /*domain*/, GLogLevelFlags /*level*/, const gchar *message,
                      gpointer self) {
    static_cast<CriticalLog *>(self)->messages_.emplace_back(message);
  }

  std::vector<std::string> messages_;
  guint handler_;
};

TEST(NoxNavigation, IgnoresAnObjectWithoutTheMethod) {
  const CriticalLog log;
  auto *deaf = static_cast<Deaf *>(g_object_new(deaf_get_type(), nullptr));
  nox_navigation_new_position(NOX_NAVIGATION(deaf), 0.5F, 0.5F, TRUE);
  EXPECT_EQ(G_OBJECT(deaf)->ref_count, 1U);
  g_object_unref(deaf);
  EXPECT_TRUE(log.messages().empty());
}

TEST(NoxNavigation, RefusesNothingAndObjectsOfOtherTypesWithACritical) {
  const CriticalLog log;
  nox_navigation_new_position(nullptr, 0.5F, 0.5F, TRUE);
  EXPECT_EQ(log.messages().size(), 1U);
  GObject *other = G_OBJECT(g_object_new(G_TYPE_OBJECT, nullptr));
  nox_navigation_new_position(reinterpret_cast<NoxNavigation *>(other), 0.5F, 0.5F, TRUE);
  g_object_unref(other);
  ASSERT_EQ(log.messages().size(), 2U);
  for (const std::string &message : log.messages()) {
    EXPECT_NE(message.find("NOX_IS_NAVIGATION"), std::string::npos) << message;
  }
}

}  // namespace
