#include <vistrane/path/path_svg.h>

#include <algorithm>
#include <cstdio>

namespace {

void AppendPoint(std::string* out, CPoint p) {
    *out += std::to_string(p.x);
    *out += ' ';
    *out += std::to_string(p.y);
}

std::string SubPathData(const C_SubPath& sub) {
    const S_PathPoint* p = sub.GetPoints();
    const int n = sub.GetCount();
    std::string d = "M ";
    AppendPoint(&d, p[0].m_Anchor);
    const int segments = sub.IsClosed() != 0 ? n : n - 1;
    for (int i = 0; i < segments; ++i) {
        const S_PathPoint& a = p[i];
        const S_PathPoint& b = p[(i + 1) % n];
        d += " C ";
        AppendPoint(&d, a.m_Anchor + a.m_NextDirection);
        d += ' ';
        AppendPoint(&d, b.m_Anchor + b.m_PrevDirection);
        d += ' ';
        AppendPoint(&d, b.m_Anchor);
    }
    if (sub.IsClosed() != 0) {
        d += " Z";
    }
    return d;
}

CRect PathBounds(const C_PointPath& path) {
    CRect all(1, 1, 0, 0);
    bool any = false;
    for (const C_SubPath* s = path.GetFirstSubPath(); s != nullptr; s = s->GetNext()) {
        if (s->GetCount() == 0) {
            continue;
        }
        CRect box;
        s->GetBoundingRect(&box);
        if (!any) {
            all = box;
            any = true;
        } else {
            all.left = std::min(all.left, box.left);
            all.top = std::min(all.top, box.top);
            all.right = std::max(all.right, box.right);
            all.bottom = std::max(all.bottom, box.bottom);
        }
    }
    if (!any) {
        return CRect(0, 0, 1, 1);
    }
    // The box's maxima are inclusive; one pixel of margin on every side.
    return CRect(all.left - 1, all.top - 1, all.right + 2, all.bottom + 2);
}

}  // namespace

std::string PointPathToSvg(const C_PointPath& path, const CRect& viewBox) {
    const CRect box = viewBox.IsRectEmpty() ? PathBounds(path) : viewBox;
    std::string out = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    out += "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"";
    out += std::to_string(box.left) + ' ' + std::to_string(box.top) + ' ' +
           std::to_string(box.Width()) + ' ' + std::to_string(box.Height());
    out += "\" width=\"" + std::to_string(box.Width()) + "\" height=\"" +
           std::to_string(box.Height()) + "\">\n";
    out += "<rect x=\"" + std::to_string(box.left) + "\" y=\"" + std::to_string(box.top) +
           "\" width=\"100%\" height=\"100%\" fill=\"white\"/>\n";
    for (const C_SubPath* s = path.GetFirstSubPath(); s != nullptr; s = s->GetNext()) {
        if (s->GetCount() == 0) {
            continue;
        }
        out += "<path fill=\"none\" stroke=\"black\" stroke-width=\"1\" d=\"";
        out += SubPathData(*s);
        out += "\"/>\n";
    }
    out += "</svg>\n";
    return out;
}

int SavePointPathAsSvg(const C_PointPath& path, const CRect& viewBox, const char* fileName) {
    const std::string svg = PointPathToSvg(path, viewBox);
    std::FILE* f = std::fopen(fileName, "wb");
    if (f == nullptr) {
        return 0;
    }
    const bool written = std::fwrite(svg.data(), 1, svg.size(), f) == svg.size();
    const bool closed = std::fclose(f) == 0;
    return written && closed ? 1 : 0;
}
