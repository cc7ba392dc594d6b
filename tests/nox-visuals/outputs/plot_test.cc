#include "nox-visuals/outputs/plot.h"

#include <cairo.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cmath>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>

#include "nox-visuals/outputs/output_error.h"
#include "nox-visuals/support/recorded.h"

namespace nox::app {
namespace {

namespace fs = std::filesystem;
using recorded::loss;
using recorded::pen;

class PlotTest : public testing::Test {
 protected:
  PlotTest() { fs::create_directory(folder_); }
  ~PlotTest() override { fs::remove_all(folder_); }

  std::string file(const char *name) const { return folder_ / name; }
  std::size_t files() const {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(folder_), fs::directory_iterator()));
  }

  recorded::Sentences sentences_;
  const fs::path folder_ = fs::path(testing::TempDir()) / ("plot_test." + std::to_string(getpid()));
};

// A stroke from (0.25, 0.5) to (0.5, 0.5), then hovering on to (0.75, 0.5); a loss; a tap.
void draw(Plot *plot) {
  for (int i = 0; i <= 30; ++i) plot->take(pen(i / 30.0, 0.25 + 0.25 * i / 30.0, 0.5, true));
  for (int i = 0; i <= 30; ++i) plot->take(pen(1 + i / 30.0, 0.5 + 0.25 * i / 30.0, 0.5, false, 2));
  plot->take(loss(2.1, false));
  plot->take(pen(2.2, 0.25, 0.25, true, 2));
}

struct Colour {
  int red, green, blue;
};

class Picture {
 public:
  explicit Picture(const std::string &png)
      : surface_(cairo_image_surface_create_from_png(png.c_str()), cairo_surface_destroy) {
    EXPECT_EQ(cairo_image_surface_get_width(surface_.get()), 1920);
    EXPECT_EQ(cairo_image_surface_get_height(surface_.get()), 1080);
  }

  Colour at(double x, double y) const {
    const auto *pixel = cairo_image_surface_get_data(surface_.get()) +
                        std::lround(y * 1080) * cairo_image_surface_get_stride(surface_.get()) +
                        std::lround(x * 1920) * 4;
    return {pixel[2], pixel[1], pixel[0]};
  }

 private:
  std::unique_ptr<cairo_surface_t, void (*)(cairo_surface_t *)> surface_;
};

TEST_F(PlotTest, APngShowsWhatWasWrittenAndWhereThePenHovered) {
  Plot plot(file("a.png"), sentences_.say());
  draw(&plot);
  plot.take(End{});
  const Picture picture(file("a.png"));
  const Colour written = picture.at(0.4, 0.5);
  EXPECT_GT(written.red, 150);
  EXPECT_LT(written.blue, 80);
  const Colour hovered = picture.at(0.6, 0.5);
  EXPECT_GT(hovered.blue, hovered.red);
  EXPECT_LT(hovered.red, 230);
  const Colour tapped = picture.at(0.25, 0.25);
  EXPECT_GT(tapped.red, 150);
  EXPECT_LT(tapped.blue, 80);
  // Nothing joins where the pen was lost to where it came back.
  const Colour between = picture.at(0.5, 0.375);
  EXPECT_EQ(between.red + between.green + between.blue, 3 * 255);
}

TEST_F(PlotTest, AnSvgIsWhole) {
  Plot plot(file("a.svg"), sentences_.say());
  draw(&plot);
  plot.take(End{});
  std::ifstream in(file("a.svg"));
  const std::string text((std::istreambuf_iterator<char>(in)), {});
  EXPECT_NE(text.find("<svg"), std::string::npos);
  EXPECT_NE(text.find("</svg>"), std::string::npos);
  EXPECT_NE(text.find("M 480 540"), std::string::npos) << "the stroke starts there";
}

TEST_F(PlotTest, TheFileHasItsNameOnlyWhenItIsWhole) {
  {
    Plot plot(file("a.png"), sentences_.say());
    draw(&plot);
    EXPECT_FALSE(fs::exists(file("a.png")));
  }
  EXPECT_EQ(files(), 0U) << "a stream that fails leaves nothing behind";
  Plot plot(file("a.png"), sentences_.say());
  plot.take(End{});
  EXPECT_EQ(files(), 1U);
}

TEST_F(PlotTest, ALongStrokeIsUnbroken) {
  Plot plot(file("a.png"), sentences_.say());
  for (int i = 0; i <= 3000; ++i) plot.take(pen(i / 30.0, 0.1 + 0.8 * i / 3000, 0.5, true));
  plot.take(End{});
  const Picture picture(file("a.png"));
  for (double x = 0.1; x <= 0.9; x += 0.01) {
    EXPECT_GT(picture.at(x, 0.5).red, 150) << x;
    EXPECT_LT(picture.at(x, 0.5).blue, 80) << x;
  }
}

TEST_F(PlotTest, APenAtRestAddsNothing) {
  const auto size = [&](int frames) {
    Plot plot(file("a.svg"), sentences_.say());
    for (int i = 0; i < frames; ++i) plot.take(pen(i / 30.0, 0.5 + 1e-5 * (i % 2), 0.5, true));
    plot.take(End{});
    return fs::file_size(file("a.svg"));
  };
  EXPECT_EQ(size(2), size(20'000));
}

TEST_F(PlotTest, OtherNamesAndPlacesAreErrors) {
  EXPECT_THROW(Plot(file("a.jpg"), sentences_.say()), OutputError);
  EXPECT_THROW(Plot(file("a"), sentences_.say()), OutputError);
  EXPECT_THROW(Plot(file("no/such/folder/a.png"), sentences_.say()), OutputError);
}

// A limit on the size of files says no in the middle of one, as a full disk does.
TEST_F(PlotTest, ADiskThatIsFullIsSaidAndTheOldFileStays) {
  for (const char *name : {"a.png", "a.svg"}) {
    std::ofstream(file(name)) << "old";
    Plot plot(file(name), sentences_.say());
    draw(&plot);
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small{100, before.rlim_max};
    signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    plot.take(End{});
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_TRUE(plot.broken());
    EXPECT_EQ(fs::file_size(file(name)), 3U);
    ASSERT_FALSE(sentences_.said.empty());
    EXPECT_NE(sentences_.said.back().find(std::string(name) + ": cannot be written to its end: "),
              std::string::npos)
        << sentences_.said.back();
  }
  EXPECT_EQ(files(), 2U);
}

TEST_F(PlotTest, ANameThatIsAFoldersIsSaid) {
  fs::create_directories(file("a.png/folder"));
  Plot plot(file("a.png"), sentences_.say());
  plot.take(End{});
  EXPECT_TRUE(plot.broken());
  EXPECT_EQ(files(), 1U);
}

}  // namespace
}  // namespace nox::app
