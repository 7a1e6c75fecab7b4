// Paired benchmarks and the ratio table.
#include "ratio.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <iostream>
#include <map>
#include <sstream>
#include <utility>
#include <vector>

#include "frame/dispatch.h"

namespace ostrel_bench {
namespace {

struct Entry {
  Pair pair;
  std::string oursBenchmark;
  std::string peerBenchmark;
  bool checked = false;
  std::string mismatch;  // empty when the outputs agree (or are not compared)
};

// Stable addresses: the registered benchmarks keep pointers to their entry.
std::deque<Entry> &Entries() {
  static std::deque<Entry> entries;
  return entries;
}

// Runs both sides on the same starting contents and compares their output.
void Check(Entry &e) {
  e.checked = true;
  const Pair &p = e.pair;
  if (p.verify) {
    if (p.reset) p.reset();
    p.ours();
    std::string wrong = p.verify(true);
    if (wrong.empty()) {
      if (p.reset) p.reset();
      p.peer();
      wrong = p.verify(false);
      if (!wrong.empty()) wrong = p.peerName + ": " + wrong;
    } else {
      wrong = "ours: " + wrong;
    }
    e.mismatch = wrong;
    return;
  }
  if (p.output.data == nullptr) return;
  if (p.reset) p.reset();
  p.ours();
  const auto *out = static_cast<const unsigned char *>(p.output.data);
  const std::vector<unsigned char> ours(out, out + p.output.size);
  if (p.reset) p.reset();
  p.peer();
  const auto diff = std::mismatch(ours.begin(), ours.end(), out);
  if (diff.first != ours.end()) {
    std::ostringstream message;
    message << "output differs from " << p.peerName << " at byte " << (diff.first - ours.begin())
            << " of " << p.output.size;
    e.mismatch = message.str();
  }
}

void RunSide(benchmark::State &state, Entry &e, bool ours) {
  if (!e.checked) Check(e);
  if (!e.mismatch.empty()) {
    state.SkipWithError(e.mismatch.c_str());
    return;
  }
  const std::function<void()> &job = ours ? e.pair.ours : e.pair.peer;
  for (auto _ : state) {
    job();
    benchmark::ClobberMemory();
  }
  if (e.pair.bytes > 0) state.SetBytesProcessed(state.iterations() * e.pair.bytes);
  if (e.pair.pixels > 0) state.SetItemsProcessed(state.iterations() * e.pair.pixels);
}

// What the ratio table needs of one benchmark's result.
struct Result {
  double rate = 0;  // bytes or items per second
  bool fromMedian = false;
  std::string error;
};

// Forwards everything to the display reporter (console, JSON or CSV, as the
// flags chose) and keeps each benchmark's throughput.
class CollectingReporter : public benchmark::BenchmarkReporter {
 public:
  explicit CollectingReporter(benchmark::BenchmarkReporter *display) : display_(display) {}

  bool ReportContext(const Context &context) override { return display_->ReportContext(context); }

  void ReportRuns(const std::vector<Run> &runs) override {
    for (const Run &run : runs) Record(run);
    display_->ReportRuns(runs);
  }

  void Finalize() override { display_->Finalize(); }

  const Result *Find(const std::string &name) const {
    const auto it = results_.find(name);
    return it == results_.end() ? nullptr : &it->second;
  }

 private:
  void Record(const Run &run) {
    Result &r = results_[run.run_name.function_name];
    if (run.error_occurred) {
      r.error = run.error_message;
      return;
    }
    // With --benchmark_repetitions the median stands for the benchmark;
    // otherwise its one iteration run does.
    const bool median = run.run_type == Run::RT_Aggregate && run.aggregate_name == "median";
    if (run.run_type == Run::RT_Aggregate && !median) return;
    if (r.fromMedian && !median) return;
    auto rate = run.counters.find("bytes_per_second");
    if (rate == run.counters.end()) rate = run.counters.find("items_per_second");
    if (rate == run.counters.end()) return;
    r.rate = rate->second.value;
    r.fromMedian = median;
  }

