// The example programs run as a user runs them: a mask with known objects,
// and bad input that must fail with a message and leave no output file.
#include <gtest/gtest.h>
#include <png.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "png_io.h"

namespace fs = std::filesystem;
using namespace ostrel_examples;

namespace {

const std::string kRepeatView = OSTREL_REPEAT_VIEW_PATH;
const std::string kObjects = OSTREL_OBJECTS_PATH;

class ProgramTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const auto *info = ::testing::UnitTest::GetInstance()->current_test_info();
    dir_ = fs::temp_directory_path() /
           ("ostrel-cli-" + std::string(info->name()) + "-" + std::to_string(::getpid()));
    fs::remove_all(dir_);
    fs::create_directories(dir_ / "in");
    fs::create_directories(dir_ / "out");
  }
  void TearDown() override { fs::remove_all(dir_); }

  // Runs a program with arguments; returns its exit status, its stderr in err_.
  int Run(const std::string &program, const std::string &args) {
    const std::string log = In("stderr.txt");
    const int status =
        std::system(("'" + program + "' " + args + " >/dev/null 2>'" + log + "'").c_str());
    std::ifstream in(log);
    err_.assign(std::istreambuf_iterator<char>(in), {});
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  std::string In(const std::string &name) const { return (dir_ / "in" / name).string(); }
  std::string Out(const std::string &name) const { return (dir_ / "out" / name).string(); }

  void ExpectFailure(const std::string &program, const std::string &args,
                     const std::string &message) {
    EXPECT_NE(Run(program, args), 0) << args;
    EXPECT_NE(err_.find(message), std::string::npos) << args << "\nstderr: " << err_;
    EXPECT_TRUE(fs::is_empty(dir_ / "out")) << args;
  }

  void ExpectPictureSize(const std::string &name, unsigned int width, unsigned int height) {
    Picture picture;
    std::string error;
    ASSERT_TRUE(ReadPicture(Out(name), &picture, &error)) << error;
    EXPECT_EQ(picture.width, width);
    EXPECT_EQ(picture.height, height);
  }

  fs::path dir_;
  std::string err_;
};

TEST_F(ProgramTest, ObjectsFindsTheKnownObjectsOfAMask) {
  // Rectangles x, y, w, h: one touching the picture's corner, two squares
  // meeting only at a corner (two objects), and an L of 40 + 32 pixels.
  const int rects[][4] = {{0, 0, 4, 3},   {70, 2, 2, 2},  {72, 4, 2, 2}, {5, 4, 10, 6},
                          {50, 5, 4, 10}, {54, 11, 8, 4}, {30, 20, 3, 3}};
  const unsigned int w = 80, h = 30;
  std::vector<unsigned char> mask(w * h, 0);
  for (const auto &r : rects)
    for (int y = r[1]; y < r[1] + r[3]; ++y)
      for (int x = r[0]; x < r[0] + r[2]; ++x) mask[y * w + x] = 255;
  std::string error;
  ASSERT_TRUE(WriteGreyPng(In("mask.png"), mask, w, h, &error)) << error;
  ASSERT_EQ(Run(kObjects, "--mask " + In("mask.png") + " --output " + Out("o.png") + " --csv " +
                              Out("o.csv")),
            0);
  // Labels in raster order of the objects' first pixels: pixels, centroid;
  // seven fields a row after the header.
  const double expected[][3] = {
      {12, 2, 1.5},   {4, 71, 3}, {60, 10, 7}, {4, 73, 5}, {72, 3936.0 / 72, 816.0 / 72},
      {9, 31.5, 21.5}};
  std::ifstream csv(Out("o.csv"));
  std::string line;
  std::getline(csv, line);
  for (const auto &e : expected) {
    double pixels = 0, x = 0, y = 0;
    ASSERT_TRUE(std::getline(csv, line)) << "object " << &e - expected << " missing";
    EXPECT_EQ(std::count(line.begin(), line.end(), ','), 6) << line;
    ASSERT_EQ(std::sscanf(line.c_str(), "%*[^,],%lf,%lf,%lf", &pixels, &x, &y), 3) << line;
    EXPECT_EQ(pixels, e[0]) << line;
    EXPECT_NEAR(x, e[1], 1e-3) << line;
    EXPECT_NEAR(y, e[2], 1e-3) << line;
  }
  EXPECT_FALSE(std::getline(csv, line)) << "an extra object: " << line;
  ExpectPictureSize("o.png", w, h);
}

TEST_F(ProgramTest, RepeatViewDrawsAGreyDesignAtTheRequestedSize) {
  std::vector<unsigned char> tile(40 * 30);
  for (std::size_t i = 0; i < tile.size(); ++i) tile[i] = static_cast<unsigned char>(i * 7);
  std::string error;
  ASSERT_TRUE(WriteGreyPng(In("tile.png"), tile, 40, 30, &error)) << error;
  ASSERT_EQ(Run(kRepeatView, "--design " + In("tile.png") +
                                 " --drop-kind horizontal --drop 13 --zoom 1.5 --size 97x61"
                                 " --scroll -20,7 --output " +
                                 Out("v.png")),
            0);
  ExpectPictureSize("v.png", 97, 61);
}

TEST_F(ProgramTest, BadInputFailsWithAMessageAndNoOutput) {
  std::string error;
  ASSERT_TRUE(
      WriteTrcPng(In("colour.png"), std::vector<unsigned int>(64, 0xFF102030u), 8, 8, &error))
      << error;
  png_image rgb{};  // colour without alpha
  rgb.version = PNG_IMAGE_VERSION;
  rgb.width = rgb.height = 4;
  rgb.format = PNG_FORMAT_RGB;
  ASSERT_TRUE(png_image_write_to_file(&rgb, In("rgb.png").c_str(), 0,
                                      std::vector<unsigned char>(48, 90).data(), 0, nullptr));
  std::ofstream(In("text.png")) << "not a picture\n";

  const std::string view = " --output " + Out("v.png");
  ExpectFailure(kRepeatView, "--design " + In("missing.png") + view, "cannot open");
  ExpectFailure(kRepeatView, "--design " + In("text.png") + view, "not a readable PNG");
  ExpectFailure(kRepeatView, "--design " + In("rgb.png") + view, "unsupported PNG kind");
  ExpectFailure(kRepeatView, "--size 0x20" + view, "zero or negative");
  ExpectFailure(kRepeatView, "--size 30x-4" + view, "zero or negative");
  ExpectFailure(kRepeatView, "--zoom 0.005" + view, "smaller than one pixel");
  ExpectFailure(kRepeatView, "--drop-kind diagonal" + view, "unknown drop kind");
  // The built-in tile is 120 x 90; a drop must lie below its side.
  ExpectFailure(kRepeatView, "--drop 90" + view, "bad drop 90: a vertical drop must be 0 to 89");
  ExpectFailure(kRepeatView, "--drop-kind horizontal --drop 120" + view,
                "horizontal drop must be 0 to 119");
  // An output directory that does not exist: the write fails, nothing is left.
  ExpectFailure(kRepeatView, "--output " + Out("no/such/dir.png"), "cannot write");

  const std::string objects = " --output " + Out("o.png") + " --csv " + Out("o.csv");
  ExpectFailure(kObjects, "--mask " + In("colour.png") + objects, "unsupported PNG kind");
  ExpectFailure(kObjects, "--mask " + In("text.png") + objects, "not a readable PNG");
  ExpectFailure(kObjects, "--frame 0" + objects, "bad frame width");
}

}  // namespace
