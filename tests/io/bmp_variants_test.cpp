// The BMP layouts other programs write: each variant is encoded here from known colours and
// must decode to them; the damaged ones must be refused with their reason.

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>

namespace vistrane {
namespace {

constexpr int kWidth = 5;
constexpr int kHeight = 3;

void Put(std::vector<BYTE>& b, std::uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) {
        b.push_back(static_cast<BYTE>(value >> (8 * i)));
    }
}

struct Variant {
    const char* name;
    std::uint32_t headerSize;  // 12, 16, 40, 64, 108 or 124
    int bits;
    std::uint32_t compression;
    std::vector<std::uint32_t> masks;  // after a 40-byte header, or inside a longer one
    bool topDown = false;
};

// The colour of pixel (x, y) as the tests choose it, and the palette of the indexed variants.
RGBQUAD Truth(int x, int y) {
    return RGBQUAD{static_cast<BYTE>(40 * x + 3), static_cast<BYTE>(90 * y + 7),
                   static_cast<BYTE>(255 - 30 * x - 50 * y), 0};
}
unsigned IndexOf(int x, int y, int bits) {
    return static_cast<unsigned>(x + 2 * y) % (1u << bits);
}
RGBQUAD Entry(unsigned i) {
    return RGBQUAD{static_cast<BYTE>(17 * i), static_cast<BYTE>(255 - 16 * i),
                   static_cast<BYTE>(9 * i + 1), 0};
}

std::uint32_t PackFields(const RGBQUAD& c, const std::vector<std::uint32_t>& masks, BYTE a) {
    std::uint32_t pixel = 0;
    const BYTE channel[4] = {c.rgbRed, c.rgbGreen, c.rgbBlue, a};
    for (std::size_t i = 0; i < masks.size(); ++i) {
        const std::uint32_t shift = masks[i] == 0 ? 0 : __builtin_ctz(masks[i]);
        const std::uint32_t max = masks[i] >> shift;
        pixel |= (channel[i] * max / 255) << shift;
    }
    return pixel;
}

const std::vector<std::uint32_t> k555 = {0x7C00, 0x03E0, 0x001F};
const std::vector<std::uint32_t> k565 = {0xF800, 0x07E0, 0x001F};
const std::vector<std::uint32_t> kBgra = {0x00FF0000, 0x0000FF00, 0x000000FF, 0xFF000000};
const std::vector<std::uint32_t> kBgrx = {0x00FF0000, 0x0000FF00, 0x000000FF};

std::vector<BYTE> Encode(const Variant& v, BYTE alpha) {
    // Without bit fields the file's own defaults hold: 5-5-5, or blue, green, red and a spare.
    const std::vector<std::uint32_t>& fields =
        !v.masks.empty() ? v.masks : (v.bits == 16 ? k555 : kBgrx);
    std::vector<BYTE> header;
    Put(header, v.headerSize, 4);
    const bool core = v.headerSize == 12;
    const int rows = v.topDown ? -kHeight : kHeight;
    Put(header, kWidth, core ? 2 : 4);
    Put(header, static_cast<std::uint32_t>(rows), core ? 2 : 4);
    Put(header, 1, 2);
    Put(header, static_cast<std::uint32_t>(v.bits), 2);
    if (v.headerSize >= 40) {
        Put(header, v.compression, 4);
        for (int field = 0; field < 5; ++field) {
            Put(header, 0, 4);  // image size, resolutions, colours used and important
        }
        for (std::size_t i = 0; v.headerSize > 40 && i < 4; ++i) {
            Put(header, i < v.masks.size() ? v.masks[i] : 0, 4);
        }
    }
    header.resize(v.headerSize, 0);
    if (v.headerSize == 40) {
        for (const std::uint32_t m : v.masks) {
            Put(header, m, 4);
        }
    }
    const int entryBytes = core ? 3 : 4;
    if (v.bits <= 8) {
        for (unsigned i = 0; i < (1u << v.bits); ++i) {
            const RGBQUAD e = Entry(i);
            header.insert(header.end(), {e.rgbBlue, e.rgbGreen, e.rgbRed});
            header.resize(header.size() + entryBytes - 3, 0);
        }
    }
    std::vector<BYTE> pixels;
    for (int r = 0; r < kHeight; ++r) {
        const int y = v.topDown ? r : kHeight - 1 - r;
        std::vector<BYTE> row;
        if (v.compression == 1 || v.compression == 2) {
            // One literal run of the whole row (five pixels), then the end of the row.
            row = {0, static_cast<BYTE>(kWidth)};
            for (int x = 0; x < kWidth; x += v.compression == 2 ? 2 : 1) {
                const unsigned hi = IndexOf(x, y, v.bits);
                row.push_back(v.compression == 2
                                  ? static_cast<BYTE>(
                                        hi << 4 | (x + 1 < kWidth ? IndexOf(x + 1, y, v.bits) : 0))
                                  : static_cast<BYTE>(hi));
            }
            row.resize((row.size() + 1) / 2 * 2, 0);
            row.insert(row.end(), {0, 0});
        } else {
            std::uint32_t bitsInByte = 0, accumulator = 0;
            for (int x = 0; x < kWidth; ++x) {
                if (v.bits <= 8) {
                    accumulator = accumulator << v.bits | IndexOf(x, y, v.bits);
                    bitsInByte += v.bits;
                    if (bitsInByte == 8) {
                        row.push_back(static_cast<BYTE>(accumulator)), bitsInByte = 0,
                                                                       accumulator = 0;
                    }
                } else if (v.bits == 24) {
                    const RGBQUAD c = Truth(x, y);
                    row.insert(row.end(), {c.rgbBlue, c.rgbGreen, c.rgbRed});
                } else {
                    Put(row, PackFields(Truth(x, y), fields, alpha), v.bits / 8);
                }
            }
            if (bitsInByte > 0) {
                row.push_back(static_cast<BYTE>(accumulator << (8 - bitsInByte)));
            }
            row.resize((row.size() + 3) / 4 * 4, 0);
        }
        pixels.insert(pixels.end(), row.begin(), row.end());
    }
    if (v.compression == 1 || v.compression == 2) {
        pixels.insert(pixels.end(), {0, 1});
    }
    std::vector<BYTE> file = {'B', 'M'};
    Put(file, static_cast<std::uint32_t>(14 + header.size() + pixels.size()), 4);
    Put(file, 0, 4);
    Put(file, static_cast<std::uint32_t>(14 + header.size()), 4);
    file.insert(file.end(), header.begin(), header.end());
    file.insert(file.end(), pixels.begin(), pixels.end());
    return file;
}

// What a channel of `value` becomes through a field of `max` and back to 8 bits.
BYTE ThroughField(BYTE value, std::uint32_t mask) {
    const std::uint32_t max = mask >> __builtin_ctz(mask);
    return static_cast<BYTE>((value * max / 255 * 255 + max / 2) / max);
}

class BmpVariant : public ::testing::TestWithParam<Variant> {};

TEST_P(BmpVariant, DecodesToTheColoursItWasMadeOf) {
    const Variant& v = GetParam();
    const BYTE alpha = 255;
    const std::vector<BYTE> bytes = Encode(v, alpha);
    C_Image image;
    const ImageFileResult result = LoadBmpMemory(bytes.data(), bytes.size(), image);
    ASSERT_TRUE(result.ok) << result.error;
    ASSERT_EQ(image.Width(), kWidth);
    ASSERT_EQ(image.Height(), kHeight);
    EXPECT_FALSE(result.alphaFlattened);
    ASSERT_EQ(image.IsTrueColor() != 0, v.bits > 8);
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            RGBQUAD want = v.bits <= 8 ? Entry(IndexOf(x, y, v.bits)) : Truth(x, y);
            if (v.bits == 16 || v.bits == 32) {
                const std::vector<std::uint32_t>& m = v.masks.empty() ? k555 : v.masks;
                const bool bgrx = v.bits == 32 && v.masks.empty();
                want.rgbRed = bgrx ? want.rgbRed : ThroughField(want.rgbRed, m[0]);
                want.rgbGreen = bgrx ? want.rgbGreen : ThroughField(want.rgbGreen, m[1]);
                want.rgbBlue = bgrx ? want.rgbBlue : ThroughField(want.rgbBlue, m[2]);
            }
            EXPECT_EQ(image.GetPixelColorRef(x, y), RGB(want.rgbRed, want.rgbGreen, want.rgbBlue))
                << v.name << " at " << x << "," << y;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Layouts, BmpVariant,
    ::testing::Values(Variant{"TwoBit", 40, 2, 0, {}}, Variant{"OneBitTopDown", 40, 1, 0, {}, true},
                      Variant{"Rle8", 40, 8, 1, {}}, Variant{"Rle4", 40, 4, 2, {}},
                      Variant{"Rgb555", 40, 16, 0, {}}, Variant{"Rgb565Fields", 40, 16, 3, k565},
                      Variant{"Bgrx32", 40, 32, 0, {}},
                      Variant{"Fields32InV4Header", 108, 32, 3, {0xFF0000, 0xFF00, 0xFF}},
                      Variant{"Os2CoreHeader", 12, 8, 0, {}},
                      Variant{"Os2ShortHeader", 16, 24, 0, {}},
                      Variant{"Os2LongHeader", 64, 4, 0, {}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(BmpVariantAlpha, AlphaIsFlattenedOntoWhite) {
    const std::vector<BYTE> bytes = Encode(Variant{"Bgra", 124, 32, 3, kBgra}, 51);
    C_Image image;
    const ImageFileResult result = LoadBmpMemory(bytes.data(), bytes.size(), image);
    ASSERT_TRUE(result.ok) << result.error;
    EXPECT_TRUE(result.alphaFlattened);
    const RGBQUAD c = Truth(2, 1);
    const auto over = [](unsigned v) { return (v * 51 + 255 * 204 + 127) / 255; };
    EXPECT_EQ(image.GetPixelColorRef(2, 1), RGB(over(c.rgbRed), over(c.rgbGreen), over(c.rgbBlue)));
}

TEST(BmpVariantDamage, RefusesWithTheReason) {
    const struct {
        const char* name;
        Variant variant;
        std::function<void(std::vector<BYTE>&)> damage;
        const char* reason;
    } cases[] = {
        {"LongRun", Variant{"", 40, 8, 1, {}},
         [](auto& b) {
             // Replace the end of the image by a run of 200 pixels.
             b[b.size() - 2] = 200;
             b[b.size() - 1] = 3;
         },
         "corrupt BMP: the RLE data runs past"},
        {"IndexBeyondTable", Variant{"", 40, 8, 0, {}},
         [](auto& b) {
             b[46] = 4;                                // 4 colours used
             b[10] = static_cast<BYTE>(14 + 40 + 16);  // the pixel offset, below 256
             b[11] = 0;
             b.erase(b.begin() + 14 + 40 + 16, b.begin() + 14 + 40 + 1024);
         },
         "corrupt BMP: pixel (4, 0) uses colour 4 of a table of 4"},
    };
    for (const auto& c : cases) {
        std::vector<BYTE> bytes = Encode(c.variant, 255);
        c.damage(bytes);
        C_Image image;
        const ImageFileResult result = LoadBmpMemory(bytes.data(), bytes.size(), image);
        EXPECT_FALSE(result.ok) << c.name;
        EXPECT_EQ(result.error.rfind(c.reason, 0), 0u) << c.name << ": " << result.error;
        EXPECT_FALSE(image.HasImage()) << c.name;
    }
}

}  // namespace
}  // namespace vistrane
