// The module from outside: its two entry points, its descriptor and what it registers.
#include <gmodule.h>
#include <gst/gst.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <set>
#include <sstream>
#include <string>

#include "support/harness.h"

namespace nox::test {
namespace {

constexpr const char *kGetDesc = "gst_plugin_noxvisuals_sse_get_desc";
constexpr const char *kRegister = "gst_plugin_noxvisuals_sse_register";

std::string module_path() {
  const char *path = std::getenv("NOX_MODULE");
  return path != nullptr ? path : "";
}

struct ModuleCloser {
  void operator()(GModule *module) const { g_module_close(module); }
};

// The module file, opened as the loader opens it, and one of its symbols.
template <typename Function>
Function *entry_point(const char *name) {
  static const std::unique_ptr<GModule, ModuleCloser> module(
      g_module_open(module_path().c_str(), G_MODULE_BIND_LOCAL));
  gpointer symbol = nullptr;
  if (module == nullptr || g_module_symbol(module.get(), name, &symbol) == FALSE) return nullptr;
  return reinterpret_cast<Function *>(symbol);
}

TEST(Module, ExportsExactlyTheTwoEntryPoints) {
  const std::string command = "nm --dynamic --defined-only --format=posix '" + module_path() + "'";
  FILE *pipe = popen(command.c_str(), "r");
  ASSERT_NE(pipe, nullptr);
  std::set<std::string> symbols;
  std::array<char, 4096> line;
  while (std::fgets(line.data(), line.size(), pipe) != nullptr) {
    std::string name;
    std::istringstream(line.data()) >> name;
    symbols.insert(name);
  }
  ASSERT_EQ(pclose(pipe), 0);
  EXPECT_EQ(symbols, (std::set<std::string>{kGetDesc, kRegister}));
}

TEST(Module, HasItsDescriptor) {
  auto *get_desc = entry_point<const GstPluginDesc *()>(kGetDesc);
  ASSERT_NE(get_desc, nullptr);
  const GstPluginDesc *desc = get_desc();
  ASSERT_NE(desc, nullptr);
  EXPECT_EQ(desc->major_version, 1);
  EXPECT_EQ(desc->minor_version, 17);
  EXPECT_STREQ(desc->name, "noxvisuals_sse");
  EXPECT_STREQ(desc->description, "Corvane Overlay plugins");
  EXPECT_NE(desc->plugin_init, nullptr);
  EXPECT_STREQ(desc->version, "1.0.20");
  EXPECT_STREQ(desc->license, "Proprietary");
  EXPECT_STREQ(desc->source, "Corvane");
  EXPECT_STREQ(desc->package, "GStreamer");
  EXPECT_STRNE(desc->origin, "");
  EXPECT_EQ(desc->release_datetime, nullptr);
  for (const gpointer reserved : desc->_gst_reserved) EXPECT_EQ(reserved, nullptr);
  EXPECT_EQ(get_desc(), desc) << "one static record";
}

TEST(Module, RegistersStatically) {
  auto *register_static = entry_point<gboolean()>(kRegister);
  ASSERT_NE(register_static, nullptr);
  EXPECT_TRUE(register_static());
}

struct ElementRow {
  const char *factory;
  const char *type;
  const char *parent;
  const char *long_name;
  const char *klass;
  const char *caps;
  const char *category;  // of its log lines; its description too
};

constexpr const char *kPlanarCaps =
    "video/x-raw, format = (string) {I420, A420}, width = (int) [ 1, max ], "
    "height = (int) [ 1, max ], framerate = (fraction) [ 0, max ]";

constexpr ElementRow kElements[] = {
    {"noxpentracker", "NoxPenTracker", "GstElement", "Video pen tracker", "Filter/Tracker/Video",
     kPlanarCaps, "noxvideotracker"},
    {"noxvectorizer", "NoxVectorizer", "GstElement", "Video Vectorizer", "Filter/Tracker/Video",
     kPlanarCaps, "noxvectorizer"},
    {"noxqrdec", "NoxQRDec", "GstVideoFilter", "QR Code Detector", "Filter/Trackerer/Video",
     "video/x-raw, format = (string) I420, width = (int) [ 1, max ], height = (int) [ 1, max ], "
     "framerate = (fraction) [ 0, max ]",
     "noxqrdec"},
};

TEST(Module, ProvidesExactlyItsElements) {
  GList *features = gst_registry_get_feature_list_by_plugin(gst_registry_get(), "noxvisuals_sse");
  std::set<std::string> names;
  for (const GList *item = features; item != nullptr; item = item->next) {
    names.insert(gst_plugin_feature_get_name(static_cast<GstPluginFeature *>(item->data)));
  }
  gst_plugin_feature_list_free(features);
  std::set<std::string> expected;
  for (const ElementRow &row : kElements) expected.insert(row.factory);
  EXPECT_EQ(names, expected);
}

class EveryElement : public testing::TestWithParam<ElementRow> {
 protected:
  EveryElement()
      : factory_(gst_element_factory_find(GetParam().factory)),
        element_(factory_ != nullptr ? gst_element_factory_create(factory_.get(), nullptr)
                                     : nullptr) {
    if (element_ != nullptr) gst_object_ref_sink(element_.get());
  }

