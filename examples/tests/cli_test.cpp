// The example programs run as a user runs them: a mask with known objects,
// and bad input that must fail with a message and leave no output file.
#include <gtest/gtest.h>
#include <png.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "png_io.h"

namespace fs = std::filesystem;
using namespace ostrel_examples;

namespace {

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

  // Runs a program with arguments; returns its exit status, stderr in *err.
  int Run(const std::string &program, const std::string &args, std::string *err = nullptr) {
    const fs::path log = dir_ / "in" / "stderr.txt";
    const std::string command =
        "'" + program + "' " + args + " >/dev/null 2>'" + log.string() + "'";
    const int status = std::system(command.c_str());
    std::ifstream in(log);
    std::stringstream text;
    text << in.rdbuf();
    if (err) *err = text.str();
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  std::string In(const std::string &name) const { return (dir_ / "in" / name).string(); }
  std::string Out(const std::string &name) const { return (dir_ / "out" / name).string(); }
  bool OutEmpty() const { return fs::is_empty(dir_ / "out"); }

  void ExpectFailure(const std::string &program, const std::string &args,
                     const std::string &message) {
    std::string err;
    EXPECT_NE(Run(program, args, &err), 0) << args;
    EXPECT_NE(err.find(message), std::string::npos) << args << "\nstderr: " << err;
    EXPECT_TRUE(OutEmpty()) << args;
  }

  fs::path dir_;
};

const std::string kRepeatView = OSTREL_REPEAT_VIEW_PATH;
const std::string kObjects = OSTREL_OBJECTS_PATH;

void SetRect(std::vector<unsigned char> &mask, unsigned int width, int x0, int y0, int w, int h) {
  for (int y = y0; y < y0 + h; ++y)
    for (int x = x0; x < x0 + w; ++x) mask[static_cast<std::size_t>(y) * width + x] = 255;
}

std::vector<std::vector<double>> ReadCsv(const std::string &path) {
  std::ifstream in(path);
  std::string line;
  std::getline(in, line);  // header
  std::vector<std::vector<double>> rows;
  while (std::getline(in, line)) {
    std::vector<double> row;
    std::stringstream fields(line);
    std::string field;
    while (std::getline(fields, field, ',')) row.push_back(std::stod(field));
    rows.push_back(row);
  }
  return rows;
}

TEST_F(ProgramTest, ObjectsFindsTheKnownObjectsOfAMask) {
  const unsigned int w = 80, h = 30;
  std::vector<unsigned char> mask(w * h, 0);
  SetRect(mask, w, 0, 0, 4, 3);   // touches the picture's corner
  SetRect(mask, w, 70, 2, 2, 2);  // two squares meeting only at a corner:
  SetRect(mask, w, 72, 4, 2, 2);  // two objects
  SetRect(mask, w, 5, 4, 10, 6);
  SetRect(mask, w, 50, 5, 4, 10);  // an L: 40 + 32 pixels
  SetRect(mask, w, 54, 11, 8, 4);
  SetRect(mask, w, 30, 20, 3, 3);
  std::string error;
  ASSERT_TRUE(WriteGreyPng(In("mask.png"), mask, w, h, &error)) << error;
  ASSERT_EQ(Run(kObjects, "--mask " + In("mask.png") + " --output " + Out("o.png") + " --csv " +
                              Out("o.csv")),
            0);
  // Labels in raster order of the objects' first pixels: pixels, centroid.
  const double expected[][3] = {
      {12, 2, 1.5},   {4, 71, 3}, {60, 10, 7}, {4, 73, 5}, {72, 3936.0 / 72, 816.0 / 72},
      {9, 31.5, 21.5}};
  const auto rows = ReadCsv(Out("o.csv"));
  ASSERT_EQ(rows.size(), 6u);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    ASSERT_EQ(rows[i].size(), 7u);
    EXPECT_EQ(rows[i][1], expected[i][0]) << "object " << i;
    EXPECT_NEAR(rows[i][2], expected[i][1], 1e-3) << "object " << i;
    EXPECT_NEAR(rows[i][3], expected[i][2], 1e-3) << "object " << i;
  }
  Picture picture;
  ASSERT_TRUE(ReadPicture(Out("o.png"), &picture, &error)) << error;
  EXPECT_EQ(picture.width, w);
  EXPECT_EQ(picture.height, h);
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
  Picture picture;
  ASSERT_TRUE(ReadPicture(Out("v.png"), &picture, &error)) << error;
  EXPECT_EQ(picture.width, 97u);
  EXPECT_EQ(picture.height, 61u);
}

TEST_F(ProgramTest, BadInputFailsWithAMessageAndNoOutput) {
  std::string error;
  std::vector<unsigned int> colour(8 * 8, 0xFF102030u);
  ASSERT_TRUE(WriteTrcPng(In("colour.png"), colour, 8, 8, &error)) << error;
  {  // colour without alpha
    png_image image;
    std::memset(&image, 0, sizeof image);
    image.version = PNG_IMAGE_VERSION;
    image.width = 4;
    image.height = 4;
    image.format = PNG_FORMAT_RGB;
    std::vector<unsigned char> rgb(4 * 4 * 3, 90);
    ASSERT_TRUE(png_image_write_to_file(&image, In("rgb.png").c_str(), 0, rgb.data(), 0, nullptr));
  }
  std::ofstream(In("text.png")) << "not a picture\n";

  const std::string view = " --output " + Out("v.png");
  ExpectFailure(kRepeatView, "--design " + In("missing.png") + view, "cannot open");
  ExpectFailure(kRepeatView, "--design " + In("text.png") + view, "not a readable PNG");
  ExpectFailure(kRepeatView, "--design " + In("rgb.png") + view, "unsupported PNG kind");
  ExpectFailure(kRepeatView, "--size 0x20" + view, "zero or negative");
  ExpectFailure(kRepeatView, "--size 30x-4" + view, "zero or negative");
  ExpectFailure(kRepeatView, "--zoom 0.005" + view, "smaller than one pixel");
  ExpectFailure(kRepeatView, "--drop-kind diagonal" + view, "unknown drop kind");
  // An output directory that does not exist: the write fails, nothing is left.
  ExpectFailure(kRepeatView, "--output " + Out("no/such/dir.png"), "cannot write");

  const std::string objects = " --output " + Out("o.png") + " --csv " + Out("o.csv");
  ExpectFailure(kObjects, "--mask " + In("missing.png") + objects, "cannot open");
  ExpectFailure(kObjects, "--mask " + In("colour.png") + objects, "unsupported PNG kind");
  ExpectFailure(kObjects, "--mask " + In("text.png") + objects, "not a readable PNG");
  ExpectFailure(kObjects, "--frame 0" + objects, "bad frame width");
}

}  // namespace
