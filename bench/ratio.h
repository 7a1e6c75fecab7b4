// Paired benchmarks: one job done by the library ("ours") and by a peer
// (std::memset, std::memcpy, a plain loop, another library ...), timed in the
// same run, and summed up as ours/peer in a ratio table printed after Google
// Benchmark's own table.
//
// A benchmark source registers its pairs at static initialisation:
//
//   const bool kRegistered = [] {
//     ostrel_bench::Pair p;
//     p.label = "FillTRCBuffer/256x256/whole";
//     p.peerName = "memset";
//     p.ours = [=] { FillTRCBuffer(...); };
//     p.peer = [=] { for each row: std::memset(...); };
//     p.bytes = regionBytes;                 // throughput in MB/s
//     p.target = 0.90;                       // printed, never asserted
//     p.reset = [=] { ... };                 // starting contents
//     p.output = {dst, dstBytes};            // must come out the same
//     ostrel_bench::AddPair(std::move(p));
//     return true;
//   }();
//
// and the program's main() is ostrel_bench::Main (bench_main.cpp).
#ifndef OSTREL_BENCH_RATIO_H
#define OSTREL_BENCH_RATIO_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace ostrel_bench {

// The bytes that ours and the peer must both leave behind.
struct Bytes {
  const void *data = nullptr;
  std::size_t size = 0;
};

struct Pair {
  // Names the job; the two benchmarks are "<label>/ours" and
  // "<label>/<peerName>".
  std::string label;
  std::string peerName = "peer";

  // Each call does the whole job once.
  std::function<void()> ours;
  std::function<void()> peer;

  // Work per job, for the throughputs: bytes (reported in MB/s) or, when
  // bytes is 0, pixels (reported in Mpix/s). At least one must be set.
  std::int64_t bytes = 0;
  std::int64_t pixels = 0;

  // ours/peer should reach this; 0 = no target (shown for information).
  double target = 0;

  // The check, run once before the first timed loop of either side: reset,
  // run ours, keep `output`; reset, run the peer, compare `output`. A
  // mismatch fails both benchmarks and the program. Leave `output` empty (and
  // `verify` unset) only when the peer does a different job and cannot be
  // checked; the ratio table then says "not compared".
  std::function<void()> reset;
  Bytes output;

  // Instead of comparing `output`, for pairs whose two sides may rightly
  // leave different bytes (another library's rounding, a trivial kernel):
  // the check calls verify(true) right after ours ran and verify(false)
  // right after the peer ran, each on the starting contents, and verify
  // returns "" when that side's result is right, else what is wrong (which
  // fails the pair like a mismatch).
  std::function<std::string(bool ours)> verify;
};

void AddPair(Pair pair);

// Starting contents of benchmark buffers as a pure function of an index: its
// bits mixed by the splitmix64 finaliser, so that a buffer can be rebuilt or
// checked element by element without being stored twice.
inline std::uint32_t Mix(std::uint64_t x) {
  x += 0x9E3779B97F4A7C15ull;
  x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9ull;
  x = (x ^ (x >> 27)) * 0x94D049BB133111EBull;
  return static_cast<std::uint32_t>((x ^ (x >> 31)) >> 16);
}

// Runs the selected benchmarks (all Google Benchmark flags apply), then
// prints the ratio table. Returns nonzero on a bad flag or an output
// mismatch; a missed target does not change the exit code.
int Main(int argc, char **argv);

// An uninitialised, 64-byte aligned block of memory for pixel buffers. A
// large block's pages are only mapped in when first written, so registering
// many large pairs costs little memory until they run.
class AlignedBuffer {
 public:
  explicit AlignedBuffer(std::size_t bytes);
  void *data() const { return block_.get(); }
  std::size_t size() const { return size_; }

 private:
  struct Free {
    void operator()(void *p) const;
  };
  std::unique_ptr<void, Free> block_;
  std::size_t size_;
};

}  // namespace ostrel_bench

#endif  // OSTREL_BENCH_RATIO_H
