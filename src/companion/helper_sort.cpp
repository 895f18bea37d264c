// Colour-table sorting of the companion object.

#include <vistrane/companion/helper.h>
#include <vistrane/companion/palette_sort.h>

#include <algorithm>
#include <array>

int C_Helper::SortRGBQs(RGBQUAD* colors, int count, const S_SortPalData* criteria,
                        const unsigned long* usage, BYTE* reindex, S_CalcSortError* error) const {
    auto fail = [error](int code) {
        if (error != nullptr) {
            error->code = code;
        }
        return 0;
    };
    if (colors == nullptr || criteria == nullptr || reindex == nullptr) {
        return fail(SORTPAL_ERROR_NULL_ARGUMENT);
    }
    if (count < 1 || count > 256) {
        return fail(SORTPAL_ERROR_BAD_COUNT);
    }
    if (criteria->key < SORTPAL_LUMINANCE || criteria->key > SORTPAL_USAGE) {
        return fail(SORTPAL_ERROR_BAD_KEY);
    }
    if (criteria->key == SORTPAL_USAGE && usage == nullptr) {
        return fail(SORTPAL_ERROR_NO_USAGE);
    }

    std::array<unsigned long, 256> keys{};
    for (int i = 0; i < count; ++i) {
        const RGBQUAD& c = colors[i];
        int hue;
        BYTE saturation;
        BYTE value;
        switch (criteria->key) {
            case SORTPAL_LUMINANCE:
                keys[i] = YFromRGB(c.rgbRed, c.rgbGreen, c.rgbBlue);
                break;
            case SORTPAL_HUE:
                HSVFromRGB(c.rgbRed, c.rgbGreen, c.rgbBlue, &hue, &saturation, &value);
                keys[i] = static_cast<unsigned long>(hue);
                break;
            case SORTPAL_SATURATION:
                HSVFromRGB(c.rgbRed, c.rgbGreen, c.rgbBlue, &hue, &saturation, &value);
                keys[i] = saturation;
                break;
            default:
                keys[i] = usage[i];
                break;
        }
    }

    std::array<int, 256> order{};
    for (int i = 0; i < count; ++i) {
        order[i] = i;
    }
    const bool descending = criteria->descending != 0;
    std::stable_sort(order.begin(), order.begin() + count, [&](int a, int b) {
        return descending ? keys[a] > keys[b] : keys[a] < keys[b];
    });

    std::array<RGBQUAD, 256> sorted{};
    for (int newIndex = 0; newIndex < count; ++newIndex) {
        sorted[newIndex] = colors[order[newIndex]];
        reindex[order[newIndex]] = static_cast<BYTE>(newIndex);
    }
    for (int i = count; i < 256; ++i) {
        reindex[i] = static_cast<BYTE>(i);
    }
    std::copy(sorted.begin(), sorted.begin() + count, colors);
    if (error != nullptr) {
        error->code = SORTPAL_ERROR_NONE;
    }
    return 1;
}
