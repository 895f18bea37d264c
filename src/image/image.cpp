// C_Image: header kind, creation, destruction, layout and whole-image copies.

#include <vistrane/image/image.h>

#include <algorithm>
#include <cstring>

#include <vistrane/blend/gray_palette.h>

#include "image/image_size.h"

DWORD C_Image::m_SizeOfBitmapInfoHeader = 0;
int C_Image::m_UseV5HeaderType = 0;

const CRuntimeClass C_Image::classC_Image = {"C_Image", sizeof(C_Image), 1, &C_Image::CreateObject,
                                             &CObject::classCObject};

CObject* C_Image::CreateObject() {
    return new C_Image;
}

const CRuntimeClass* C_Image::GetRuntimeClass() const {
    return &classC_Image;
}

C_Image::C_Image() = default;

C_Image::~C_Image() {
    SelfDestruct();
}

C_Image& C_Image::operator=(const C_Image& other) {
    if (this == &other) {
        return *this;
    }
    m_hMap = other.m_hMap;
    m_pMapBuffer = other.m_pMapBuffer;
    m_Bitmap.m_hObject = other.m_Bitmap.m_hObject;
    m_Palette.m_hObject = other.m_Palette.m_hObject;
    m_PaintColors = other.m_PaintColors;
    m_BehavesLikeMask = other.m_BehavesLikeMask;
    m_BlendMode = other.m_BlendMode;
    m_BlendModeOption = other.m_BlendModeOption;
    m_GlobalOpacity = other.m_GlobalOpacity;
    m_pBlendColors = other.m_pBlendColors;
    m_pOpaqueMerge = other.m_pOpaqueMerge;
    std::copy(other.m_BlendResult, other.m_BlendResult + 3, m_BlendResult);
    m_pBlendDest = other.m_pBlendDest;
    std::copy(other.m_BlendSource, other.m_BlendSource + 3, m_BlendSource);
    m_SmudgeStrength = other.m_SmudgeStrength;
    m_pSmudgeColor = other.m_pSmudgeColor;
    m_pSmudgePixel = other.m_pSmudgePixel;
    m_FilterNTaps = other.m_FilterNTaps;
    std::copy(other.m_FilterTapRows, other.m_FilterTapRows + FILTER_KERNEL_TAPS, m_FilterTapRows);
    std::copy(other.m_FilterTapWeights, other.m_FilterTapWeights + FILTER_KERNEL_TAPS,
              m_FilterTapWeights);
    m_FilterSample = other.m_FilterSample;
    m_FilterPerChannel = other.m_FilterPerChannel;
    m_FilterDivisor = other.m_FilterDivisor;
    m_FilterOffset = other.m_FilterOffset;
    return *this;
}

int C_Image::CheckBitmapHeaderType() {
    m_SizeOfBitmapInfoHeader = sizeof(BITMAPINFOHEADER);
    m_UseV5HeaderType = 0;
    return 0;
}

// The version-5 header is kept as interface only; the library always writes 40-byte headers.
void C_Image::InitV5Header() {}
unsigned long C_Image::GetRenderingIntent() {
    return 0;
}
void C_Image::SetRenderingIntent(unsigned long /*intent*/) {}

int C_Image::Create(long width, long height, int trueColor, const RGBQUAD* colors,
                    unsigned long nColors) {
    // The colours may live in this image's own table, which SelfDestruct releases.
    RGBQUAD table[256];
    const bool copyColors = trueColor == 0 && colors != nullptr && nColors <= 256;
    if (copyColors) {
        std::memcpy(table, colors, nColors * sizeof(RGBQUAD));
    }
    SelfDestruct();
    const WORD bits = trueColor != 0 ? 24 : 8;
    const auto size = vistrane::image::BitmapBytes(width, height, bits, OffsetImageOnMap());
    if (!size || nColors > 256 || m_SizeOfBitmapInfoHeader == 0) {
        return 0;
    }
    // A new section's pages read as zero, so the image starts black (or index 0) with an
    // all-zero colour table without a pass over its bytes.
    m_pMapBuffer = m_Helper.AllocSysMapBuffer(&m_hMap, *size);
    if (m_pMapBuffer == nullptr) {
        return 0;
    }
    m_Helper.FillBIH(BitmapInfoHeader(), static_cast<LONG>(width), static_cast<LONG>(height), bits,
                     static_cast<DWORD>(nColors));
    if (m_UseV5HeaderType != 0) {
        InitV5Header();
    }
    if (copyColors) {
        std::memcpy(RGBQs(), table, nColors * sizeof(RGBQUAD));
    }
    if (!CreateDibSection()) {
        DestroyMap();
        return 0;
    }
    RenewPalette();
    return 1;
}

int C_Image::CreateDibSection() {
    DestroyBmp();
    HBITMAP section = CreateDIBSection(nullptr, BitmapInfo(), DIB_RGB_COLORS, nullptr, m_hMap,
                                       OffsetImageOnMap());
    if (section == nullptr) {
        return 0;
    }
    if (!m_Bitmap.Attach(section)) {
        ::DeleteObject(section);
        return 0;
    }
    return 1;
}

int C_Image::CreateMask(long width, long height) {
    m_BehavesLikeMask = 1;
    return Create(width, height, 0, glb_GrayPalette, 256);
}