  benchmark::BenchmarkReporter *display_;
  std::map<std::string, Result> results_;
};

std::string Throughput(const Pair &p, const Result *r) {
  if (r == nullptr) return "not run";
  if (!r->error.empty()) return "failed";
  char text[32];
  std::snprintf(text, sizeof text, "%.0f %s", r->rate / 1e6, p.bytes > 0 ? "MB/s" : "Mpix/s");
  return text;
}

void PrintRatioTable(const CollectingReporter &collected, std::ostream &out) {
  std::size_t labelWidth = 3, peerWidth = 4;
  for (const Entry &e : Entries()) {
    if (collected.Find(e.oursBenchmark) == nullptr && collected.Find(e.peerBenchmark) == nullptr)
      continue;
    labelWidth = std::max(labelWidth, e.pair.label.size());
    peerWidth = std::max(peerWidth, e.pair.peerName.size());
  }
  std::ostringstream table;
  char line[512];
  std::snprintf(line, sizeof line, "%-*s  %13s  %-*s  %13s  %6s  %s\n",
                static_cast<int>(labelWidth), "job", "ours", static_cast<int>(peerWidth), "peer",
                "peer speed", "ratio", "target");
  table << line << std::string(labelWidth + peerWidth + 60, '-') << '\n';
  int lines = 0;
  for (const Entry &e : Entries()) {
    const Result *ours = collected.Find(e.oursBenchmark);
    const Result *peer = collected.Find(e.peerBenchmark);
    if (ours == nullptr && peer == nullptr) continue;  // filtered out
    ++lines;
    std::string ratio = "-", verdict;
    const bool measured = ours != nullptr && peer != nullptr && ours->error.empty() &&
                          peer->error.empty() && peer->rate > 0;
    if (measured) {
      const double value = ours->rate / peer->rate;
      char text[32];
      std::snprintf(text, sizeof text, "%.2f", value);
      ratio = text;
      if (e.pair.target > 0) {
        std::snprintf(text, sizeof text, ">= %.2f  ", e.pair.target);
        verdict = std::string(text) + (value >= e.pair.target ? "met" : "MISSED");
      } else {
        verdict = "(information)";
      }
    } else if (!e.mismatch.empty()) {
      verdict = "MISMATCH: " + e.mismatch;
    } else {
      verdict = "(both sides must run)";
    }
    if (measured && e.pair.verify) {
      verdict += "  [each side checked on its own]";
    } else if (measured && e.pair.output.data == nullptr) {
      verdict += "  [outputs not compared]";
    }
    std::snprintf(
        line, sizeof line, "%-*s  %13s  %-*s  %13s  %6s  %s\n", static_cast<int>(labelWidth),
        e.pair.label.c_str(), Throughput(e.pair, ours).c_str(), static_cast<int>(peerWidth),
        e.pair.peerName.c_str(), Throughput(e.pair, peer).c_str(), ratio.c_str(), verdict.c_str());
    table << line;
  }
  if (lines == 0) return;
  out << "\nRatio table: throughput of ours / throughput of the peer on the same job ("
      << ostrel::frame::simd::IsaName(ostrel::frame::simd::SupportedIsa()) << " kernels)\n"
      << table.str() << std::flush;
}

}  // namespace

void AddPair(Pair pair) {
  Entries().push_back(Entry{std::move(pair), {}, {}, false, {}});
  Entry &e = Entries().back();
  e.oursBenchmark = e.pair.label + "/ours";
  e.peerBenchmark = e.pair.label + "/" + e.pair.peerName;
  Entry *entry = &e;
  benchmark::RegisterBenchmark(e.oursBenchmark.c_str(), [entry](benchmark::State &state) {
    RunSide(state, *entry, true);
  })->UseRealTime();
  benchmark::RegisterBenchmark(e.peerBenchmark.c_str(), [entry](benchmark::State &state) {
    RunSide(state, *entry, false);
  })->UseRealTime();
}

int Main(int argc, char **argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::BenchmarkReporter *display = benchmark::CreateDefaultDisplayReporter();
  CollectingReporter collector(display);
  benchmark::RunSpecifiedBenchmarks(&collector);
  // After the console table on stdout; to stderr when stdout carries JSON or
  // CSV, so that stays parseable.
  const bool console = dynamic_cast<benchmark::ConsoleReporter *>(display) != nullptr;
  PrintRatioTable(collector, console ? std::cout : std::cerr);
  benchmark::Shutdown();
  for (const Entry &e : Entries()) {
    if (!e.mismatch.empty()) return 1;
  }
  return 0;
}

AlignedBuffer::AlignedBuffer(std::size_t bytes) : size_(bytes) {
  const std::size_t rounded = (bytes + 63) / 64 * 64;
  block_.reset(std::aligned_alloc(64, rounded == 0 ? 64 : rounded));
  if (block_ == nullptr) {
    std::fprintf(stderr, "out of memory (%zu bytes)\n", bytes);
    std::abort();
  }
}

void AlignedBuffer::Free::operator()(void *p) const { std::free(p); }

}  // namespace ostrel_bench
