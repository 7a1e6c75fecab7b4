// The example programs run as a user runs them: a mask with known objects,
// the kinds and sizes of PNG they read or refuse, output folders they make,
// and bad input that must fail with a message and leave no output file.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <cstdint>
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

// AddressSanitizer reserves far more address space than any ulimit allows.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kAddressSanitizer = true;
#elif defined(__has_feature)
constexpr bool kAddressSanitizer = __has_feature(address_sanitizer);
#else
constexpr bool kAddressSanitizer = false;
#endif

std::string BigEndian(std::uint32_t v) {
  return {static_cast<char>(v >> 24), static_cast<char>(v >> 16), static_cast<char>(v >> 8),
          static_cast<char>(v)};
}

std::string Chunk(const std::string &type, const std::string &data) {
  const std::string body = type + data;
  const auto crc = crc32(0, reinterpret_cast<const Bytef *>(body.data()), body.size());
  return BigEndian(static_cast<std::uint32_t>(data.size())) + body +
         BigEndian(static_cast<std::uint32_t>(crc));
}

// A PNG with the given header (colour type 0 grey, 2 colour, 3 palette, 4
// grey with alpha, 6 colour with alpha) and extra chunks before its pixels.
// Its rows are all 0; with allRows false the pixel data is a few bytes
// whatever the declared size.
void WriteCraftedPng(const std::string &path, std::uint32_t width, std::uint32_t height, int depth,
                     int colourType, const std::string &extra, bool allRows = true) {
  const int channels[] = {1, 0, 3, 1, 2, 0, 4};
  const std::size_t rowBytes = 1 + (std::size_t{width} * channels[colourType] * depth + 7) / 8;
  const std::string raw(allRows ? rowBytes * height : 8, '\0');
  std::vector<Bytef> packed(compressBound(raw.size()));
  uLongf size = packed.size();
  ASSERT_EQ(compress(packed.data(), &size, reinterpret_cast<const Bytef *>(raw.data()), raw.size()),
            Z_OK);
  std::ofstream(path, std::ios::binary)
      << "\x89PNG\r\n\x1a\n"
      << Chunk("IHDR", BigEndian(width) + BigEndian(height) + static_cast<char>(depth) +
                           static_cast<char>(colourType) + std::string(3, '\0'))
      << extra << Chunk("IDAT", std::string(packed.begin(), packed.begin() + size))
      << Chunk("IEND", "");
}

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

  // Runs a program with arguments after the shell commands in prefix;
  // returns its exit status, its stderr in err_.
  int Run(const std::string &program, const std::string &args, const std::string &prefix = "") {
    const std::string log = In("stderr.txt");
    const int status =
        std::system((prefix + "'" + program + "' " + args + " >/dev/null 2>'" + log + "'").c_str());
    std::ifstream in(log);
    err_.assign(std::istreambuf_iterator<char>(in), {});
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  std::string In(const std::string &name) const { return (dir_ / "in" / name).string(); }
  std::string Out(const std::string &name) const { return (dir_ / "out" / name).string(); }

  void ExpectFailure(const std::string &program, const std::string &args,
                     const std::string &message, const std::string &prefix = "") {
    EXPECT_EQ(Run(program, args, prefix), 1) << args;
    EXPECT_NE(err_.find(message), std::string::npos) << args << "\nstderr: " << err_;
    EXPECT_TRUE(fs::is_empty(dir_ / "out")) << args;
  }

  void ExpectPictureSize(const std::string &name, unsigned int width, unsigned int height) {
    Picture picture;
    std::string error;
    ASSERT_TRUE(ReadPicture(Out(name), PictureKinds::kGreyOrColourWithAlpha, &picture, &error))
        << error;
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
                              Out("o.csv") + " --svg " + Out("o.svg")),
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

  // The outlines: one figure an 8-connected object (the squares meeting at
  // a corner make one), in the order of their top-left corners.
  std::ifstream svgFile(Out("o.svg"));
  const std::string svg((std::istreambuf_iterator<char>(svgFile)),
                        std::istreambuf_iterator<char>());
  EXPECT_NE(svg.find("viewBox=\"0 0 80 30\""), std::string::npos) << svg;
  EXPECT_NE(svg.find("fill-rule=\"evenodd\""), std::string::npos) << svg;
  EXPECT_NE(
      svg.find(" d=\"M0 0H4V3H0ZM70 2H72V4H74V6H72V4H70ZM5 4H15V10H5ZM50 5H54V11H62V15H50ZM30 "
               "20H33V23H30Z\""),
      std::string::npos)
      << svg;
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
  std::ofstream(In("text.png")) << "not a picture\n";
  std::ofstream(In("blocker")) << "a file where a folder is wanted\n";
  WriteCraftedPng(In("grey.png"), 40, 30, 8, 0, "");
  const std::string view = " --output " + Out("v.png");
  const std::string png = " --output " + Out("o.png"), csv = " --csv " + Out("o.csv");
  const struct {
    const std::string &program;
    std::string args, message;
  } cases[] = {
      {kRepeatView, "--design " + In("missing.png") + view, "cannot open"},
      {kRepeatView, "--design " + In("text.png") + view, "not a readable PNG"},
      {kRepeatView, "--size 0x20" + view, "zero or negative"},
      {kRepeatView, "--size 30x-4" + view, "zero or negative"},
      {kRepeatView, "--zoom 0.005" + view, "smaller than one pixel"},
      {kRepeatView, "--drop-kind diagonal" + view, "unknown drop kind"},
      // The built-in tile is 120 x 90; a 40 x 30 one from a file.
      {kRepeatView, "--drop 90" + view, "bad drop 90: a vertical drop must be 0 to 89"},
      {kRepeatView, "--drop-kind horizontal --drop 120" + view, "horizontal drop must be 0 to 119"},
      {kRepeatView, "--design " + In("grey.png") + " --drop 30" + view, "must be 0 to 29"},
      {kRepeatView, "--output " + Out(""), "out/: is a folder"},
      {kRepeatView, "--output " + (dir_ / "out").string(), "out: is a folder"},
      {kRepeatView, "--output " + Out("."), "is a folder"},
      {kObjects, "--mask " + In("text.png") + png + csv, "not a readable PNG"},
      {kObjects, "--frame 0" + png + csv, "bad frame width"},
      {kObjects, png + " --csv " + (dir_ / "out").string(), "out: is a folder"},
      {kObjects, png + " --csv " + Out("o.png"), "given for two outputs"},
      // The picture is written first; the CSV then fails, and neither
      // file, nor the folders made for them, may be left.
      {kObjects, png + " --csv " + In("blocker") + "/o.csv", "blocker is not a folder"},
      {kObjects, " --output " + Out("new/deep/o.png") + " --csv /proc/ostrel-test.csv",
       "/proc/ostrel-test.csv: cannot write"},
  };
  for (const auto &c : cases) ExpectFailure(c.program, c.args, c.message);
}

