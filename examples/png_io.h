// PNG reading and writing for the example hosts (libpng's simplified API).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace ostrel_examples {

// A picture read from a PNG: either 8-bit grey (one byte a pixel) or colour
// with alpha laid out as TRC pixels (blue in bits 0-7, alpha in 24-31).
struct Picture {
  unsigned int width = 0;
  unsigned int height = 0;
  bool grey = false;
  std::vector<unsigned char> l08;  // grey pictures
  std::vector<unsigned int> trc;   // colour pictures
};

// Reads a PNG that is grey without alpha, or colour with alpha (8 bits a
// channel). Returns false with a message in *error for a missing or
// unreadable file and for any other kind of PNG.
bool ReadPicture(const std::string &path, Picture *picture, std::string *error);

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
