#include "common/progress.h"

#include <unistd.h>

#include <cstdio>

namespace vistrane::cli {
namespace {

constexpr auto kQuietStart = std::chrono::milliseconds(500);
constexpr int kBarWidth = 40;

}  // namespace

ProgressReporter::ProgressReporter(std::string label)
    : m_Label(std::move(label)),
      m_Start(std::chrono::steady_clock::now()),
      m_Terminal(isatty(STDERR_FILENO) != 0) {}

ProgressReporter::~ProgressReporter() {
    Finish();
}

void ProgressReporter::Finish() {
    if (m_Drawn) {
        std::fputc('\n', stderr);
        m_Drawn = false;
    }
}

int ProgressReporter::Report(void* context, long done, long total) {
    static_cast<ProgressReporter*>(context)->Show(done, total);
    return 1;
}

void ProgressReporter::Show(long done, long total) {
    if (!m_Terminal || total <= 0 || std::chrono::steady_clock::now() - m_Start < kQuietStart) {
        return;
    }
    const long clamped = done < 0 ? 0 : done > total ? total : done;
    const int percent = static_cast<int>(100LL * clamped / total);
    if (percent == m_LastPercent) {
        return;
    }
    m_LastPercent = percent;
    const int filled = percent * kBarWidth / 100;
    std::fprintf(stderr, "\r%s [%.*s%*s] %3d%%", m_Label.c_str(), filled,
                 "########################################", kBarWidth - filled, "", percent);
    std::fflush(stderr);
    m_Drawn = true;
}

}  // namespace vistrane::cli
