// The scene is laid out on a 1600 x 1200 design grid and scaled to the requested size, then
// painted back to front in layers, each over the pixels it can touch. Coverage values are in
// 1/256 (0 = untouched, 256 = replaced); anti-aliased edges measure distance in 1/16 pixel and
// spread over one pixel. Square roots go through std::sqrt, which IEEE 754 rounds correctly, and
// are then corrected to the exact integer root.

#include "demo_picture.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <vector>

#include <vistrane/image/image.h>

namespace vistrane::cli {
namespace {

struct Rgb {
    int r;
    int g;
    int b;
};

constexpr Rgb kSkyTop{28, 72, 160};
constexpr Rgb kSkyHorizon{188, 212, 234};
constexpr Rgb kSunGlow{255, 236, 190};
constexpr Rgb kSunDisc{255, 249, 228};
constexpr Rgb kCloudLit{252, 252, 255};
constexpr Rgb kCloudShade{176, 184, 204};
constexpr Rgb kFarHillTop{132, 150, 182};
constexpr Rgb kFarHillFoot{104, 126, 150};
constexpr Rgb kNearHillTop{98, 150, 64};
constexpr Rgb kNearHillFoot{46, 96, 38};
constexpr Rgb kMeadowFar{128, 164, 74};
constexpr Rgb kMeadowNear{66, 124, 42};
constexpr Rgb kFurrowLight{146, 104, 62};
constexpr Rgb kFurrowDark{108, 76, 44};
constexpr Rgb kRoof{112, 52, 42};
constexpr Rgb kWindowLit{255, 222, 124};
constexpr Rgb kWindowGlass{58, 78, 108};
constexpr Rgb kWindowFrame{232, 230, 222};
constexpr Rgb kDoor{74, 46, 30};
constexpr Rgb kBlanketRed{212, 28, 40};
constexpr Rgb kBlanketWhite{246, 244, 238};
constexpr Rgb kFencePaint{238, 234, 224};
constexpr Rgb kFenceShadow{176, 170, 160};
constexpr Rgb kBasket{122, 82, 40};
constexpr Rgb kRope{60, 50, 40};

constexpr Rgb kFacades[] = {
    {214, 196, 160}, {162, 74, 58}, {150, 150, 156}, {236, 232, 224}, {220, 30, 40},
    {250, 200, 20},  {30, 160, 72}, {22, 150, 204},  {40, 62, 200},   {200, 40, 160},
};
constexpr Rgb kFlowers[] = {
    {232, 22, 32}, {255, 214, 0}, {222, 30, 162}, {255, 122, 0}, {42, 72, 232}, {250, 250, 250},
};
constexpr Rgb kBalloonStripes[2][4] = {
    {{226, 24, 36}, {255, 206, 10}, {24, 92, 214}, {255, 206, 10}},
    {{20, 168, 90}, {250, 250, 250}, {230, 40, 150}, {250, 250, 250}},
};

// A 32-bit avalanche hash (two multiply-xorshift rounds); the only source of variation.
std::uint32_t Hash(std::uint32_t a, std::uint32_t b, std::uint32_t seed) {
    std::uint32_t h = a * 0x9E3779B1u ^ (b + 0x7F4A7C15u) * 0x85EBCA77u ^ seed * 0xC2B2AE3Du;
    h ^= h >> 16;
    h *= 0x7FEB352Du;
    h ^= h >> 15;
    h *= 0x846CA68Bu;
    h ^= h >> 16;
    return h;
}

int FloorDiv(int a, int b) {
    return a >= 0 ? a / b : -((-a + b - 1) / b);
}

// 3t^2 - 2t^3 with t in 1/256: f^2 (768 - 2f) / 65536.
int Smooth(int f) {
    return f * f * (768 - 2 * f) >> 16;
}

// Smooth noise in 0..255 along one axis, one random value per cell.
int Noise1D(int x, int cellPx, std::uint32_t seed) {
    const int cell = FloorDiv(x, cellPx);
    const int t = Smooth((x - cell * cellPx) * 256 / cellPx);
    const int a = static_cast<int>(Hash(static_cast<std::uint32_t>(cell), 0, seed) & 255);
    const int b = static_cast<int>(Hash(static_cast<std::uint32_t>(cell + 1), 0, seed) & 255);
    return a + ((b - a) * t >> 8);
}

// Smooth value noise in 0..255 on a grid of cellX x cellY cells.
int Noise2D(int x, int y, int cellX, int cellY, std::uint32_t seed) {
    const int cx = FloorDiv(x, cellX);
    const int cy = FloorDiv(y, cellY);
    const int tx = Smooth((x - cx * cellX) * 256 / cellX);
    const int ty = Smooth((y - cy * cellY) * 256 / cellY);
    auto corner = [&](int i, int j) {
        return static_cast<int>(
            Hash(static_cast<std::uint32_t>(cx + i), static_cast<std::uint32_t>(cy + j), seed) &
            255);
    };
    const int top = corner(0, 0) + ((corner(1, 0) - corner(0, 0)) * tx >> 8);
    const int bottom = corner(0, 1) + ((corner(1, 1) - corner(0, 1)) * tx >> 8);
    return top + ((bottom - top) * ty >> 8);
}

// Octaves of value noise at halving cell sizes and weights, in 0..255.
int Fractal(int x, int y, int cellPx, int octaves, std::uint32_t seed) {
    int sum = 0;
    int weights = 0;
    int weight = 128;
    for (int octave = 0; octave < octaves && cellPx >= 2; ++octave) {
        sum += Noise2D(x, y, cellPx, cellPx, seed + static_cast<std::uint32_t>(octave)) * weight;
        weights += weight;
        weight /= 2;
        cellPx /= 2;
    }
    return weights > 0 ? sum / weights : 128;
}

std::int64_t Isqrt(std::int64_t n) {
    if (n <= 0) {
        return 0;
    }
    auto root = static_cast<std::int64_t>(std::sqrt(static_cast<double>(n)));
    while (root * root > n) {
        --root;
    }
    while ((root + 1) * (root + 1) <= n) {
        ++root;
    }
    return root;
}

int Clamp(int v, int lo, int hi) {
    return std::min(std::max(v, lo), hi);
}

Rgb Mix(Rgb a, Rgb b, int t) {
    return {a.r + ((b.r - a.r) * t >> 8), a.g + ((b.g - a.g) * t >> 8),
            a.b + ((b.b - a.b) * t >> 8)};
}

Rgb Scale(Rgb c, int factor) {
    return {Clamp(c.r * factor >> 8, 0, 255), Clamp(c.g * factor >> 8, 0, 255),
            Clamp(c.b * factor >> 8, 0, 255)};
}

// Coverage of a pixel whose centre is `inside16` sixteenths of a pixel inside an edge.
int EdgeCoverage(std::int64_t inside16) {
    return static_cast<int>(std::clamp<std::int64_t>(inside16 + 8, 0, 16)) * 16;
}

class Canvas {
  public:
    Canvas(C_Image& image, int width, int height) : m_Width(width), m_Height(height) {
        m_Rows.reserve(static_cast<std::size_t>(height));
        for (int y = 0; y < height; ++y) {
            m_Rows.push_back(image.PixelPtr(0, y));
        }
    }

