#include "common/font_families.h"

#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <cctype>

namespace vistrane::cli {
namespace {

std::string Lowered(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

std::size_t EditDistance(const std::string& a, const std::string& b) {
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) {
        row[j] = j;
    }
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t above = row[j];
            row[j] =
                std::min({row[j] + 1, row[j - 1] + 1, diagonal + (a[i - 1] == b[j - 1] ? 0 : 1)});
            diagonal = above;
        }
    }
    return row[b.size()];
}

}  // namespace

std::vector<std::string> InstalledFontFamilies() {
    std::vector<std::string> families;
    FcPattern* pattern = FcPatternCreate();
    FcObjectSet* objects = FcObjectSetBuild(FC_FAMILY, nullptr);
    FcFontSet* fonts = pattern && objects ? FcFontList(nullptr, pattern, objects) : nullptr;
    for (int f = 0; fonts != nullptr && f < fonts->nfont; ++f) {
        FcChar8* family = nullptr;
        for (int n = 0; FcPatternGetString(fonts->fonts[f], FC_FAMILY, n, &family) == FcResultMatch;
             ++n) {
            families.emplace_back(reinterpret_cast<const char*>(family));
        }
    }
    if (fonts != nullptr) {
        FcFontSetDestroy(fonts);
    }
    if (objects != nullptr) {
        FcObjectSetDestroy(objects);
    }
    if (pattern != nullptr) {
        FcPatternDestroy(pattern);
    }
    std::sort(families.begin(), families.end());
    families.erase(std::unique(families.begin(), families.end()), families.end());
    return families;
}

bool HasFamily(const std::string& name, const std::vector<std::string>& families) {
    const std::string wanted = Lowered(name);
    return std::any_of(families.begin(), families.end(),
                       [&](const std::string& family) { return Lowered(family) == wanted; });
}

std::vector<std::string> CloseFamilies(const std::string& name,
                                       const std::vector<std::string>& families) {
    const std::string wanted = Lowered(name);
    const std::size_t allowed = std::max<std::size_t>(2, wanted.size() / 3);
    std::vector<std::string> close;
    if (wanted.empty()) {
        return close;
    }
    for (const std::string& family : families) {
        const std::string candidate = Lowered(family);
        if (candidate.find(wanted) != std::string::npos ||
            wanted.find(candidate) != std::string::npos ||
            EditDistance(wanted, candidate) <= allowed) {
            close.push_back(family);
        }
    }
    return close;
}

}  // namespace vistrane::cli
