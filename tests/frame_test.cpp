// The module object, the instruction-set limit, the suite's exception class
// and text manager, and the window-procedure exception handler.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "MfcUtilities.h"
#include "Ostrel.h"
#include "VornelException.h"
#include "VornelTextMgr.h"
#include "frame/dispatch.h"
#include "frame/module.h"

namespace {

using ostrel::frame::simd::Isa;
namespace frame = ostrel::frame;
namespace simd = ostrel::frame::simd;

// The fast-form flag and IsMMX are the MMX query, and the processor-feature
// queries (IsProcessorFeaturePresent on Windows, cpuid elsewhere) agree with
// the compiler's own reading of the processor.
TEST(Module, FeatureQueriesAndTheFastFormFlagMatchTheProcessor) {
  EXPECT_EQ(frame::g_fastFormFlag, frame::QueryMmx());
  EXPECT_EQ(IsMMX(), frame::QueryMmx());
#if defined(__i386__) || defined(__x86_64__)
  EXPECT_EQ(frame::QueryMmx(), __builtin_cpu_supports("mmx") ? 1 : 0);
  EXPECT_EQ(frame::QuerySse2(), __builtin_cpu_supports("sse2") ? 1 : 0);
  EXPECT_EQ(frame::QuerySse3(), __builtin_cpu_supports("sse3") ? 1 : 0);
#else
  EXPECT_EQ(frame::QueryMmx() + frame::QuerySse2() + frame::QuerySse3(), 0);
#endif
}

// The header's version is the project's (whose major number is also the
// shared library's SONAME version).
TEST(Module, VersionMacrosAreTheProjectVersion) {
  EXPECT_EQ(OSTREL_VERSION_MAJOR, OSTREL_PROJECT_VERSION_MAJOR);
  EXPECT_EQ(OSTREL_VERSION_MINOR, OSTREL_PROJECT_VERSION_MINOR);
  EXPECT_EQ(OSTREL_VERSION_PATCH, OSTREL_PROJECT_VERSION_PATCH);
}

TEST(Dispatch, LimitsAreClampedToWhatTheProcessorRunsAndRestored) {
  const Isa best = simd::SupportedIsa(), before = simd::ActiveIsa();
#if OSTREL_KERNELS_SSE2 && (defined(__x86_64__) || defined(_M_X64))
  EXPECT_GE(static_cast<int>(best), static_cast<int>(Isa::kSse2));  // the x86-64 baseline
#elif OSTREL_KERNELS_NEON
  EXPECT_EQ(best, Isa::kNeon);  // every aarch64 processor has it
#elif !OSTREL_KERNELS_SSE2 && !OSTREL_KERNELS_AVX2
  EXPECT_EQ(best, Isa::kScalar);  // no vector tables were built
#endif
  const auto runnable = simd::RunnableIsas();
  ASSERT_FALSE(runnable.empty());
  EXPECT_STREQ(runnable.front().name, "scalar");
  EXPECT_EQ(runnable.back().isa, best);
  for (const simd::IsaInfo &info : simd::kIsas) {
    if (!info.built) { EXPECT_FALSE(simd::Runs(info.isa)) << info.name; }
  }
  {
    // A limit the processor runs is taken as it is; one above them all gives
    // the best; nested limits restore what was active before them.
    const simd::ScopedIsaLimit outer(Isa::kScalar);
    for (const simd::IsaInfo &info : runnable) {
      const simd::ScopedIsaLimit inner(info.isa);
      EXPECT_EQ(simd::ActiveIsa(), info.isa) << info.name;
    }
    {
      const simd::ScopedIsaLimit inner(simd::kIsas[simd::kIsaCount - 1].isa);
      EXPECT_EQ(simd::ActiveIsa(), best);
    }
    EXPECT_EQ(simd::ActiveIsa(), Isa::kScalar);
  }
  EXPECT_EQ(simd::ActiveIsa(), before);
}

// A set's table may leave entries out: each level takes them from the
// completed level below it, and a level without a table repeats the one
// below.
struct ProbeKernels {
  int (*first)();
  int (*pair[2])();
};
int One() { return 1; }
int Two() { return 2; }
int Three() { return 3; }

TEST(Dispatch, MissingEntriesComeFromTheLevelBelow) {
  static const ProbeKernels scalar{One, {One, One}};
  static const ProbeKernels lower{nullptr, {Two, nullptr}};
  static const ProbeKernels upper{Three, {nullptr, nullptr}};
  static_assert(simd::kIsaCount >= 3, "scalar and two vector sets");
  const ProbeKernels *byIsa[simd::kIsaCount] = {&scalar, &lower, nullptr};
  byIsa[simd::kIsaCount - 1] = &upper;
  const simd::CompletedTables<ProbeKernels> completed(byIsa);
  const auto values = [](const ProbeKernels &t) {
    return std::vector<int>{t.first(), t.pair[0](), t.pair[1]()};
  };
  EXPECT_EQ(values(completed.level[0]), (std::vector<int>{1, 1, 1}));
  EXPECT_EQ(values(completed.level[1]), (std::vector<int>{1, 2, 1}));
  EXPECT_EQ(values(completed.level[simd::kIsaCount - 1]), (std::vector<int>{3, 2, 1}));
  for (int i = 2; i < simd::kIsaCount - 1; ++i) {
    EXPECT_EQ(values(completed.level[i]), values(completed.level[1])) << i;
  }
}

// (Code, line and bare names of backslashed paths are also checked through
// the reports of the handler below.)
TEST(VornelException, KeepsBareFileNameAndStatus) {
  const char *const paths[][2] = {
      {"x/y/MfcUtilities", "MfcUtilities"}, {"Ostrel", "Ostrel"}, {"a/b\\c", "c"}, {"a\\b/c", "c"}};
  for (const auto &p : paths)
    EXPECT_STREQ(CVornelException(1, p[0], 2).GetSourceFile(), p[1]) << p[0];

  const CVornelException plain(3, "src/frame/Ostrel", 9870);
  EXPECT_EQ(plain.GetStatus(), 0);
  EXPECT_STREQ(plain.what(), "Vornel exception 3 (Ostrel, line 9870)");
  std::string text = CVornelException(1, "Ostrel", 5, kVornelOutOfMemory).what();
  for (char &ch : text) ch = static_cast<char>(std::tolower(static_cast<unsigned char>(ch)));
  EXPECT_NE(text.find("8007000e"), std::string::npos) << text;  // the status in hex, either case
}

TEST(VornelException, MakeExceptionThrowsForNegativeStatusOnly) {
  for (long status : {0L, 1L, 0x7FFFFFFFL}) EXPECT_NO_THROW(MakeException(status, nullptr));
  for (long status : {-1L, kVornelFail, kVornelNoInterface, kVornelOutOfMemory}) {
    try {
      MakeException(status, nullptr);
      ADD_FAILURE() << std::hex << "no exception for status 0x" << status;
    } catch (const CVornelException &e) {
      EXPECT_EQ(e.GetCode(), 1);
      EXPECT_EQ(e.GetStatus(), status);
    }
  }
}

// Counts references and keeps what it is asked to report.
class RecordingTextManager final : public ITextManager {
 public:
  VornelStatus VORNEL_STDCALL QueryInterface(const IID &, void **) override {
    return kVornelNoInterface;
  }
  unsigned long VORNEL_STDCALL AddRef() override { return ++refs; }
  unsigned long VORNEL_STDCALL Release() override { return --refs; }
  VornelStatus VORNEL_STDCALL ReportException(const CVornelException &e) override {
    reports.push_back(e);
    return kVornelOk;
  }
  unsigned long refs = 0;
  std::vector<CVornelException> reports;
};

// Installs a recording manager for one test and puts the previous one back.
class TextManagerTest : public ::testing::Test {
 protected:
  void SetUp() override {
    previous_ = DllSetTextMgr(&manager_);
    ASSERT_EQ(manager_.refs, 1u);
  }
  void TearDown() override {
    if (ITextManager *ours = DllSetTextMgr(previous_)) ours->Release();
    if (previous_ != nullptr) previous_->Release();  // handed over by the first DllSetTextMgr
    EXPECT_EQ(manager_.refs, 0u);
  }
  RecordingTextManager manager_;
  ITextManager *previous_ = nullptr;
};

// With a text manager the handler reports through it (and releases it), else
// the framework's default writes the exception's text; the return value per
// message differs only for a command.
TEST_F(TextManagerTest, HandlerReportsThroughTheManagerElseFallsBack) {
  const struct {
    unsigned int message;
    FrameworkResult withManager, framework;
  } messages[] = {{kWmCommand, 1, 0}, {kWmCreate, -1, -1}, {kWmPaint, 0, 0}};
  const struct {
    std::exception_ptr e;
    int code;
    const char *file;
    int line;
  } thrown[] = {
      {std::make_exception_ptr(CVornelException(7, "a\\b\\Fills", 42)), 7, "Fills", 42},
      {std::make_exception_ptr(std::bad_alloc()), 3, "MfcUtilities", 1358},
      {std::make_exception_ptr(std::runtime_error("x")), 1, "MfcUtilities", 1353},
      {std::make_exception_ptr(5), 1, "MfcUtilities", 1353},
  };
  CVornelWinAppForRegularDLL app;
  for (const auto &m : messages) {
    const CFrameworkMessage msg{m.message, 0, 0};
    for (const auto &t : thrown) {
      manager_.reports.clear();
      EXPECT_EQ(app.ProcessWndProcException(t.e, &msg), m.withManager) << "message " << m.message;
      ASSERT_EQ(manager_.reports.size(), 1u);
      EXPECT_EQ(manager_.reports[0].GetCode(), t.code);
      EXPECT_STREQ(manager_.reports[0].GetSourceFile(), t.file);
      EXPECT_EQ(manager_.reports[0].GetLine(), t.line);
    }
  }
  EXPECT_EQ(manager_.refs, 1u);

  manager_.reports.clear();
  ASSERT_EQ(DllSetTextMgr(nullptr), &manager_);
  for (const auto &m : messages) {
    const CFrameworkMessage msg{m.message, 0, 0};
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(
        app.ProcessWndProcException(std::make_exception_ptr(std::runtime_error("boom")), &msg),
        m.framework)
        << "message " << m.message;
    const std::string err = ::testing::internal::GetCapturedStderr();
    EXPECT_NE(err.find("boom"), std::string::npos) << err;
  }
  EXPECT_TRUE(manager_.reports.empty());
  DllSetTextMgr(&manager_);  // installed again (a reference added) for TearDown
  manager_.Release();
}

}  // namespace
