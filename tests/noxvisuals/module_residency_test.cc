// How the module comes into a process and why it never leaves: GStreamer's scanner, a program's own
// dlopen, dlclose and dlopen again. Each way is taken in a process of its own.
#include <dlfcn.h>
#include <gst/gst.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <cstdio>
#include <filesystem>
#include <string>

namespace nox::test {
namespace {

namespace fs = std::filesystem;

constexpr const char *kElements[] = {"noxpentracker", "noxvectorizer", "noxqrdec"};

std::string module_path() {
  const char *path = getenv("NOX_MODULE");
  return path != nullptr ? path : "";
}

// Ends this process, which is one of a test's own, and says where.
#define REQUIRE(condition)                                                         \
  do {                                                                             \
    if (!(condition)) {                                                            \
      std::fprintf(stderr, "%s:%d: not so: %s\n", __FILE__, __LINE__, #condition); \
      std::exit(1);                                                                \
    }                                                                              \
  } while (false)

// A registry of the test's own, in a folder that goes away with it.
class Registry {
 public:
  Registry() {
    std::string name = testing::TempDir() + "/noxvisuals-registry-XXXXXX";
    if (mkdtemp(name.data()) != nullptr) folder_ = name;
  }
  ~Registry() { fs::remove_all(folder_); }
  Registry(const Registry &) = delete;
  Registry &operator=(const Registry &) = delete;

  // Starts GStreamer with this registry and the plugins of one folder ("": none).
  void start_gstreamer(const std::string &plugins) const {
    setenv("GST_REGISTRY", (folder_ / "registry.bin").c_str(), 1);
    setenv("GST_PLUGIN_PATH", plugins.c_str(), 1);
    setenv("GST_PLUGIN_SYSTEM_PATH", "", 1);
    gst_init(nullptr, nullptr);
  }
  bool is_written() const { return fs::exists(folder_ / "registry.bin"); }

 private:
  fs::path folder_;
};

bool is_loaded() {
  void *module = dlopen(module_path().c_str(), RTLD_NOW | RTLD_NOLOAD);
  if (module != nullptr) dlclose(module);
  return module != nullptr;
}

void *load() {
  void *module = dlopen(module_path().c_str(), RTLD_NOW | RTLD_LOCAL);
  if (module == nullptr) std::fprintf(stderr, "%s\n", dlerror());
  REQUIRE(module != nullptr);
  return module;
}

void register_elements(void *module) {
  auto *function =
      reinterpret_cast<gboolean (*)()>(dlsym(module, "gst_plugin_noxvisuals_sse_register"));
  REQUIRE(function != nullptr);
  REQUIRE(function() != FALSE);
}

// Every element is made, started, stopped and dropped.
void use_elements() {
  for (const char *name : kElements) {
    GstElement *element = gst_element_factory_make(name, nullptr);
    REQUIRE(element != nullptr);
    gst_object_ref_sink(element);
    for (const GstState state : {GST_STATE_PLAYING, GST_STATE_NULL}) {
      REQUIRE(gst_element_set_state(element, state) == GST_STATE_CHANGE_SUCCESS);
    }
    gst_object_unref(element);
  }
}

TEST(ModuleResidencyDeathTest, ItsTypesWorkBehindTheHostsOwnClose) {
  const Registry registry;
  const auto close_and_load_again = [&] {
    registry.start_gstreamer("");
    void *module = load();
    register_elements(module);
    use_elements();
    REQUIRE(dlclose(module) == 0);
    REQUIRE(is_loaded());  // its types cannot be taken back, so it stays
    use_elements();
    void *again = load();
    REQUIRE(again == module);
    register_elements(again);
    use_elements();
    std::exit(0);
  };
  EXPECT_EXIT(close_and_load_again(), testing::ExitedWithCode(0), "");
}

TEST(ModuleResidencyDeathTest, AHostMayOpenAndCloseItThatUsesNoneOfIt) {
  const Registry registry;
  const auto open_and_close = [&] {
    for (int i = 0; i < 10; ++i) REQUIRE(dlclose(load()) == 0);
    registry.start_gstreamer("");
    register_elements(load());
    use_elements();
    std::exit(0);
  };
  EXPECT_EXIT(open_and_close(), testing::ExitedWithCode(0), "");
}

// GStreamer's scanner is a process of its own: what it found is known before the module is loaded.
TEST(ModuleResidencyDeathTest, TheScannerFindsItWithAnEmptyRegistry) {
  if (getenv("GST_REGISTRY_FORK") != nullptr) {
    GTEST_SKIP() << "the scanner cannot load a module that is built with a sanitizer";
  }
  const Registry registry;
  const auto scan = [&] {
    REQUIRE(!is_loaded());
    registry.start_gstreamer(fs::path(module_path()).parent_path());
    for (const char *name : kElements) {
      GstElementFactory *factory = gst_element_factory_find(name);
      REQUIRE(factory != nullptr);
      gst_object_unref(factory);
    }
    REQUIRE(!is_loaded());
    use_elements();
    REQUIRE(is_loaded());
    std::exit(0);
  };
  EXPECT_FALSE(registry.is_written());
  EXPECT_EXIT(scan(), testing::ExitedWithCode(0), "");
  EXPECT_TRUE(registry.is_written());
  EXPECT_EXIT(scan(), testing::ExitedWithCode(0), "") << "with what the registry remembers";
}

TEST(ModuleResidencyDeathTest, AHostMayLoadItBesideGStreamer) {
  const Registry registry;
  const auto load_twice = [&] {
    registry.start_gstreamer(fs::path(module_path()).parent_path());
    use_elements();
    void *module = load();
    register_elements(module);
    use_elements();
    REQUIRE(dlclose(module) == 0);
    use_elements();
    std::exit(0);
  };
  EXPECT_EXIT(load_twice(), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace nox::test
