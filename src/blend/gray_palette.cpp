#include <vistrane/blend/gray_palette.h>

namespace {

struct GrayTable {
    RGBQUAD entries[256];
};

constexpr GrayTable MakeGrayTable() {
    GrayTable table{};
    for (int i = 0; i < 256; ++i) {
        const BYTE level = static_cast<BYTE>(i);
        table.entries[i] = RGBQUAD{level, level, level, 0};
    }
    return table;
}

// Built at compile time, so the table is constant data before any host code runs.
constexpr GrayTable kGrayTable = MakeGrayTable();

}  // namespace

const RGBQUAD (&glb_GrayPalette)[256] = kGrayTable.entries;
