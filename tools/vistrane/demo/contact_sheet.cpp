#include "demo/contact_sheet.h"

#include <filesystem>
#include <vector>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>
#include <vistrane/path/point_path.h>
#include <vistrane/path/sub_path.h>
#include <vistrane/platform/dc.h>
#include <vistrane/platform/font.h>

namespace vistrane::cli {
namespace {

constexpr long kColumns = 4;
constexpr long kCellWidth = 400;
constexpr long kCellHeight = 300;
constexpr long kCaptionHeight = 30;
constexpr long kGutter = 12;
constexpr int kCaptionPixels = 20;
constexpr int kCurveSteps = 8;
constexpr COLORREF kBackground = RGB(40, 40, 44);
constexpr COLORREF kCaptionColour = RGB(235, 235, 225);

// A point on the cubic from p0 through controls p1, p2 to p3 at t = step / kCurveSteps, in
// integer arithmetic: the Bernstein weights scaled by kCurveSteps^3.
POINT CurvePoint(const POINT& p0, const POINT& p1, const POINT& p2, const POINT& p3, int step) {
    const long t = step;
    const long u = kCurveSteps - step;
    const long whole = static_cast<long>(kCurveSteps) * kCurveSteps * kCurveSteps;
    const auto mix = [&](long a, long b, long c, long d) {
        const long sum = u * u * u * a + 3 * u * u * t * b + 3 * u * t * t * c + t * t * t * d;
        return static_cast<LONG>((sum + whole / 2) / whole);
    };
    return {mix(p0.x, p1.x, p2.x, p3.x), mix(p0.y, p1.y, p2.y, p3.y)};
}

// Strokes the path the device recorded: lines as they are, curves as short chords.
void StrokeDevicePath(CDC& dc, const std::vector<POINT>& points, const std::vector<BYTE>& types) {
    POINT start{};
    for (std::size_t i = 0; i < points.size(); ++i) {
        const BYTE kind = types[i] & static_cast<BYTE>(~PT_CLOSEFIGURE);
        if (kind == PT_MOVETO) {
            start = points[i];
            dc.MoveTo(start);
        } else if (kind == PT_BEZIERTO && i + 2 < points.size()) {
            const POINT from = i == 0 ? start : points[i - 1];
            for (int step = 1; step <= kCurveSteps; ++step) {
                dc.LineTo(CurvePoint(from, points[i], points[i + 1], points[i + 2], step));
            }
            i += 2;
        } else {
            dc.LineTo(points[i]);
        }
        if ((types[i] & PT_CLOSEFIGURE) != 0) {
            dc.LineTo(start);
        }
    }
}

}  // namespace

bool DrawCaption(C_Image& sheet, CFont& font, long x, long y, const std::string& caption,
                 int plateWidth) {
    CDC dc;
    if (!dc.CreateCompatibleDC(nullptr)) {
        return false;
    }
    CBitmap* oldBitmap = dc.SelectObject(sheet.GetBitmap());
    CFont* oldFont = dc.SelectObject(&font);
    if (plateWidth > 0) {
        dc.FillSolidRect(static_cast<int>(x) - 4, static_cast<int>(y) - 3, plateWidth,
                         kCaptionPixels + 8, kBackground);
    }
    bool drawn = dc.BeginPath() &&
                 dc.TextOut(static_cast<int>(x), static_cast<int>(y), caption.c_str(),
                            static_cast<int>(caption.size())) &&
                 dc.EndPath();
    const int count = drawn ? dc.GetPath(nullptr, nullptr, 0) : -1;
    drawn = count >= 0;
    if (count > 0) {
        std::vector<POINT> points(static_cast<std::size_t>(count));
        std::vector<BYTE> types(static_cast<std::size_t>(count));
        drawn = dc.GetPath(points.data(), types.data(), count) == count;
        CPen pen(PS_SOLID, 1, kCaptionColour);
        CPen* oldPen = dc.SelectObject(&pen);
        if (drawn) {
            StrokeDevicePath(dc, points, types);
        }
        dc.SelectObject(oldPen);
    }
    dc.SelectObject(oldFont);
    dc.SelectObject(oldBitmap);
    return drawn;
}

namespace {

// The tour writes its pictures as PNG; the BMP copy of the picture would only repeat it.
bool IsPicture(const std::string& path) {
    return ImageFileFormatFromPath(path) == ImageFileFormat::Png;
}

}  // namespace

bool DrawPathOutline(C_Image& image, const C_PointPath& path, unsigned long colour) {
    // Each segment is a cubic from an anchor along its outgoing direction into the next
    // anchor along that one's incoming direction, as the device records curves.
    std::vector<POINT> points;
    std::vector<BYTE> types;
    for (const C_SubPath* sub = path.GetFirstSubPath(); sub != nullptr; sub = sub->GetNext()) {
        const int count = sub->GetCount();
        const S_PathPoint* anchors = sub->GetPoints();
        const int segments = sub->IsClosed() != 0 ? count : count - 1;
        if (count < 2) {
            continue;
        }
        points.push_back(anchors[0].m_Anchor);
        types.push_back(PT_MOVETO);
        for (int k = 0; k < segments; ++k) {
            const S_PathPoint& from = anchors[k];
            const S_PathPoint& to = anchors[(k + 1) % count];
            points.push_back(from.m_Anchor + from.m_NextDirection);
            points.push_back(to.m_Anchor + to.m_PrevDirection);
            points.push_back(to.m_Anchor);
            types.insert(types.end(), 3, PT_BEZIERTO);
        }
    }
    CDC dc;
    if (!dc.CreateCompatibleDC(nullptr)) {
        return false;
    }
    CBitmap* oldBitmap = dc.SelectObject(image.GetBitmap());
    CPen pen(PS_SOLID, 3, colour);
    CPen* oldPen = dc.SelectObject(&pen);
    StrokeDevicePath(dc, points, types);
    dc.SelectObject(oldPen);
    dc.SelectObject(oldBitmap);
    return true;
}

bool CreateCaptionFont(CFont& font) {
    return font.CreateFont("DejaVu Sans", kCaptionPixels) != 0;
}

std::string MakeContactSheet(const std::vector<std::string>& paths, C_Image& sheet) {
    std::vector<std::string> pictures;
    for (const std::string& path : paths) {
        if (IsPicture(path)) {
            pictures.push_back(path);
        }
    }
    if (pictures.empty()) {
        return "there are no pictures to show";
    }
    const long count = static_cast<long>(pictures.size());
    const long rows = (count + kColumns - 1) / kColumns;
    const long width = kColumns * (kCellWidth + kGutter) + kGutter;
    const long height = rows * (kCellHeight + kCaptionHeight + kGutter) + kGutter;
    if (!sheet.Create(width, height, 1, nullptr, 0)) {
        return "not enough memory for the sheet";
    }
    sheet.FillWithColorRef(kBackground);
    CFont font;
    if (!CreateCaptionFont(font)) {
        return "no font for the captions (DejaVu Sans)";
    }
    for (long i = 0; i < count; ++i) {
        C_Image thumbnail;
        const ImageFileResult loaded = LoadImageFile(pictures[static_cast<size_t>(i)], thumbnail);
        if (!loaded.ok) {
            return loaded.error;
        }
        if (!thumbnail.DIBResizeKeepRatio(kCellWidth, kCellHeight)) {
            return "cannot shrink " + std::filesystem::path(pictures[i]).filename().string();
        }
        // Centred in its cell; 8-bit pictures are converted through their colour tables.
        const long cellX = kGutter + (i % kColumns) * (kCellWidth + kGutter);
        const long cellY = kGutter + (i / kColumns) * (kCellHeight + kCaptionHeight + kGutter);
        sheet.DibBlt(cellX + (kCellWidth - thumbnail.Width()) / 2,
                     cellY + (kCellHeight - thumbnail.Height()) / 2, thumbnail.Width(),
                     thumbnail.Height(), &thumbnail, 0, 0, 0);
        const std::string caption = std::filesystem::path(pictures[i]).stem().string();
        if (!DrawCaption(sheet, font, cellX + 4, cellY + kCellHeight + 4, caption, 0)) {
            return "cannot draw the caption " + caption;
        }
    }
    return {};
}

}  // namespace vistrane::cli
