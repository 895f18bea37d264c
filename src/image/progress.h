#pragma once

// How a long operation reports to the host between bands of rows, and how it puts the pixels
// back when the host cancels part-way.

#include <cstddef>
#include <vector>

#include <vistrane/image/image.h>

#include "image/pixel_view.h"

namespace vistrane::image {

// Rows are reported in bands of this many, so the callback costs nothing per pixel.
constexpr int kProgressBandRows = 64;

class Progress {
  public:
    Progress(const C_Image& image, long total)
        : m_Callback(image.GetProgressCallback()),
          m_Context(image.GetProgressContext()),
          m_Total(total) {}
    bool Active() const { return m_Callback != nullptr; }
    // False when the host cancelled.
    bool Report(long done) const {
        return m_Callback == nullptr || m_Callback(m_Context, done, m_Total) != 0;
    }

  private:
    IMAGE_PROGRESS m_Callback;
    void* m_Context;
    long m_Total;
};

// Whether an operation goes on before row y: the host hears of every band of rows.
inline bool GoOn(const Progress* progress, long y) {
    return progress == nullptr || y % kProgressBandRows != 0 || progress->Report(y);
}

// A copy of the rows of a view, taken before an operation that works in place, so that a cancel
// can undo it. Take is false when the copy cannot be had.
class RowsSnapshot {
  public:
    bool Take(const PixelView& view);
    void Restore() const;

  private:
    PixelView m_View;
    std::vector<BYTE> m_Bytes;
};

}  // namespace vistrane::image
