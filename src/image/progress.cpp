#include "image/progress.h"

#include <algorithm>
#include <new>

namespace vistrane::image {

bool RowsSnapshot::Take(const PixelView& view) {
    m_View = view;
    const std::size_t rowBytes = static_cast<std::size_t>(view.RowBytes());
    try {
        m_Bytes.resize(rowBytes * static_cast<std::size_t>(view.height));
    } catch (const std::bad_alloc&) {
        return false;
    }
    for (int y = 0; y < view.height; ++y) {
        std::copy_n(view.Row(y), rowBytes, m_Bytes.data() + rowBytes * y);
    }
    return true;
}

void RowsSnapshot::Restore() const {
    const std::size_t rowBytes = static_cast<std::size_t>(m_View.RowBytes());
    for (int y = 0; y < m_View.height; ++y) {
        std::copy_n(m_Bytes.data() + rowBytes * y, rowBytes, m_View.Row(y));
    }
}

}  // namespace vistrane::image
