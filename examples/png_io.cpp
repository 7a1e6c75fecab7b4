#include "png_io.h"

#include <png.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <system_error>

namespace fs = std::filesystem;

namespace ostrel_examples {
namespace {

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

std::string CheckOutputPaths(const std::vector<std::string> &paths) {
  std::vector<fs::path> seen;
  for (const std::string &path : paths) {
    const fs::path p(path), name = p.filename();
    std::error_code ec;
    if (name.empty() || name == "." || name == ".." || fs::is_directory(p, ec))
      return path + ": is a folder; give a file name";
    const fs::path normal = fs::absolute(p, ec).lexically_normal();
    for (const fs::path &other : seen)
      if (other == normal) return path + ": given for two outputs";
    seen.push_back(normal);
  }
  return "";
}

OutputFiles::~OutputFiles() {
  if (!committed_) Discard();
}

void OutputFiles::Discard() {
  for (const Pending &p : pending_) std::remove((p.placed ? p.path : p.temp).c_str());
  std::error_code ec;
  for (const fs::path &folder : createdFolders_) fs::remove(folder, ec);  // only if empty
  pending_.clear();
  createdFolders_.clear();
}

std::string OutputFiles::Prepare(const std::string &path, std::string *error) {
  std::vector<std::string> paths{path};
  for (const Pending &p : pending_) paths.push_back(p.path);
  *error = CheckOutputPaths(paths);
  if (!error->empty()) return "";
  std::error_code ec;
  // The missing folders on the way to the file, deepest first.
  const fs::path folder = fs::path(path).parent_path();
  fs::path existing = folder;
  std::vector<fs::path> missing;
  while (!existing.empty() && !fs::exists(existing, ec) && existing != existing.parent_path()) {
    missing.push_back(existing);
    existing = existing.parent_path();
  }
  if (!existing.empty() && !fs::is_directory(existing, ec)) {
    *error = path + ": cannot write: " + existing.string() + " is not a folder";
    return "";
  }
  if (!missing.empty()) {
    createdFolders_.insert(createdFolders_.begin(), missing.begin(), missing.end());
    if (!fs::create_directories(folder, ec) && ec) {
      *error = path + ": cannot create the folder " + folder.string() + ": " + ec.message();
      return "";
    }
  }
  const std::string temp = path + ".tmp" + std::to_string(static_cast<long>(getpid()));
  pending_.push_back({path, temp});
  return temp;
}

bool OutputFiles::WritePng(const std::string &path, const void *pixels, unsigned int width,
                           unsigned int height, unsigned int format, std::string *error) {
  const std::string temp = Prepare(path, error);
  if (temp.empty()) return false;
  png_image image;
  std::memset(&image, 0, sizeof image);
  image.version = PNG_IMAGE_VERSION;
  image.width = width;
  image.height = height;
  image.format = format;
  if (!png_image_write_to_file(&image, temp.c_str(), 0, pixels, 0, nullptr)) {
    *error = path + ": cannot write: " + image.message;
    return false;
  }
  return true;
}

bool OutputFiles::AddTrcPng(const std::string &path, const std::vector<unsigned int> &pixels,
                            unsigned int width, unsigned int height, std::string *error) {
  return WritePng(path, pixels.data(), width, height, PNG_FORMAT_BGRA, error);
}

bool OutputFiles::AddGreyPng(const std::string &path, const std::vector<unsigned char> &pixels,
                             unsigned int width, unsigned int height, std::string *error) {
  return WritePng(path, pixels.data(), width, height, PNG_FORMAT_GRAY, error);
}

bool OutputFiles::AddText(const std::string &path, const std::string &text, std::string *error) {
  const std::string temp = Prepare(path, error);
  if (temp.empty()) return false;
  std::FILE *file = std::fopen(temp.c_str(), "wb");
  if (!file) {
    *error = path + ": cannot write: " + std::strerror(errno);
    return false;
  }
  const bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
  if (std::fclose(file) != 0 || !written) {
    *error = path + ": cannot write: " + std::strerror(errno);
    return false;
  }
  return true;
}

bool OutputFiles::Commit(std::string *error) {
  for (Pending &p : pending_) {
    if (std::rename(p.temp.c_str(), p.path.c_str()) != 0) {
      *error = p.path + ": cannot write: " + std::strerror(errno);
      return false;
    }
    p.placed = true;
  }
  committed_ = true;
  return true;
}

bool WriteTrcPng(const std::string &path, const std::vector<unsigned int> &pixels,
                 unsigned int width, unsigned int height, std::string *error) {
  OutputFiles file;
  return file.AddTrcPng(path, pixels, width, height, error) && file.Commit(error);
}

bool WriteGreyPng(const std::string &path, const std::vector<unsigned char> &pixels,
                  unsigned int width, unsigned int height, std::string *error) {
  OutputFiles file;
  return file.AddGreyPng(path, pixels, width, height, error) && file.Commit(error);
}

}  // namespace ostrel_examples
