// PNG reading and writing for the example hosts (libpng's simplified API).
#pragma once

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

// Writes TRC pixels (alpha byte included) as an 8-bit RGBA PNG, or grey
// bytes as an 8-bit grey PNG. The file is written under a temporary name in
// the same directory and renamed when complete, so a failure leaves no
// output file. Returns false with a message in *error.
bool WriteTrcPng(const std::string &path, const std::vector<unsigned int> &pixels,
                 unsigned int width, unsigned int height, std::string *error);
bool WriteGreyPng(const std::string &path, const std::vector<unsigned char> &pixels,
                  unsigned int width, unsigned int height, std::string *error);

// Writes text to path through a temporary file and a rename, as above.
bool WriteTextFile(const std::string &path, const std::string &text, std::string *error);

}  // namespace ostrel_examples
