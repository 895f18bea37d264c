#include <vistrane/platform/font.h>

#include <fontconfig/fontconfig.h>
#include <sys/stat.h>

#include <new>
#include <string>

#include "platform/font_face.h"

namespace {

constexpr int kMaxPixelSize = 4096;

bool IsRegularFile(const char* name) {
    struct stat info {};
    return stat(name, &info) == 0 && S_ISREG(info.st_mode);
}

// The file and face index of the installed font that best matches a fontconfig pattern.
bool MatchFamily(const char* family, std::string* file, int* index) {
    FcPattern* pattern = FcNameParse(reinterpret_cast<const FcChar8*>(family));
    if (pattern == nullptr) {
        return false;
    }
    FcConfigSubstitute(nullptr, pattern, FcMatchPattern);
    FcDefaultSubstitute(pattern);
    FcResult result = FcResultNoMatch;
    FcPattern* match = FcFontMatch(nullptr, pattern, &result);
    FcPatternDestroy(pattern);
    if (match == nullptr) {
        return false;
    }
    FcChar8* path = nullptr;
    const bool found = FcPatternGetString(match, FC_FILE, 0, &path) == FcResultMatch;
    if (found) {
        *file = reinterpret_cast<const char*>(path);
        if (FcPatternGetInteger(match, FC_INDEX, 0, index) != FcResultMatch) {
            *index = 0;
        }
    }
    FcPatternDestroy(match);
    return found;
}

vistrane::platform::FontFace* LoadFace(const char* file, int index, int pixelSize) {
    auto* face = new (std::nothrow) vistrane::platform::FontFace;
    if (face == nullptr) {
        return nullptr;
    }
    if (FT_Init_FreeType(&face->m_Library) != 0) {
        delete face;
        return nullptr;
    }
    if (FT_New_Face(face->m_Library, file, index, &face->m_Face) != 0 ||
        !FT_IS_SCALABLE(face->m_Face) ||
        FT_Set_Pixel_Sizes(face->m_Face, 0, static_cast<FT_UInt>(pixelSize)) != 0) {
        FT_Done_FreeType(face->m_Library);  // also releases a face it holds
        delete face;
        return nullptr;
    }
    face->m_PixelSize = pixelSize;
    return face;
}

}  // namespace

CFont::~CFont() {
    DeleteObject();
}

BOOL CFont::CreateFromFile(const char* fileName, int pixelSize) {
    if (m_Face != nullptr || fileName == nullptr || pixelSize < 1 || pixelSize > kMaxPixelSize) {
        return 0;
    }
    m_Face = LoadFace(fileName, 0, pixelSize);
    return m_Face != nullptr ? 1 : 0;
}

BOOL CFont::CreateFont(const char* familyOrFile, int pixelSize) {
    if (familyOrFile == nullptr) {
        return 0;
    }
    if (IsRegularFile(familyOrFile)) {
        return CreateFromFile(familyOrFile, pixelSize);
    }
    if (m_Face != nullptr || pixelSize < 1 || pixelSize > kMaxPixelSize) {
        return 0;
    }
    std::string file;
    int index = 0;
    if (!MatchFamily(familyOrFile, &file, &index)) {
        return 0;
    }
    m_Face = LoadFace(file.c_str(), index, pixelSize);
    return m_Face != nullptr ? 1 : 0;
}

BOOL CFont::DeleteObject() {
    if (m_Face == nullptr) {
        return 0;
    }
    FT_Done_FreeType(m_Face->m_Library);
    delete m_Face;
    m_Face = nullptr;
    return 1;
}

int CFont::GetPixelSize() const {
    return m_Face != nullptr ? m_Face->m_PixelSize : 0;
}
