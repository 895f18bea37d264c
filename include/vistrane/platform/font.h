#pragma once

// CFont: a scalable font face at a pixel size, for text output on a device (CDC). Faces are
// loaded with FreeType from a font file, or found by family name through fontconfig. The face
// stays loaded until DeleteObject or destruction.

#include <vistrane/export.h>
#include <vistrane/platform/types.h>

namespace vistrane::platform {
struct FontFace;
}  // namespace vistrane::platform

class VISTRANE_API CFont {
  public:
    CFont() = default;
    ~CFont();
    CFont(const CFont&) = delete;
    CFont& operator=(const CFont&) = delete;

    // `familyOrFile` names a font file when such a file exists, otherwise a family
    // ("DejaVu Sans", "serif:bold", any fontconfig pattern) resolved to the best installed
    // match. `pixelSize` is the em size in pixels (1..4096). 0 when no face could be loaded or a
    // face is loaded already.
    BOOL CreateFont(const char* familyOrFile, int pixelSize);
    BOOL CreateFromFile(const char* fileName, int pixelSize);
    // Releases the face; 0 when there was none.
    BOOL DeleteObject();

    int GetPixelSize() const;
    vistrane::platform::FontFace* GetFontFace() const { return m_Face; }

  private:
    vistrane::platform::FontFace* m_Face = nullptr;
};