    int Width() const { return m_Width; }
    int Height() const { return m_Height; }
    // Design-grid coordinates to pixels.
    int X(int designX) const { return static_cast<int>(std::int64_t{designX} * m_Width / 1600); }
    int Y(int designY) const { return static_cast<int>(std::int64_t{designY} * m_Height / 1200); }

    Rgb Get(int x, int y) const {
        const BYTE* p = m_Rows[static_cast<std::size_t>(y)] + 3 * x;
        return {p[2], p[1], p[0]};
    }
    void Put(int x, int y, Rgb c) {
        BYTE* p = m_Rows[static_cast<std::size_t>(y)] + 3 * x;
        p[0] = static_cast<BYTE>(Clamp(c.b, 0, 255));
        p[1] = static_cast<BYTE>(Clamp(c.g, 0, 255));
        p[2] = static_cast<BYTE>(Clamp(c.r, 0, 255));
    }
    void Blend(int x, int y, Rgb c, int coverage) {
        if (x < 0 || y < 0 || x >= m_Width || y >= m_Height || coverage <= 0) {
            return;
        }
        Put(x, y, coverage >= 256 ? c : Mix(Get(x, y), c, coverage));
    }
    void FillRect(int left, int top, int right, int bottom, Rgb c) {
        for (int y = std::max(top, 0); y < std::min(bottom, m_Height); ++y) {
            for (int x = std::max(left, 0); x < std::min(right, m_Width); ++x) {
                Put(x, y, c);
            }
        }
    }
    // An anti-aliased disc.
    void Disc(int cx, int cy, int radius, Rgb c) {
        for (int y = cy - radius - 1; y <= cy + radius + 1; ++y) {
            for (int x = cx - radius - 1; x <= cx + radius + 1; ++x) {
                const std::int64_t dx = x - cx;
                const std::int64_t dy = y - cy;
                Blend(x, y, c, EdgeCoverage(radius * 16 - Isqrt((dx * dx + dy * dy) * 256)));
            }
        }
    }

