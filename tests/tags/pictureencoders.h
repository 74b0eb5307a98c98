#pragma once

#include <QByteArray>
#include <QImage>

#include <csetjmp>
#include <cstdio> // the encoder's header needs it
#include <cstdlib>
#include <gif_lib.h>
#include <jpeglib.h>
#include <png.h>
#include <vector>

/** Picture files of every kind that the formats know, beyond what the toolkit writes. */
namespace PictureEncoders {

struct JpegKind {
    bool isProgressive = false;
    /** Of the first colour, across and down; the others have 1. */
    int across = 1;
    int down = 1;
    J_COLOR_SPACE space = JCS_YCbCr;
    bool isArithmetic = false;
    bool isOneByOne = false; ///< a scan for each colour
    int restartRows = 0;
    int quality = 90;
};

inline J_COLOR_SPACE inputSpace(const QImage& image)
{
    switch (image.format()) {
    case QImage::Format_Grayscale8:
        return JCS_GRAYSCALE;
    case QImage::Format_RGB888:
        return JCS_RGB;
    default:
        return JCS_CMYK; // four bytes a pixel
    }
}

inline void choose(jpeg_compress_struct& encoder, const JpegKind& kind, std::vector<jpeg_scan_info>& scans)
{
    jpeg_set_defaults(&encoder);
    if (encoder.in_color_space != JCS_GRAYSCALE)
        jpeg_set_colorspace(&encoder, kind.space);
    jpeg_set_quality(&encoder, kind.quality, TRUE);
    encoder.arith_code = kind.isArithmetic;
    encoder.restart_in_rows = kind.restartRows;
    for (int i = 0; i < encoder.num_components; ++i) {
        encoder.comp_info[i].h_samp_factor = i == 0 ? kind.across : 1;
        encoder.comp_info[i].v_samp_factor = i == 0 ? kind.down : 1;
        scans.push_back({1, {i, 0, 0, 0}, 0, 63, 0, 0});
    }
    if (kind.isProgressive)
        jpeg_simple_progression(&encoder);
    if (kind.isOneByOne) {
        encoder.scan_info = scans.data();
        encoder.num_scans = int(scans.size());
    }
}

/** Grey, red-green-blue of 24 bits, or in 32 bits four inks. */
inline QByteArray jpegOf(const QImage& image, const JpegKind& kind)
{
    jpeg_compress_struct encoder;
    jpeg_error_mgr errors;
    encoder.err = jpeg_std_error(&errors); // ends the program
    jpeg_create_compress(&encoder);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&encoder, &bytes, &size);
    encoder.image_width = uint(image.width());
    encoder.image_height = uint(image.height());
    encoder.in_color_space = inputSpace(image);
    encoder.input_components = image.depth() / 8;
    std::vector<jpeg_scan_info> scans;
    choose(encoder, kind, scans);
    jpeg_start_compress(&encoder, TRUE);
    while (encoder.next_scanline < encoder.image_height) {
        JSAMPROW row = const_cast<uchar*>(image.constScanLine(int(encoder.next_scanline)));
        jpeg_write_scanlines(&encoder, &row, 1);
    }
    jpeg_finish_compress(&encoder);
    jpeg_destroy_compress(&encoder);
    const QByteArray file(reinterpret_cast<const char*>(bytes), int(size));
    std::free(bytes);
    return file;
}

struct PngKind {
    int colourType = PNG_COLOR_TYPE_RGB;
    int bits = 8;
    bool isInterlaced = false;
    bool hasTransparency = false; ///< a colour, or entries of the palette, that are transparent
};

inline void append(png_structp encoder, png_bytep bytes, std::size_t count)
{
    static_cast<QByteArray*>(png_get_io_ptr(encoder))->append(reinterpret_cast<char*>(bytes), int(count));
}

