// PNG reading and writing for the example hosts (libpng's simplified API),
// and output files that appear together or not at all.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace ostrel_examples {

// The largest picture the hosts read: at most this many pixels a side, so at
// most 2^28 pixels (1 GiB decoded as colour). A PNG whose header declares
// more is refused before any pixel memory is allocated.
constexpr unsigned int kMaxPictureSide = 16384;

// A picture read from a PNG: either 8-bit grey (one byte a pixel) or colour
// with alpha laid out as TRC pixels (blue in bits 0-7, alpha in 24-31).
struct Picture {
  unsigned int width = 0;
  unsigned int height = 0;
  bool grey = false;
  std::vector<unsigned char> l08;  // grey pictures
  std::vector<unsigned int> trc;   // colour pictures
};

// The kinds of PNG a reader takes. Grey without alpha of 1 to 8 bits a pixel
// is read as 8-bit grey; colour with alpha (8 bits a channel, or a palette
// with transparency) as TRC pixels.
enum class PictureKinds { kGrey, kGreyOrColourWithAlpha };

// What a reader of these kinds takes, as the programs' messages say it.
const char *AcceptedKinds(PictureKinds kinds);

// Reads a PNG of the given kinds of at most kMaxPictureSide pixels a side.
// Returns false with a message in *error for a missing or unreadable file, a
// picture too large, and any other kind of PNG (the message names the file's
// kind and the accepted ones).
bool ReadPicture(const std::string &path, PictureKinds kinds, Picture *picture, std::string *error);

// Returns an empty string, or a message when a path names a folder (an
// existing one, or a name ending in '/', '.' or '..') instead of a file, or
// when two paths name the same file.
std::string CheckOutputPaths(const std::vector<std::string> &paths);

// A set of output files written together. Each is written to a temporary
// file beside its destination, creating the destination's folder (and its
// parents) when missing; Commit renames them all into place once all have
// been written. A set that is not committed, or whose Commit fails, removes
// its temporary files, the files it had already put in place and the
// folders it created, so a failed run leaves no output behind.
class OutputFiles {
 public:
  OutputFiles() = default;
  OutputFiles(const OutputFiles &) = delete;
  OutputFiles &operator=(const OutputFiles &) = delete;
  ~OutputFiles();

  // TRC pixels (alpha byte included) as an 8-bit RGBA PNG, grey bytes as an
  // 8-bit grey PNG, or text. Each returns false with a message in *error.
  bool AddTrcPng(const std::string &path, const std::vector<unsigned int> &pixels,
                 unsigned int width, unsigned int height, std::string *error);
  bool AddGreyPng(const std::string &path, const std::vector<unsigned char> &pixels,
                  unsigned int width, unsigned int height, std::string *error);
  bool AddText(const std::string &path, const std::string &text, std::string *error);

  bool Commit(std::string *error);

 private:
  struct Pending {
    std::string path, temp;
    bool placed = false;
  };
  // Checks path, creates its folder and adds it; returns the temporary name
  // to write, or an empty string with a message in *error.
  std::string Prepare(const std::string &path, std::string *error);
  bool WritePng(const std::string &path, const void *pixels, unsigned int width,
                unsigned int height, unsigned int format, std::string *error);
  void Discard();

  std::vector<Pending> pending_;
  std::vector<std::filesystem::path> createdFolders_;  // deepest first
  bool committed_ = false;
};

// One file written as a set of its own.
bool WriteTrcPng(const std::string &path, const std::vector<unsigned int> &pixels,
                 unsigned int width, unsigned int height, std::string *error);
bool WriteGreyPng(const std::string &path, const std::vector<unsigned char> &pixels,
                  unsigned int width, unsigned int height, std::string *error);

}  // namespace ostrel_examples