// Each kind of PNG is read, or refused with a message naming its kind and
// what the program reads instead: every kind that message lists is read.
TEST_F(ProgramTest, PngKindsAreReadOrRefusedAsTheMessageSays) {
  const std::string palette = Chunk("PLTE", std::string("\x10\x20\x30\xff\xee\xdd", 6));
  const std::string transparency = Chunk("tRNS", std::string("\x00\x80", 2));
  const struct {
    int depth, colourType;
    std::string extra, kind;
    bool mask, design;  // read as a mask, as a design
  } kinds[] = {
      {2, 0, "", "", true, true},
      {8, 0, "", "", true, true},
      {16, 0, "", "16-bit grey without alpha", false, false},
      {8, 0, Chunk("tRNS", std::string("\x00\x00", 2)), "grey with alpha", false, false},
      {8, 4, "", "grey with alpha", false, false},
      {16, 4, "", "16-bit grey with alpha", false, false},
      {8, 2, "", "colour without alpha", false, false},
      {8, 6, "", "colour with alpha", false, true},
      {16, 6, "", "16-bit colour with alpha", false, false},
      {8, 3, palette, "palette without transparency", false, false},
      {4, 3, palette + transparency, "palette with transparency", false, true},
  };
  const std::string grey = "accepted: grey without alpha, 1 to 8 bits a pixel";
  for (const auto &k : kinds) {
    const std::string name = "kind" + std::to_string(&k - kinds) + ".png", path = In(name);
    WriteCraftedPng(path, 12, 9, k.depth, k.colourType, k.extra);
    const std::string where = name + " (" + k.kind + ")";
    EXPECT_EQ(
        Run(kObjects, "--mask " + path + " --output " + Out("o.png") + " --csv " + Out("o.csv")),
        k.mask ? 0 : 1)
        << where << ": " << err_;
    if (!k.mask) {
      EXPECT_NE(err_.find("(" + k.kind + "); " + grey + "\n"), std::string::npos) << err_;
    }
    EXPECT_EQ(Run(kRepeatView, "--design " + path + " --output " + Out("v.png")), k.design ? 0 : 1)
        << where << ": " << err_;
    if (!k.design) {
      EXPECT_NE(err_.find("(" + k.kind + "); " + grey +
                          ", or colour with alpha, 8 bits a channel or a palette with "
                          "transparency\n"),
                std::string::npos)
          << err_;
    }
  }
}