inline void describe(png_structp encoder, png_infop info, const PngKind& kind)
{
    std::vector<png_color> palette(std::size_t(1) << kind.bits % 16);
    std::vector<png_byte> transparency(palette.size() / 2 + 1);
    for (std::size_t i = 0; i < palette.size(); ++i)
        palette[i] = {png_byte(i * 37), png_byte(255 - i), png_byte(i * 101)};
    for (std::size_t i = 0; i < transparency.size(); ++i)
        transparency[i] = png_byte(i * 61);
    png_color_16 colour = {0, 7, 7, 7, 1};
    if (kind.colourType == PNG_COLOR_TYPE_PALETTE)
        png_set_PLTE(encoder, info, palette.data(), int(palette.size()));
    if (kind.hasTransparency)
        png_set_tRNS(encoder, info, transparency.data(), int(transparency.size()), &colour);
}

/** A picture of any bytes: those of `rows`, one behind the other. */
inline QByteArray pngOf(QSize size, const QByteArray& rows, const PngKind& kind)
{
    QByteArray file;
    png_structp encoder = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(encoder);
    png_set_write_fn(encoder, &file, append, nullptr);
    png_set_compression_level(encoder, 1);
    png_set_IHDR(encoder, info, png_uint_32(size.width()), png_uint_32(size.height()), kind.bits,
                 kind.colourType, kind.isInterlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    describe(encoder, info, kind);
    png_write_info(encoder, info);
    std::vector<png_bytep> lines;
    const std::size_t lineBytes = png_get_rowbytes(encoder, info);
    QByteArray bytes = rows;
    for (int y = 0; y < size.height(); ++y)
        lines.push_back(reinterpret_cast<png_bytep>(bytes.data()) + std::size_t(y) * lineBytes);
    png_set_interlace_handling(encoder);
    png_write_image(encoder, lines.data());
    png_write_end(encoder, nullptr);
    png_destroy_write_struct(&encoder, &info);
    return file;
}

struct GifKind {
    QSize screen;
    QRect picture;
    bool isInterlaced = false;
    int transparent = NO_TRANSPARENT_COLOR;
    int background = 0;
    bool hasPalette = true;
    bool hasOwnPalette = false;
};

inline int appendTo(GifFileType* encoder, const GifByteType* bytes, int count)
{
    static_cast<QByteArray*>(encoder->UserData)->append(reinterpret_cast<const char*>(bytes), count);
    return count;
}

/** Of 128 colours. */
inline ColorMapObject* paletteOf(bool isThere, int shade)
{
    if (!isThere)
        return nullptr;
    ColorMapObject* palette = GifMakeMapObject(128, nullptr);
    for (int i = 0; i < palette->ColorCount; ++i)
        palette->Colors[i] = {GifByteType(i * 2), GifByteType(255 - i), GifByteType(shade + i)};
    return palette;
}

/** A picture of any indices: those of `rows`, one behind the other. */
inline QByteArray gifOf(const QByteArray& rows, const GifKind& kind)
{
    QByteArray file;
    int error = 0;
    GifFileType* encoder = EGifOpen(&file, appendTo, &error);
    ColorMapObject* palette = paletteOf(kind.hasPalette, 0);
    ColorMapObject* ownPalette = paletteOf(kind.hasOwnPalette, 99);
    EGifSetGifVersion(encoder, true);
    EGifPutScreenDesc(encoder, kind.screen.width(), kind.screen.height(), 7, kind.background, palette);
    if (kind.transparent != NO_TRANSPARENT_COLOR) {
        const GraphicsControlBlock control = {0, false, 0, kind.transparent};
        GifByteType bytes[4];
        EGifPutExtension(encoder, GRAPHICS_EXT_FUNC_CODE, int(EGifGCBToExtension(&control, bytes)), bytes);
    }
    const QRect& picture = kind.picture;
    EGifPutImageDesc(encoder, picture.left(), picture.top(), picture.width(), picture.height(),
                     kind.isInterlaced, ownPalette);
    QByteArray indices = rows;
    for (int y = 0; y < picture.height(); ++y)
        EGifPutLine(encoder, reinterpret_cast<GifByteType*>(indices.data()) + y * picture.width(),
                    picture.width());
    EGifCloseFile(encoder, &error);
    GifFreeMapObject(palette);
    GifFreeMapObject(ownPalette);
    return file;
}

} // namespace PictureEncoders
