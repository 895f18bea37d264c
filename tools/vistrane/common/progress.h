#pragma once

// A progress bar on stderr for work long enough to wonder about: drawn only when stderr is a
// terminal and only once the work has run for half a second, so quick runs, pipes and logs
// stay clean. Report is an IMAGE_PROGRESS callback, with the reporter as its context.

#include <chrono>
#include <string>

namespace vistrane::cli {

class ProgressReporter {
  public:
    explicit ProgressReporter(std::string label);
    ~ProgressReporter();
    ProgressReporter(const ProgressReporter&) = delete;
    ProgressReporter& operator=(const ProgressReporter&) = delete;

    // Ends the bar's line, so that what follows starts on a line of its own.
    void Finish();

    // `context` is the ProgressReporter; returns 1 so that the work goes on.
    static int Report(void* context, long done, long total);

  private:
    void Show(long done, long total);

    std::string m_Label;
    std::chrono::steady_clock::time_point m_Start;
    bool m_Terminal;
    bool m_Drawn = false;
    int m_LastPercent = -1;
};

}  // namespace vistrane::cli