// A header declaring more than 16384 pixels a side is refused before the
// pixels are allocated: the programs run within 1 GiB of address space, so
// allocating them would fail (a 100000 x 100000 picture takes 37 GiB).
TEST_F(ProgramTest, OversizedPngIsRefusedBeforeItsPixelsAreAllocated) {
  const std::string limit = kAddressSanitizer ? "" : "ulimit -v 1048576; ";
  const std::uint32_t sizes[][2] = {{100000, 100000}, {16385, 1}, {1, 16385}};
  for (const auto &size : sizes) {
    const std::string declared = std::to_string(size[0]) + "x" + std::to_string(size[1]);
    WriteCraftedPng(In("big.png"), size[0], size[1], 8, 6, "", false);
    const std::string message =
        "big.png: the picture is " + declared + " pixels; at most 16384x16384 are read";
    ExpectFailure(
        kObjects,
        "--mask " + In("big.png") + " --output " + Out("o.png") + " --csv " + Out("o.csv"), message,
        limit);
    ExpectFailure(kRepeatView, "--design " + In("big.png") + " --output " + Out("v.png"), message,
                  limit);
  }
  WriteCraftedPng(In("edge.png"), 16384, 2, 1, 0, "");  // the largest width read
  EXPECT_EQ(Run(kRepeatView,
                "--design " + In("edge.png") + " --size 64x32 --output " + Out("v.png"), limit),
            0)
      << err_;
}

// Outputs go to folders that are made when missing, also the default out/
// under whatever folder the programs run in.
TEST_F(ProgramTest, OutputFoldersAreCreated) {
  fs::create_directories(dir_ / "run");
  const std::string cd = "cd '" + (dir_ / "run").string() + "' && ";
  ASSERT_EQ(Run(kObjects, "", cd), 0) << err_;
  ASSERT_EQ(Run(kRepeatView, "", cd), 0) << err_;
  ASSERT_EQ(Run(kRepeatView, "--size 50x40 --output " + Out("a/b/v.png")), 0) << err_;
  ExpectPictureSize("a/b/v.png", 50, 40);
  ExpectPictureSize("../run/out/objects.png", 320, 200);
  ExpectPictureSize("../run/out/repeat-view.png", 640, 400);
  EXPECT_TRUE(fs::is_regular_file(dir_ / "run/out/objects.csv"));
  EXPECT_TRUE(fs::is_regular_file(dir_ / "run/out/objects.svg"));
  EXPECT_EQ(std::distance(fs::directory_iterator(dir_ / "run/out"), fs::directory_iterator()), 4);
}

}  // namespace
