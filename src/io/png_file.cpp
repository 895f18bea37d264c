// PNG files through libpng.
//
// libpng reports errors by longjmp. Every libpng call that can fail runs inside RunPngStep,
// whose setjmp is the only landing place, and the step functions it runs hold only plain
// locals, so a longjmp never skips a destructor. Everything that allocates in C++ (the image,
// row pointers, scratch rows) happens between steps. The error callback copies libpng's message
// into a fixed buffer so that failing cannot itself allocate.

#include <png.h>

#include <algorithm>
#include <csetjmp>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>

#include "io/image_file_p.h"

namespace vistrane {
namespace io {
namespace {

// Deflate turns at most 1032 bytes out of one compressed byte (a 258-byte match in two 1-bit
// codes); with slack for headers, a stream that claims more pixels than that is corrupt, and is
// rejected before the image is allocated.
constexpr std::uint64_t kMaxInflateRatio = 1040;
constexpr std::uint64_t kInflateSlackBytes = 4096;

// State shared with libpng's callbacks; plain data only, as libpng leaves through longjmp.
struct PngContext {
    const BYTE* input;
    std::size_t inputSize;
    std::size_t inputOffset;
    bool truncated;
    std::vector<BYTE>* output;
    bool outOfMemory;
    char message[256];
};

[[noreturn]] void OnPngError(png_structp png, png_const_charp message) {
    auto* context = static_cast<PngContext*>(png_get_error_ptr(png));
    std::snprintf(context->message, sizeof context->message, "%s", message);
    png_longjmp(png, 1);
}

// Warnings (a bad ancillary chunk, an unknown sRGB profile) do not change the pixels we keep.
void OnPngWarning(png_structp, png_const_charp) {}

void ReadPngBytes(png_structp png, png_bytep destination, std::size_t count) {
    auto* context = static_cast<PngContext*>(png_get_io_ptr(png));
    if (count > context->inputSize - context->inputOffset) {
        context->truncated = true;
        png_error(png, "the data ends early");
    }
    std::memcpy(destination, context->input + context->inputOffset, count);
    context->inputOffset += count;
}

void WritePngBytes(png_structp png, png_bytep data, std::size_t count) {
    auto* context = static_cast<PngContext*>(png_get_io_ptr(png));
    try {
        context->output->insert(context->output->end(), data, data + count);
    } catch (...) {
        context->outOfMemory = true;
    }
    if (context->outOfMemory) {
        png_error(png, "out of memory");
    }
}

void FlushPngBytes(png_structp) {}

bool RunPngStep(png_structp png, png_infop info, void (*step)(png_structp, png_infop, void*),
                void* argument) {
    if (setjmp(png_jmpbuf(png))) {
        return false;
    }
    step(png, info, argument);
    return true;
}

class PngReadHandle {
  public:
    explicit PngReadHandle(PngContext* context)
        : m_Png(png_create_read_struct(PNG_LIBPNG_VER_STRING, context, OnPngError, OnPngWarning)),
          m_Info(m_Png != nullptr ? png_create_info_struct(m_Png) : nullptr) {}
    ~PngReadHandle() { png_destroy_read_struct(&m_Png, &m_Info, nullptr); }
    PngReadHandle(const PngReadHandle&) = delete;
    PngReadHandle& operator=(const PngReadHandle&) = delete;
    png_structp Png() const { return m_Png; }
    png_infop Info() const { return m_Info; }

  private:
    png_structp m_Png;
    png_infop m_Info;
};

class PngWriteHandle {
  public:
    explicit PngWriteHandle(PngContext* context)
        : m_Png(png_create_write_struct(PNG_LIBPNG_VER_STRING, context, OnPngError, OnPngWarning)),
          m_Info(m_Png != nullptr ? png_create_info_struct(m_Png) : nullptr) {}
    ~PngWriteHandle() { png_destroy_write_struct(&m_Png, &m_Info); }
    PngWriteHandle(const PngWriteHandle&) = delete;
    PngWriteHandle& operator=(const PngWriteHandle&) = delete;
    png_structp Png() const { return m_Png; }
    png_infop Info() const { return m_Info; }

