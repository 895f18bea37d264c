// The command-line tool's value parsers. Whatever one accepts, written back in its own form,
// must parse to the same value.

#include <cstdio>
#include <string>
#include <vector>

#include "common/args.h"
#include "common/values.h"
#include "fuzz/fuzz_target.h"

namespace vistrane::fuzz {
namespace {

void Require(bool holds) {
    if (!holds) {
        __builtin_trap();
    }
}

}  // namespace

int FuzzCliValues(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    long number = 0;
    if (cli::ParseNumber(text, -1000, 1000, number)) {
        Require(number >= -1000 && number <= 1000);
        long again = 0;
        Require(cli::ParseNumber(std::to_string(number), -1000, 1000, again) && again == number);
    }
    CPoint point;
    if (cli::ParsePoint(text, point)) {
        CPoint again;
        Require(cli::ParsePoint(std::to_string(point.x) + "," + std::to_string(point.y), again) &&
                again == point);
    }
    CRect rect;
    if (cli::ParseRect(text, rect)) {
        CRect again;
        Require(cli::ParseRect(std::to_string(rect.left) + "," + std::to_string(rect.top) + "," +
                                   std::to_string(rect.right) + "," + std::to_string(rect.bottom),
                               again) &&
                again == rect);
    }
    unsigned long colour = 0;
    if (cli::ParseColor(text, colour)) {
        char hex[8];
        std::snprintf(hex, sizeof hex, "%02lx%02lx%02lx", colour & 0xFF, colour >> 8 & 0xFF,
                      colour >> 16 & 0xFF);
        unsigned long again = 0;
        Require(colour <= 0xFFFFFF && cli::ParseColor(hex, again) && again == colour);
    }
    COLOR_MATCH_MODE mode;
    cli::ParseMatchMode(text, mode);
    std::vector<long> values;
    if (cli::ParseIntegerList(text, 5000, values)) {
        std::string joined;
        for (const long v : values) {
            Require(v >= -5000 && v <= 5000);
            joined += (joined.empty() ? "" : ",") + std::to_string(v);
        }
        std::vector<long> again;
        Require(cli::ParseIntegerList(joined, 5000, again) && again == values);
    }
    return 0;
}

}  // namespace vistrane::fuzz