  private:
    std::vector<BYTE*> m_Rows;  // y = 0 first
    int m_Width;
    int m_Height;
};

void PaintSky(Canvas& canvas) {
    const int horizon = canvas.Y(780);
    const int sunX = canvas.X(1150);
    const int sunY = canvas.Y(250);
    const int glowRadius = canvas.X(560);
    for (int y = 0; y < canvas.Height(); ++y) {
        const Rgb base = Mix(kSkyTop, kSkyHorizon, std::min(y, horizon) * 256 / horizon);
        for (int x = 0; x < canvas.Width(); ++x) {
            const std::int64_t dx = x - sunX;
            const std::int64_t dy = y - sunY;
            const int distance = static_cast<int>(Isqrt(dx * dx + dy * dy));
            const int glow = distance < glowRadius ? (glowRadius - distance) * 256 / glowRadius : 0;
            canvas.Put(x, y, Mix(base, kSunGlow, glow * glow * 170 >> 16));
        }
    }
    canvas.Disc(sunX, sunY, canvas.X(62), kSunDisc);
}

// Clouds are unions of soft ellipses whose density is roughened by fractal noise; their lower
// parts are shaded.
void PaintClouds(Canvas& canvas) {
    struct Cloud {
        int x;
        int y;
        int span;
    };
    constexpr Cloud kClouds[] = {
        {260, 140, 420}, {760, 210, 360}, {1380, 120, 300}, {1040, 420, 260}, {180, 470, 240}};
    constexpr int kBlobs = 8;
    std::uint32_t seed = 101;
    for (const Cloud& cloud : kClouds) {
        int blobX[kBlobs];
        int blobY[kBlobs];
        int blobRx[kBlobs];
        int blobRy[kBlobs];
        for (int i = 0; i < kBlobs; ++i) {
            const std::uint32_t h = Hash(static_cast<std::uint32_t>(i), seed, 7);
            blobX[i] = canvas.X(cloud.x + static_cast<int>(h % cloud.span) - cloud.span / 2);
            blobY[i] = canvas.Y(cloud.y + static_cast<int>((h >> 8) % 50) - 25);
            blobRx[i] = canvas.X(50 + static_cast<int>((h >> 16) % 70));
            blobRy[i] = canvas.Y(22 + static_cast<int>((h >> 24) % 26));
        }
        const int left = canvas.X(cloud.x - cloud.span / 2 - 130);
        const int right = canvas.X(cloud.x + cloud.span / 2 + 130);
        const int top = canvas.Y(cloud.y - 90);
        const int bottom = canvas.Y(cloud.y + 90);
        for (int y = std::max(top, 0); y < std::min(bottom, canvas.Height()); ++y) {
            const int shade = Clamp((y - canvas.Y(cloud.y - 20)) * 256 / canvas.Y(80), 0, 256);
            const Rgb color = Mix(kCloudLit, kCloudShade, shade);
            for (int x = std::max(left, 0); x < std::min(right, canvas.Width()); ++x) {
                int density = 0;
                for (int i = 0; i < kBlobs; ++i) {
                    const std::int64_t dx = x - blobX[i];
                    const std::int64_t dy = y - blobY[i];
                    const std::int64_t q = dx * dx * 256 / (std::int64_t{blobRx[i]} * blobRx[i]) +
                                           dy * dy * 256 / (std::int64_t{blobRy[i]} * blobRy[i]);
                    density += static_cast<int>(std::max<std::int64_t>(0, 256 - q));
                }
                if (density == 0) {
                    continue;
                }
                density += (Fractal(x, y, canvas.X(64), 4, seed) - 128) * 3 / 4;
                canvas.Blend(x, y, color, Clamp((density - 40) * 2, 0, 236));
            }
        }
        seed += 13;
    }
}

// Hot-air balloons: striped envelopes whose stripes follow the curve of the surface, a basket
// and four one-pixel ropes.
void PaintBalloons(Canvas& canvas) {
    struct Balloon {
        int x;
        int y;
        int rx;
        int ry;
    };
    constexpr Balloon kBalloons[] = {{380, 300, 70, 86}, {1390, 470, 30, 37}};
    for (int b = 0; b < 2; ++b) {
        const int cx = canvas.X(kBalloons[b].x);
        const int cy = canvas.Y(kBalloons[b].y);
        const int rx = std::max(canvas.X(kBalloons[b].rx), 2);
        const int ry = std::max(canvas.Y(kBalloons[b].ry), 2);
        for (int y = cy - ry; y <= cy + ry; ++y) {
            const std::int64_t dy = y - cy;
            std::int64_t half16 =
                Isqrt((std::int64_t{ry} * ry - dy * dy) * rx * rx * 256 / (std::int64_t{ry} * ry));
            if (dy > 0) {
                half16 = half16 * (256 - 120 * dy / ry) / 256;  // tapers into a teardrop
            }
            const int half = std::max(static_cast<int>(half16 / 16), 1);
            for (int x = cx - half - 1; x <= cx + half + 1; ++x) {
                const int coverage = EdgeCoverage(half16 - std::abs(x - cx) * 16);
                const int u = Clamp((x - cx) * 256 / half + 256, 0, 511);
                const Rgb stripe = kBalloonStripes[b][u * 8 / 512 % 4];
                const int light = 214 + 44 * (x - cx) / rx - 30 * static_cast<int>(dy) / ry;
                canvas.Blend(x, y, Scale(stripe, Clamp(light, 150, 256)), coverage);
            }
        }
        const int basketTop = cy + ry + ry / 3;
        const int basketHalf = std::max(rx / 6, 1);
        canvas.FillRect(cx - basketHalf, basketTop, cx + basketHalf, basketTop + ry / 5, kBasket);
        const int ropeTop = cy + ry * 3 / 4;
        const int ropeHalfTop = rx / 3;
        for (int rope = 0; rope < 4; ++rope) {
            const int fromX = cx - ropeHalfTop + rope * 2 * ropeHalfTop / 3;
            const int toX = cx - basketHalf + rope * 2 * basketHalf / 3;
            for (int y = ropeTop; y < basketTop; ++y) {
                canvas.Put(fromX + (toX - fromX) * (y - ropeTop) / (basketTop - ropeTop), y, kRope);
            }
        }
    }
}

// A ridge is a height per column in 1/16 pixel; everything below it is the hill.
void PaintHill(Canvas& canvas, int baseDesignY, int amplitudeDesign, int cellDesign,
               std::uint32_t seed, Rgb top, Rgb foot, int textureCell, int textureAmount) {
    const int depth = canvas.Y(260);
    const int hidden = canvas.Y(800);  // the meadow covers everything below
    for (int x = 0; x < canvas.Width(); ++x) {
        const int ridge16 =
            canvas.Y(baseDesignY) * 16 -
            Noise1D(x, canvas.X(cellDesign), seed) * canvas.Y(amplitudeDesign) / 16 -
            Noise1D(x, canvas.X(cellDesign / 4), seed + 1) * canvas.Y(amplitudeDesign / 5) / 16;
        for (int y = std::max(ridge16 / 16 - 1, 0); y < hidden; ++y) {
            const int below = y - ridge16 / 16;
            Rgb color = Mix(top, foot, Clamp(below * 256 / depth, 0, 256));
            const int grain = (Fractal(x, y, textureCell, 3, seed + 5) - 128) * textureAmount / 128;
            color = {color.r + grain, color.g + grain, color.b + grain / 2};
            canvas.Blend(x, y, color, EdgeCoverage((y + 1) * 16 - ridge16 - 8));
        }
    }
}

void PaintMeadow(Canvas& canvas) {
    const int ground = canvas.Y(800);
    const int cellX = std::max(canvas.X(3), 2);
    const int cellY = std::max(canvas.Y(18), 2);
    for (int y = ground; y < canvas.Height(); ++y) {
        const Rgb base =
            Mix(kMeadowFar, kMeadowNear, (y - ground) * 256 / (canvas.Height() - ground));
        for (int x = 0; x < canvas.Width(); ++x) {
            // Tall narrow noise cells read as blades of grass.
            const int blades = (Noise2D(x, y, cellX, cellY, 31) - 128) / 5;
            const int patches = (Fractal(x, y, canvas.X(96), 3, 37) - 128) / 4;
            canvas.Put(x, y,
                       {base.r + blades + patches, base.g + blades + patches, base.b + blades / 2});
        }
    }
}

// Furrows run to a vanishing point, so they narrow with distance and alias into fine detail.
void PaintField(Canvas& canvas) {
    const int vanishX = canvas.X(1260);
    const int vanishY = canvas.Y(690);
    const int top = canvas.Y(812);
    const int bottom = canvas.Y(975);
    for (int y = top; y < bottom; ++y) {
        const int left = canvas.X(1010) - (y - top) * 3 / 4;
        for (int x = std::max(left, 0); x < canvas.Width(); ++x) {
            const int slope = (x - vanishX) * 256 / (y - vanishY);
            canvas.Put(x, y, (FloorDiv(slope, 40) & 1) != 0 ? kFurrowDark : kFurrowLight);
        }
    }
}

// A street of hard-edged houses with window grids, some with pitched roofs.
void PaintTown(Canvas& canvas) {
    const int ground = canvas.Y(812);
    int x = canvas.X(120);
    for (std::uint32_t i = 0; x < canvas.X(960); ++i) {
        const std::uint32_t h = Hash(i, 0, 211);
        const int width = canvas.X(62 + static_cast<int>(h % 80));
        const int height = canvas.Y(96 + static_cast<int>((h >> 8) % 190));
        const int top = ground - height;
        const Rgb facade = kFacades[(h >> 16) % std::size(kFacades)];
        canvas.FillRect(x, top, x + width, ground, facade);
        canvas.FillRect(x + width - canvas.X(8), top, x + width, ground, Scale(facade, 200));
        if ((h >> 20) % 3 == 0) {
            const int roof = width / 3;
            for (int r = 1; r <= roof; ++r) {
                const int inset = width / 2 * r / roof;
                canvas.FillRect(x + inset, top - r, x + width - inset, top - r + 1, kRoof);
            }
        } else {
            canvas.FillRect(x - 2, top - canvas.Y(6), x + width + 2, top, Scale(facade, 170));
        }
        const int windowW = std::max(canvas.X(12), 3);
        const int windowH = std::max(canvas.Y(16), 3);
        for (int wy = top + canvas.Y(14); wy + windowH < ground - canvas.Y(34);
             wy += canvas.Y(30)) {
            for (int wx = x + canvas.X(10); wx + windowW < x + width - canvas.X(10);
                 wx += canvas.X(22)) {
                const bool lit =
                    Hash(static_cast<std::uint32_t>(wx), static_cast<std::uint32_t>(wy), 223) % 5 ==
                    0;
                canvas.FillRect(wx - 1, wy - 1, wx + windowW + 1, wy + windowH + 1, kWindowFrame);
                canvas.FillRect(wx, wy, wx + windowW, wy + windowH,
                                lit ? kWindowLit : kWindowGlass);
            }
        }
        const int doorW = canvas.X(14);
        canvas.FillRect(x + width / 2 - doorW / 2, ground - canvas.Y(28), x + width / 2 + doorW / 2,
                        ground, kDoor);
        x += width + canvas.X(static_cast<int>((h >> 24) % 12));
    }
}

// A picnic blanket of saturated checks, sheared to lie on the ground.
void PaintBlanket(Canvas& canvas) {
    const int left = canvas.X(280);
    const int top = canvas.Y(900);
    const int width = canvas.X(230);
    const int height = canvas.Y(70);
    const int check = std::max(canvas.X(14), 2);
    for (int y = top; y < top + height; ++y) {
        const int shift = (top + height - y) / 2;
        for (int x = left + shift; x < left + shift + width; ++x) {
            const bool red = ((FloorDiv(x - left - shift, check) + (y - top) / check) & 1) != 0;
            canvas.Put(x, y, red ? kBlanketRed : kBlanketWhite);
        }
    }
}

void PaintFlowers(Canvas& canvas) {
    const int cell = std::max(canvas.X(22), 4);
    for (int cy = canvas.Y(880) / cell; cy * cell < canvas.Height(); ++cy) {
        for (int cx = 0; cx * cell < canvas.Width(); ++cx) {
            const std::uint32_t h =
                Hash(static_cast<std::uint32_t>(cx), static_cast<std::uint32_t>(cy), 307);
            if (h % 3 != 0) {
                continue;
            }
            const int x = cx * cell + static_cast<int>((h >> 4) % static_cast<unsigned>(cell));
            const int y = cy * cell + static_cast<int>((h >> 12) % static_cast<unsigned>(cell));
            const int radius = std::max(canvas.X(2 + static_cast<int>((h >> 20) % 4)), 1);
            canvas.Disc(x, y, radius, kFlowers[(h >> 24) % std::size(kFlowers)]);
            canvas.Disc(x, y, std::max(radius / 3, 1), kFlowers[1]);
        }
    }
}

// A picket fence across the foreground: pointed pickets, two rails, a shadow edge per picket.
void PaintFence(Canvas& canvas) {
    const int top = canvas.Y(995);
    const int bottom = canvas.Y(1120);
    const int pitch = std::max(canvas.X(18), 4);
    const int picket = std::max(canvas.X(8), 2);
    const int point = picket / 2;
    for (int left = canvas.X(4); left < canvas.Width(); left += pitch) {
        for (int y = top; y < bottom; ++y) {
            const int inset = y < top + point ? top + point - y : 0;
            for (int x = left + inset; x < left + picket - inset; ++x) {
                canvas.Blend(x, y, x == left + picket - 1 ? kFenceShadow : kFencePaint, 256);
            }
        }
    }
    for (int rail : {canvas.Y(1022), canvas.Y(1082)}) {
        canvas.FillRect(0, rail, canvas.Width(), rail + canvas.Y(10), kFencePaint);
        canvas.FillRect(0, rail + canvas.Y(10), canvas.Width(), rail + canvas.Y(12), kFenceShadow);
    }
}

// Sensor-like grain (mostly luminance, a little chroma) and a soft darkening of the corners.
void PaintGrainAndVignette(Canvas& canvas) {
    const std::int64_t cx = canvas.Width() / 2;
    const std::int64_t cy = canvas.Height() / 2;
    const std::int64_t corner = cx * cx + cy * cy;
    for (int y = 0; y < canvas.Height(); ++y) {
        for (int x = 0; x < canvas.Width(); ++x) {
            const std::uint32_t h =
                Hash(static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y), 401);
            const int luma = static_cast<int>(h % 13) - 6;
            const int chroma = static_cast<int>((h >> 8) % 5) - 2;
            const std::int64_t dx = x - cx;
            const std::int64_t dy = y - cy;
            const int vignette = 256 - static_cast<int>((dx * dx + dy * dy) * 56 / corner);
            const Rgb c = canvas.Get(x, y);
            canvas.Put(x, y,
                       Scale({c.r + luma + chroma, c.g + luma, c.b + luma - chroma}, vignette));
        }
    }
}

}  // namespace

bool RenderDemoPicture(C_Image& image, long width, long height) {
    if (width < 16 || height < 12 || !image.Create(width, height, 1, nullptr, 0)) {
        image.SelfDestruct();
        return false;
    }
    Canvas canvas(image, static_cast<int>(width), static_cast<int>(height));
    PaintSky(canvas);
    PaintClouds(canvas);
    PaintBalloons(canvas);
    PaintHill(canvas, 650, 120, 280, 11, kFarHillTop, kFarHillFoot, canvas.X(48), 8);
    PaintHill(canvas, 740, 150, 420, 23, kNearHillTop, kNearHillFoot, canvas.X(20), 22);
    PaintMeadow(canvas);
    PaintFlowers(canvas);
    PaintField(canvas);
    PaintTown(canvas);
    PaintBlanket(canvas);
    PaintFence(canvas);
    PaintGrainAndVignette(canvas);
    return true;
}

}  // namespace vistrane::cli