  private:
    png_structp m_Png;
    png_infop m_Info;
};

enum class PngTarget { GreyMask, Palette, TrueColor, TrueColorWithAlpha };

// What the header says and which image it becomes, filled by ReadPngHeader.
struct PngHeader {
    png_uint_32 width;
    png_uint_32 height;
    std::uint64_t fileRowBytes;  // one row as stored, before the filter byte
    PngTarget target;
    int paletteCount;
    png_color palette[256];
    int alphaCount;  // leading palette entries that have an alpha value
    png_byte paletteAlpha[256];
};

void ReadPngHeader(png_structp png, png_infop info, void* argument) {
    auto* header = static_cast<PngHeader*>(argument);
    png_read_info(png, info);
    header->width = png_get_image_width(png, info);
    header->height = png_get_image_height(png, info);
    header->fileRowBytes = png_get_rowbytes(png, info);
    const png_byte colorType = png_get_color_type(png, info);
    const png_byte bitDepth = png_get_bit_depth(png, info);
    const bool hasTransparency = png_get_valid(png, info, PNG_INFO_tRNS) != 0;

    if (bitDepth == 16) {
        png_set_scale_16(png);
    }
    if (colorType == PNG_COLOR_TYPE_PALETTE) {
        png_set_packing(png);
        png_colorp palette = nullptr;
        int count = 0;
        png_get_PLTE(png, info, &palette, &count);
        header->paletteCount = std::clamp(count, 0, 256);
        std::copy_n(palette, header->paletteCount, header->palette);
        header->alphaCount = 0;
        if (hasTransparency) {
            png_bytep alpha = nullptr;
            int alphaCount = 0;
            png_get_tRNS(png, info, &alpha, &alphaCount, nullptr);
            header->alphaCount = std::clamp(alphaCount, 0, header->paletteCount);
            std::copy_n(alpha, header->alphaCount, header->paletteAlpha);
        }
        header->target = PngTarget::Palette;
    } else if (colorType == PNG_COLOR_TYPE_GRAY && !hasTransparency) {
        png_set_expand_gray_1_2_4_to_8(png);
        header->target = PngTarget::GreyMask;
    } else {
        // Everything else becomes blue, green, red (and alpha) bytes in the engine's order.
        png_set_expand(png);
        png_set_gray_to_rgb(png);
        png_set_bgr(png);
        const bool hasAlpha = (colorType & PNG_COLOR_MASK_ALPHA) != 0 || hasTransparency;
        header->target = hasAlpha ? PngTarget::TrueColorWithAlpha : PngTarget::TrueColor;
    }
    png_set_interlace_handling(png);
    png_read_update_info(png, info);
    const std::uint64_t channels = header->target == PngTarget::TrueColorWithAlpha ? 4
                                   : header->target == PngTarget::TrueColor        ? 3
                                                                                   : 1;
    if (png_get_rowbytes(png, info) != channels * header->width) {
        png_error(png, "unexpected sample layout after conversion");
    }
}

// Reading on to IEND makes a file cut anywhere, even after its last pixel row, a failure.
void ReadPngRows(png_structp png, png_infop, void* argument) {
    png_read_image(png, static_cast<png_bytepp>(argument));
    png_read_end(png, nullptr);
}

// c * a / 255 over white, rounded to nearest.
BYTE OverWhite(unsigned value, unsigned alpha) {
    return static_cast<BYTE>((value * alpha + 255 * (255 - alpha) + 127) / 255);
}

std::string DescribePngFailure(const PngContext& context) {
    if (context.truncated) {
        return "truncated PNG: the data ends after " + std::to_string(context.inputSize) + " bytes";
    }
    return std::string("corrupt PNG: ") + context.message;
}

bool CreateTarget(const PngHeader& header, C_Image& image, bool& alphaFlattened) {
    const long width = static_cast<long>(header.width);
    const long height = static_cast<long>(header.height);
    switch (header.target) {
        case PngTarget::GreyMask:
            return image.CreateMask(width, height) != 0;
        case PngTarget::Palette: {
            RGBQUAD colors[256] = {};
            for (int i = 0; i < header.paletteCount; ++i) {
                const unsigned alpha = i < header.alphaCount ? header.paletteAlpha[i] : 255;
                alphaFlattened = alphaFlattened || alpha < 255;
                colors[i].rgbRed = OverWhite(header.palette[i].red, alpha);
                colors[i].rgbGreen = OverWhite(header.palette[i].green, alpha);
                colors[i].rgbBlue = OverWhite(header.palette[i].blue, alpha);
            }
            return image.Create(width, height, 0, colors,
                                static_cast<unsigned long>(header.paletteCount)) != 0;
        }
        case PngTarget::TrueColor:
        case PngTarget::TrueColorWithAlpha:
            return image.Create(width, height, 1, nullptr, 0) != 0;
    }
    return false;
}

// Blue, green, red, alpha rows of `scratch` into the image's rows, over white.
bool FlattenIntoImage(const std::vector<BYTE>& scratch, png_uint_32 width, C_Image& image) {
    bool flattened = false;
    const BYTE* source = scratch.data();
    for (long y = 0; y < image.Height(); ++y) {
        BYTE* destination = image.PixelPtr(0, y);
        for (png_uint_32 x = 0; x < width; ++x, source += 4, destination += 3) {
            const unsigned alpha = source[3];
            flattened = flattened || alpha < 255;
            destination[0] = OverWhite(source[0], alpha);
            destination[1] = OverWhite(source[1], alpha);
            destination[2] = OverWhite(source[2], alpha);
        }
    }
    return flattened;
}

// What SavePngMemory hands to the write step.
struct PngWriteJob {
    png_uint_32 width;
    png_uint_32 height;
    int colorType;
    int paletteCount;
    png_color palette[256];
    png_bytepp rows;
};

void WritePngImage(png_structp png, png_infop info, void* argument) {
    const auto* job = static_cast<const PngWriteJob*>(argument);
    png_set_IHDR(png, info, job->width, job->height, 8, job->colorType, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    // On photographs the fastest deflate level costs a few percent of size and writes about
    // four times as fast as the default level 6.
    png_set_compression_level(png, 1);
    if (job->colorType == PNG_COLOR_TYPE_PALETTE) {
        png_set_PLTE(png, info, job->palette, job->paletteCount);
    }
    png_write_info(png, info);
    if (job->colorType == PNG_COLOR_TYPE_RGB) {
        png_set_bgr(png);
    }
    png_write_image(png, job->rows);
    png_write_end(png, nullptr);
}

// A palette file must give a colour to every index it uses, so the table is extended past
// NColors() to the highest index found (the image's table always has room for 256 entries).
int PaletteEntriesNeeded(C_Image& image) {
    BYTE highest = 0;
    for (long y = 0; y < image.Height(); ++y) {
        const BYTE* row = image.PixelPtr(0, y);
        highest = std::max(highest, *std::max_element(row, row + image.Width()));
    }
    const unsigned long colors = std::min(image.NColors(), 256ul);
    return static_cast<int>(std::max<unsigned long>(colors, highest + 1ul));
}

}  // namespace
}  // namespace io

ImageFileResult LoadPngMemory(const BYTE* data, std::size_t size, C_Image& image) {
    image.SelfDestruct();
    if (ImageFileFormatFromBytes(data, size) != ImageFileFormat::Png) {
        return io::Failure("not a PNG file");
    }
    try {
        io::PngContext context{};
        context.input = data;
        context.inputSize = size;
        io::PngReadHandle handle(&context);
        if (handle.Info() == nullptr) {
            return io::Failure("out of memory");
        }
        png_set_read_fn(handle.Png(), &context, io::ReadPngBytes);

        io::PngHeader header{};
        if (!io::RunPngStep(handle.Png(), handle.Info(), io::ReadPngHeader, &header)) {
            return io::Failure(io::DescribePngFailure(context));
        }
        const std::uint64_t storedBytes = header.height * (header.fileRowBytes + 1);
        if (storedBytes > size * io::kMaxInflateRatio + io::kInflateSlackBytes) {
            return io::Failure("corrupt PNG: " + std::to_string(header.width) + " x " +
                               std::to_string(header.height) + " pixels cannot come from " +
                               std::to_string(size) + " bytes");
        }

        ImageFileResult result = io::Success();
        if (!io::CreateTarget(header, image, result.alphaFlattened)) {
            image.SelfDestruct();
            return io::Failure("cannot make a " + std::to_string(header.width) + " x " +
                               std::to_string(header.height) +
                               " image: too large or out of memory");
        }
        std::vector<BYTE> scratch;
        std::vector<png_bytep> rows(header.height);
        if (header.target == io::PngTarget::TrueColorWithAlpha) {
            const std::size_t rowBytes = std::size_t{4} * header.width;
            scratch.resize(rowBytes * header.height);
            for (png_uint_32 y = 0; y < header.height; ++y) {
                rows[y] = scratch.data() + rowBytes * y;
            }
        } else {
            for (png_uint_32 y = 0; y < header.height; ++y) {
                rows[y] = image.PixelPtr(0, static_cast<long>(y));
            }
        }
        if (!io::RunPngStep(handle.Png(), handle.Info(), io::ReadPngRows, rows.data())) {
            image.SelfDestruct();
            return io::Failure(io::DescribePngFailure(context));
        }
        if (header.target == io::PngTarget::TrueColorWithAlpha) {
            result.alphaFlattened = io::FlattenIntoImage(scratch, header.width, image);
        }
        return result;
    } catch (...) {
        image.SelfDestruct();
        return io::Failure(io::DescribeCurrentException("read", "PNG data"));
    }
}

ImageFileResult SavePngMemory(C_Image& image, std::vector<BYTE>& out) {
    if (!image.HasImage()) {
        return io::Failure("the image is empty");
    }
    try {
        io::PngWriteJob job{};
        job.width = static_cast<png_uint_32>(image.Width());
        job.height = static_cast<png_uint_32>(image.Height());
        if (image.IsTrueColor()) {
            job.colorType = PNG_COLOR_TYPE_RGB;
        } else if (image.IsMask()) {
            job.colorType = PNG_COLOR_TYPE_GRAY;
        } else {
            job.colorType = PNG_COLOR_TYPE_PALETTE;
            job.paletteCount = io::PaletteEntriesNeeded(image);
            const RGBQUAD* colors = image.RGBQs();
            for (int i = 0; i < job.paletteCount; ++i) {
                job.palette[i] = {colors[i].rgbRed, colors[i].rgbGreen, colors[i].rgbBlue};
            }
        }
        std::vector<png_bytep> rows(job.height);
        for (png_uint_32 y = 0; y < job.height; ++y) {
            rows[y] = image.PixelPtr(0, static_cast<long>(y));
        }
        job.rows = rows.data();

        std::vector<BYTE> encoded;
        io::PngContext context{};
        context.output = &encoded;
        io::PngWriteHandle handle(&context);
        if (handle.Info() == nullptr) {
            return io::Failure("out of memory");
        }
        png_set_write_fn(handle.Png(), &context, io::WritePngBytes, io::FlushPngBytes);
        if (!io::RunPngStep(handle.Png(), handle.Info(), io::WritePngImage, &job)) {
            return io::Failure(std::string("cannot encode PNG: ") + context.message);
        }
        out = std::move(encoded);
        return io::Success();
    } catch (...) {
        return io::Failure(io::DescribeCurrentException("write", "PNG data"));
    }
}

ImageFileResult LoadPng(const std::string& path, C_Image& image) {
    std::vector<BYTE> bytes;
    ImageFileResult read = io::ReadWholeFile(path, bytes);
    if (!read.ok) {
        image.SelfDestruct();
        return read;
    }
    return LoadPngMemory(bytes.data(), bytes.size(), image);
}

ImageFileResult SavePng(const std::string& path, C_Image& image) {
    std::vector<BYTE> bytes;
    ImageFileResult encoded = SavePngMemory(image, bytes);
    if (!encoded.ok) {
        return encoded;
    }
    return io::WriteWholeFile(path, bytes);
}

}  // namespace vistrane