int C_Image::CreateMask(C_Image* src, int forceNew, int copyContents) {
    if (src == nullptr || !src->HasImage() || src == this) {
        return 0;
    }
    int result = 0;
    if (forceNew == 0 && !CheckNeedsCreateMask(src, copyContents)) {
        result = copyContents != 0 ? Copy(src) : 1;
    } else {
        SelfDestruct();
        result = copyContents != 0 ? Clone(src) : CreateMask(src->Width(), src->Height());
    }
    if (result) {
        m_BehavesLikeMask = 1;
    }
    return result;
}

int C_Image::CheckNeedsCreateMask(C_Image* src, int copyContents) {
    if (!HasImage()) {
        return 1;
    }
    const int wantTrueColor = copyContents != 0 ? src->IsTrueColor() : 0;
    return IsTrueColor() != wantTrueColor || !SameDimensionsAs(src) ? 1 : 0;
}

void C_Image::SelfDestruct() {
    DestroyBmp();
    DestroyMap();
    FreePalette();
}

void C_Image::DestroyBmp() {
    m_Bitmap.DeleteObject();
}

void C_Image::DestroyMap() {
    if (m_hMap != 0) {
        m_Helper.FreeMapBuffer(&m_hMap, m_pMapBuffer);
        m_pMapBuffer = nullptr;
    }
}

void C_Image::FreePalette() {
    m_Palette.DeleteObject();
}

int C_Image::Clone(C_Image* src) {
    if (src == nullptr || src == this) {
        return 0;
    }
    return CreateCloneColors(src, nullptr) && Copy(src) ? 1 : 0;
}

int C_Image::Copy(C_Image* src) {
    if (src == nullptr || !HasImage() || !src->HasImage() || !SameDimensionsAs(src) ||
        IsTrueColor() != src->IsTrueColor()) {
        return 0;
    }
    GdiFlush();
    if (src != this) {
        std::memcpy(BitmapBytes(), src->BitmapBytes(), NBytesImage());
    }
    CopyPaintColors(src);
    if (!IsTrueColor()) {
        SetRGBQs(src);
    }
    return 1;
}

int C_Image::CreateCloneColors(C_Image* source, CSize* size) {
    if (source == nullptr || !source->HasImage()) {
        SelfDestruct();
        return 0;
    }
    const long width = size != nullptr ? size->cx : source->Width();
    const long height = size != nullptr ? size->cy : source->Height();
    if (source == this) {
        // Create releases this image's table before reading `colors`; it copies them first.
        return Create(width, height, IsTrueColor(), RGBQs(), NColors());
    }
    if (!Create(width, height, source->IsTrueColor(), source->RGBQs(), source->NColors())) {
        return 0;
    }
    CopyPaintColors(source);
    return 1;
}

void C_Image::TransformInto(C_Image* other, int deleteOther) {
    if (other == nullptr || other == this) {
        return;
    }
    SelfDestruct();
    m_hMap = other->m_hMap;
    m_pMapBuffer = other->m_pMapBuffer;
    m_Bitmap.Attach(other->m_Bitmap.Detach());
    other->m_hMap = 0;
    other->m_pMapBuffer = nullptr;
    other->FreePalette();
    RenewPalette();
    m_PaintColors = other->m_PaintColors;
    m_BehavesLikeMask = other->m_BehavesLikeMask;
    if (deleteOther != 0) {
        delete other;
    }
}

void C_Image::Dimensions(long* width, long* height) const {
    *width = Width();
    *height = Height();
}

void C_Image::Dimensions(CPoint* size) const {
    size->x = static_cast<LONG>(Width());
    size->y = static_cast<LONG>(Height());
}

void C_Image::Dimensions(CSize* size) const {
    size->cx = static_cast<LONG>(Width());
    size->cy = static_cast<LONG>(Height());
}

void C_Image::Rectangle(CRect* rect) const {
    rect->SetRect(0, 0, static_cast<LONG>(Width()), static_cast<LONG>(Height()));
}

void C_Image::SetProgressCallback(IMAGE_PROGRESS callback, void* context) {
    m_Progress = callback;
    m_ProgressContext = context;
}

int C_Image::SameDimensionsAs(const C_Image* other) const {
    return Width() == other->Width() && Height() == other->Height() ? 1 : 0;
}

long C_Image::Width() const {
    return HasImage() ? BitmapInfoHeader()->biWidth : 0;
}

long C_Image::Height() const {
    return HasImage() ? BitmapInfoHeader()->biHeight : 0;
}

WORD C_Image::BitCount() const {
    return HasImage() ? BitmapInfoHeader()->biBitCount : 0;
}

unsigned long C_Image::NColors() const {
    return HasImage() ? BitmapInfoHeader()->biClrUsed : 0;
}

long C_Image::NBytesScan() const {
    return HasImage() ? m_Helper.CalcNBytesScan(BitmapInfoHeader()->biWidth,
                                                BitmapInfoHeader()->biBitCount)
                      : 0;
}

unsigned long C_Image::NBytesImage() const {
    return static_cast<unsigned long>(NBytesScan()) * static_cast<unsigned long>(Height());
}

long C_Image::PixelOffset(long x, long y) const {
    return x * (IsTrueColor() ? 3 : 1) - NBytesScan() * (y + 1) + static_cast<long>(NBytesImage());
}

CPoint C_Image::PixelCoords(long offset) const {
    const long rowBytes = NBytesScan();
    const long x = offset % rowBytes;
    const long y = (static_cast<long>(NBytesImage()) + x - offset) / rowBytes - 1;
    return CPoint(static_cast<LONG>(x), static_cast<LONG>(y));
}
