// Drawing of the free transform frame on a device.
//
// In XOR mode a second identical call restores every pixel, which is how a host erases the
// frame before the next mouse move redraws it. The handles are 7 x 7 squares and the cross
// spans 17 pixels, with GDI's exclusive right and bottom edges and end points.

#include <vistrane/frame/free_xform_frame.h>
#include <vistrane/platform/dc.h>
#include <vistrane/platform/gdi.h>

void C_FreeXFormFrame::DoShowOnDC(CDC* dc, CRect* clip, unsigned long colour, int xorMode) {
    if (dc == nullptr || clip == nullptr) {
        return;
    }
    const CPoint oldOrigin = dc->OffsetViewportOrg(-clip->left, -clip->top);
    CBrush brush;
    brush.CreateSolidBrush(RGB(0, 0, 0));
    CPen pen;
    pen.CreatePen(PS_SOLID, 0, static_cast<COLORREF>(colour));
    CBrush* oldBrush = dc->SelectObject(&brush);
    CPen* oldPen = dc->SelectObject(&pen);
    const int oldRop = xorMode != 0 ? dc->SetROP2(R2_XORPEN) : 0;

    // Nine points: the clone vertex closes the outline.
    dc->Polyline(m_Points.data(), FXF_CloneVertex + 1);
    for (int k = FXF_TopLeft; k < FXF_CloneVertex; ++k) {
        const CPoint p = m_Points[k];
        dc->Rectangle(p.x - 3, p.y - 3, p.x + 4, p.y + 4);
    }
    const CPoint c = m_Points[FXF_Center];
    dc->Ellipse(c.x - 5, c.y - 5, c.x + 6, c.y + 6);
    dc->MoveTo(c.x - 8, c.y);
    dc->LineTo(c.x + 9, c.y);
    dc->MoveTo(c.x, c.y - 8);
    dc->LineTo(c.x, c.y + 9);

    if (xorMode != 0) {
        dc->SetROP2(oldRop);
    }
    dc->SelectObject(oldPen);
    dc->SelectObject(oldBrush);
    dc->SetViewportOrg(oldOrigin);
}

void C_FreeXFormFrame::ShowOnDC(CDC* dc, CRect* clip, C_Image* /*image*/) {
    DoShowOnDC(dc, clip, 0x808080, 1);
}