  ObjectPtr<GstElementFactory> factory_;
  ObjectPtr<GstElement> element_;
};

TEST_P(EveryElement, HasItsMetadataRankAndType) {
  ASSERT_NE(element_, nullptr);
  const auto metadata = [this](const char *key) {
    return gst_element_factory_get_metadata(factory_.get(), key);
  };
  EXPECT_STREQ(metadata(GST_ELEMENT_METADATA_LONGNAME), GetParam().long_name);
  EXPECT_STREQ(metadata(GST_ELEMENT_METADATA_KLASS), GetParam().klass);
  EXPECT_STREQ(metadata(GST_ELEMENT_METADATA_DESCRIPTION), "Part of the nox video plugin");
  EXPECT_NE(metadata(GST_ELEMENT_METADATA_AUTHOR), nullptr);
  EXPECT_EQ(gst_plugin_feature_get_rank(GST_PLUGIN_FEATURE(factory_.get())), 256U);
  EXPECT_STREQ(G_OBJECT_TYPE_NAME(element_.get()), GetParam().type);
  EXPECT_STREQ(g_type_name(g_type_parent(G_OBJECT_TYPE(element_.get()))), GetParam().parent);
}

TEST_P(EveryElement, HasItsDebugCategoryWithoutAColour) {
  ASSERT_NE(element_, nullptr);
  GSList *categories = gst_debug_get_all_categories();
  int found = 0;
  for (const GSList *item = categories; item != nullptr; item = item->next) {
    auto *category = static_cast<GstDebugCategory *>(item->data);
    if (std::string(gst_debug_category_get_name(category)) != GetParam().category) continue;
    ++found;
    EXPECT_STREQ(gst_debug_category_get_description(category), GetParam().category);
    EXPECT_EQ(gst_debug_category_get_color(category), 0U);
  }
  g_slist_free(categories);
  EXPECT_EQ(found, 1);
}

TEST_P(EveryElement, HasItsPadTemplates) {
  ASSERT_NE(element_, nullptr);
  ASSERT_EQ(gst_element_factory_get_num_pad_templates(factory_.get()), 2U);
  for (const auto &[name, direction] : {std::pair{"sink", GST_PAD_SINK}, {"src", GST_PAD_SRC}}) {
    GstPadTemplate *pad =
        gst_element_class_get_pad_template(GST_ELEMENT_GET_CLASS(element_.get()), name);
    ASSERT_NE(pad, nullptr) << name;
    EXPECT_EQ(GST_PAD_TEMPLATE_DIRECTION(pad), direction);
    EXPECT_EQ(GST_PAD_TEMPLATE_PRESENCE(pad), GST_PAD_ALWAYS);
    const CapsPtr caps(gst_pad_template_get_caps(pad));
    const CapsPtr expected(gst_caps_from_string(GetParam().caps));
    EXPECT_TRUE(gst_caps_is_strictly_equal(caps.get(), expected.get())) << name;
  }
}

TEST_P(EveryElement, GoesThroughItsStates) {
  ASSERT_NE(element_, nullptr);
  for (int round = 0; round < 2; ++round) {
    for (const GstState state :
         {GST_STATE_READY, GST_STATE_PAUSED, GST_STATE_PLAYING, GST_STATE_NULL}) {
      EXPECT_EQ(gst_element_set_state(element_.get(), state), GST_STATE_CHANGE_SUCCESS);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Elements, EveryElement, testing::ValuesIn(kElements),
                         [](const auto &row) { return std::string(row.param.factory); });

}  // namespace
}  // namespace nox::test
