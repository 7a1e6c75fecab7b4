#include "png_io.h"

#include <png.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace ostrel_examples {
namespace {

std::string TempNameFor(const std::string &path) {
  return path + ".tmp" + std::to_string(static_cast<long>(getpid()));
}

bool Commit(const std::string &temp, const std::string &path, std::string *error) {
  if (std::rename(temp.c_str(), path.c_str()) != 0) {
    *error = path + ": cannot write: " + std::strerror(errno);
    std::remove(temp.c_str());
    return false;
  }
  return true;
}

bool WritePng(const std::string &path, const void *pixels, unsigned int width, unsigned int height,
              png_uint_32 format, std::string *error) {
  png_image image;
  std::memset(&image, 0, sizeof image);
  image.version = PNG_IMAGE_VERSION;
  image.width = width;
  image.height = height;
  image.format = format;
  const std::string temp = TempNameFor(path);
  if (!png_image_write_to_file(&image, temp.c_str(), 0, pixels, 0, nullptr)) {
    *error = path + ": cannot write: " + image.message;
    std::remove(temp.c_str());
    return false;
  }
  return Commit(temp, path, error);
}

// The kind of a PNG from the simplified API's format flags.
std::string DescribeKind(png_uint_32 format) {
  const bool alpha = (format & PNG_FORMAT_FLAG_ALPHA) != 0;
  if ((format & PNG_FORMAT_FLAG_COLORMAP) != 0)
    return alpha ? "palette with transparency" : "palette without transparency";
  return std::string((format & PNG_FORMAT_FLAG_LINEAR) != 0 ? "16-bit " : "") +
         ((format & PNG_FORMAT_FLAG_COLOR) != 0 ? "colour" : "grey") +
         (alpha ? " with alpha" : " without alpha");
}

std::string Size(unsigned long long width, unsigned long long height) {
  return std::to_string(width) + "x" + std::to_string(height);
}

}  // namespace

const char *AcceptedKinds(PictureKinds kinds) {
  return kinds == PictureKinds::kGrey
             ? "grey without alpha, 1 to 8 bits a pixel"
             : "grey without alpha, 1 to 8 bits a pixel, or colour with alpha, 8 bits a channel "
               "or a palette with transparency";
}

bool ReadPicture(const std::string &path, PictureKinds kinds, Picture *picture,
                 std::string *error) {
  std::FILE *probe = std::fopen(path.c_str(), "rb");
  if (!probe) {
    *error = path + ": cannot open: " + std::strerror(errno);
    return false;
  }
  std::fclose(probe);
  png_image image;
  std::memset(&image, 0, sizeof image);
  image.version = PNG_IMAGE_VERSION;
  if (!png_image_begin_read_from_file(&image, path.c_str())) {
    *error = path + ": not a readable PNG file (" + image.message + ")";
    return false;
  }
  // Only the header has been read: the declared size is checked before any
  // pixel memory is allocated.
  if (image.width > kMaxPictureSide || image.height > kMaxPictureSide) {
    png_image_free(&image);
    *error = path + ": the picture is " + Size(image.width, image.height) + " pixels; at most " +
             Size(kMaxPictureSide, kMaxPictureSide) + " are read";
    return false;
  }
  const png_uint_32 f = image.format;
  const bool deep = (f & PNG_FORMAT_FLAG_LINEAR) != 0;
  const bool colour = (f & PNG_FORMAT_FLAG_COLOR) != 0;
  const bool alpha = (f & PNG_FORMAT_FLAG_ALPHA) != 0;
  const bool grey = !deep && !colour && !alpha;
  if (!grey && !(kinds == PictureKinds::kGreyOrColourWithAlpha && !deep && colour && alpha)) {
    png_image_free(&image);
    *error = path + ": unsupported PNG kind (" + DescribeKind(f) +
             "); accepted: " + AcceptedKinds(kinds);
    return false;
  }
  if (image.width == 0 || image.height == 0) {
    png_image_free(&image);
    *error = path + ": empty picture";
    return false;
  }
  picture->width = image.width;
  picture->height = image.height;
  picture->grey = grey;
  const std::size_t count = static_cast<std::size_t>(image.width) * image.height;
  bool ok;
  if (grey) {
    image.format = PNG_FORMAT_GRAY;
    picture->l08.assign(count, 0);
    picture->trc.clear();
    ok = png_image_finish_read(&image, nullptr, picture->l08.data(), 0, nullptr) != 0;
  } else {
    image.format = PNG_FORMAT_BGRA;  // byte order of a TRC pixel in memory
    picture->trc.assign(count, 0);
    picture->l08.clear();
    ok = png_image_finish_read(&image, nullptr, picture->trc.data(), 0, nullptr) != 0;
  }
  if (!ok) {
    *error = path + ": damaged PNG (" + image.message + ")";
    png_image_free(&image);
    return false;
  }
  return true;
}

bool WriteTrcPng(const std::string &path, const std::vector<unsigned int> &pixels,
                 unsigned int width, unsigned int height, std::string *error) {
  return WritePng(path, pixels.data(), width, height, PNG_FORMAT_BGRA, error);
}

bool WriteGreyPng(const std::string &path, const std::vector<unsigned char> &pixels,
                  unsigned int width, unsigned int height, std::string *error) {
  return WritePng(path, pixels.data(), width, height, PNG_FORMAT_GRAY, error);
}

bool WriteTextFile(const std::string &path, const std::string &text, std::string *error) {
  const std::string temp = TempNameFor(path);
  std::FILE *file = std::fopen(temp.c_str(), "wb");
  if (!file) {
    *error = path + ": cannot write: " + std::strerror(errno);
    return false;
  }
  const bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
  if (std::fclose(file) != 0 || !written) {
    *error = path + ": cannot write: " + std::strerror(errno);
    std::remove(temp.c_str());
    return false;
  }
  return Commit(temp, path, error);
}

}  // namespace ostrel_examples
