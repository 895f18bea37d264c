#include "common/values.h"

#include <charconv>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>

namespace vistrane::cli {
namespace {

constexpr long kCoordinateLimit = 1000000;

// Splits on commas into exactly `count` numbers within the coordinate limit.
bool ParseCoordinates(const std::string& text, long* values, int count) {
    const char* at = text.data();
    const char* const end = at + text.size();
    for (int i = 0; i < count; ++i) {
        const auto parsed = std::from_chars(at, end, values[i]);
        if (parsed.ec != std::errc() || values[i] < -kCoordinateLimit ||
            values[i] > kCoordinateLimit) {
            return false;
        }
        at = parsed.ptr;
        if (i + 1 < count) {
            if (at == end || *at != ',') {
                return false;
            }
            ++at;
        }
    }
    return at == end;
}

}  // namespace

bool ParseNumber(const std::string& text, long lo, long hi, long& value) {
    const char* const end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, value);
    return parsed.ec == std::errc() && parsed.ptr == end && value >= lo && value <= hi;
}

bool ParsePoint(const std::string& text, CPoint& point) {
    long values[2];
    if (!ParseCoordinates(text, values, 2)) {
        return false;
    }
    point = CPoint(values[0], values[1]);
    return true;
}

bool ParseRect(const std::string& text, CRect& rect) {
    long values[4];
    if (!ParseCoordinates(text, values, 4)) {
        return false;
    }
    rect = CRect(values[0], values[1], values[2], values[3]);
    return true;
}

bool ParseColor(std::string_view text, unsigned long& colorRef) {
    const std::size_t start = !text.empty() && text[0] == '#' ? 1 : 0;
    if (text.size() != start + 6) {
        return false;
    }
    unsigned long rgb = 0;
    const char* const end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data() + start, end, rgb, 16);
    if (parsed.ec != std::errc() || parsed.ptr != end) {
        return false;
    }
    // RRGGBB reads as 0xRRGGBB; a COLORREF keeps red in its low byte.
    colorRef =
        RGB(static_cast<BYTE>(rgb >> 16), static_cast<BYTE>(rgb >> 8), static_cast<BYTE>(rgb));
    return true;
}

bool ParseMatchMode(const std::string& text, COLOR_MATCH_MODE& mode) {
    if (text == "rgb") {
        mode = COLOR_MATCH_RGB;
    } else if (text == "hue") {
        mode = COLOR_MATCH_HUE;
    } else if (text == "intensity") {
        mode = COLOR_MATCH_INTENSITY;
    } else if (text == "any") {
        mode = COLOR_MATCH_ANY;
    } else {
        return false;
    }
    return true;
}

std::string ColorError(const std::string& text) {
    return Quote(text) + " is not a colour: give six hex digits RRGGBB or #RRGGBB";
}

std::string Quote(const std::string& text) {
    std::string quoted = "'";
    quoted += text;
    quoted += '\'';
    return quoted;
}

std::string LoadMaskFile(const std::string& path, C_Image& mask) {
    const ImageFileResult loaded = LoadImageFile(path, mask);
    if (!loaded.ok) {
        return loaded.error;
    }
    if (!mask.IsMask()) {
        return Quote(path) + " is not a selection mask (an 8-bit grey image)";
    }
    return {};
}

std::string LoadMaskFor(const std::string& path, const C_Image& picture, C_Image& mask) {
    if (std::string problem = LoadMaskFile(path, mask); !problem.empty()) {
        return problem;
    }
    if (mask.Width() != picture.Width() || mask.Height() != picture.Height()) {
        return "the mask is " + std::to_string(mask.Width()) + " x " +
               std::to_string(mask.Height()) + ", the image " + std::to_string(picture.Width()) +
               " x " + std::to_string(picture.Height()) + ": a mask must have the image's size";
    }
    return {};
}

}  // namespace vistrane::cli
