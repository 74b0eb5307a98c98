#include "app/limits.h"
#include "tags/coverpicture.h"
#include "tags/jpegcoefficients.h"
#include "tags/jpegframe.h"
#include "tags/nearestpixels.h"
#include "tags/picturerows.h"

#include <algorithm>
#include <array>
#include <csetjmp>
#include <cstdio> // the decoder's header needs it
#include <cstring>
#include <jpeglib.h>
#include <memory>
#include <optional>

namespace {

/** A block coded arithmetically costs as much as so many others. */
constexpr int arithmeticWeight = 256;

struct Errors : jpeg_error_mgr {
    std::jmp_buf giveUp;
};

/** For each pixel of a cover its block and two neighbours in each direction, of four colours. */
constexpr qint64 mostNeededBlocks = 4LL * (3 * coverPixels) * (3 * coverPixels);

/** A block of the file becomes so many pixels in each direction. */
constexpr int wholeBlock = DCTSIZE;

/** What the decoder's functions have to find again. */
struct Gathering {
    QSize size;
    int blockPixels = wholeBlock;
    std::optional<NearestPixels> pixels;
    QImage row;
    std::vector<std::unique_ptr<JpegCoefficients>> colours;
};

[[noreturn]] void giveUp(j_common_ptr decoder)
{
    std::longjmp(static_cast<Errors*>(decoder->err)->giveUp, 1);
}

void sayNothing(j_common_ptr) { }

struct Colours {
    J_COLOR_SPACE space = JCS_UNKNOWN;
    QImage::Format format = QImage::Format_Invalid;
};

/** By the number of a file's components; four inks are a byte each, in four bytes a pixel. */
constexpr std::array<Colours, 5> colours = {{
    {},
    {JCS_GRAYSCALE, QImage::Format_Grayscale8},
    {},
    {JCS_RGB, QImage::Format_RGB888},
    {JCS_CMYK, QImage::Format_RGB32},
}};

/** Cyan, magenta, yellow and black, which files hold inverted. */
QImage printed(QImage inks)
{
    for (int y = 0; y < inks.height(); ++y) {
        for (int x = 0; x < inks.width(); ++x) {
            uchar* ink = inks.scanLine(y) + x * 4;
            const int black = ink[3];
            const QRgb colour = qRgb(black * ink[0] / 255, black * ink[1] / 255, black * ink[2] / 255);
            std::memcpy(ink, &colour, sizeof colour);
        }
    }
    return inks;
}

/**
 * Which of `count` blocks are needed for the pixels at `places`, where the colour has `samples` in as many
 * pixels as the finest colour has `finest`. A coarse colour is smoothed: its pixels need their neighbours,
 * too.
 */
std::vector<bool> neededBlocks(std::size_t count, const std::vector<int>& places, int blockPixels,
                               int samples, int finest)
{
    std::vector<bool> needed(count);
    for (const int place : places) {
        for (const int pixel : {std::max(place - finest, 0), place, place + finest}) {
            const int block = pixel * samples / (finest * blockPixels);
            needed[std::min(std::size_t(block), count - 1)] = true;
        }
    }
    return needed;
}

/** Called once for each colour, in their order. */
jvirt_barray_ptr requestBlocks(j_common_ptr decoder, int, boolean, JDIMENSION columns, JDIMENSION rows,
                               JDIMENSION atOnce)
{
    // The decoder's own way, but for its stricter alignment on some processors.
    const auto* all = static_cast<const jpeg_decompress_struct*>(static_cast<const void*>(decoder));
    auto* gathering = static_cast<Gathering*>(decoder->client_data);
    const NearestPixels& pixels = *gathering->pixels;
    const int side = gathering->blockPixels;
    const jpeg_component_info& colour = all->comp_info[gathering->colours.size()];
    gathering->colours.push_back(std::make_unique<JpegCoefficients>(
        neededBlocks(rows, pixels.rows(), side, colour.v_samp_factor, all->max_v_samp_factor),
        neededBlocks(columns, pixels.columns(), side, colour.h_samp_factor, all->max_h_samp_factor), atOnce));
    return reinterpret_cast<jvirt_barray_ptr>(gathering->colours.back().get());
}

JBLOCKARRAY accessBlocks(j_common_ptr, jvirt_barray_ptr blocks, JDIMENSION first, JDIMENSION count,
                         boolean writable)
{
    static_assert(sizeof(JBLOCK) == sizeof(JpegCoefficients::Block));
    auto* colour = reinterpret_cast<JpegCoefficients*>(blocks);
    JpegCoefficients::Block* const* const rows =
        writable ? colour->rowsToWrite(first, count) : colour->rowsToRead(first);
    return reinterpret_cast<JBLOCKARRAY>(const_cast<JpegCoefficients::Block**>(rows));
}

/** False where nothing shows so many colours. */
bool prepare(jpeg_decompress_struct& decoder, Gathering& gathering)
{
    const auto components = std::size_t(decoder.num_components);
    const Colours colour = components < colours.size() ? colours[components] : Colours();
    if (colour.space == JCS_UNKNOWN)
        return false;
    decoder.out_color_space = colour.space;
    decoder.scale_num = uint(gathering.blockPixels);
    decoder.scale_denom = wholeBlock;
    jpeg_calc_output_dimensions(&decoder);
    const QSize picture(int(decoder.output_width), int(decoder.output_height));
    gathering.row = QImage(picture.width(), 1, colour.format);
    gathering.pixels.emplace(picture, gathering.size, colour.format);
    return true;
}

/** False where the decoder gives up, by a jump that no destructor sees: what has one stands in `gathering`.
 */
bool decode(jpeg_decompress_struct& decoder, Errors& errors, Gathering& gathering)
{
    if (setjmp(errors.giveUp) != 0)
        return false;
    jpeg_read_header(&decoder, TRUE);
    if (!prepare(decoder, gathering))
        return false;
    jpeg_start_decompress(&decoder);
    while (decoder.output_scanline < decoder.output_height) {
        const int y = int(decoder.output_scanline);
        JSAMPROW row = gathering.row.bits();
        jpeg_read_scanlines(&decoder, &row, 1);
        gathering.pixels->take(y, gathering.row);
    }
    jpeg_finish_decompress(&decoder);
    return true;
}

/** Whether the time for a file's scans and the memory for what is held between them is bounded. */
bool isAffordable(const JpegFrame& frame, qint64 fileBytes)
{
    const qint64 needed = std::min(frame.blocks, mostNeededBlocks) * qint64(sizeof(JpegCoefficients::Block));
    const qint64 held = frame.holdsCoefficients ? needed + frame.blocks * JpegCoefficients::packedBytes : 0;
    return frame.scans <= limits::jpegScans
        && frame.visits * (frame.isArithmetic ? arithmeticWeight : 1) <= limits::jpegBlocks
        && fileBytes + held <= limits::pictureBytes
        && (!frame.holdsCoefficients || fileBytes <= limits::jpegScansBytes);
}

/** A large picture is reduced by the decoder, but not below `size`. */
int blockPixels(QSize picture, QSize size)
{
    if (qint64(picture.width()) * picture.height() <= limits::jpegPixels)
        return wholeBlock;
    const auto enough = [](int side, int scaled) { return (wholeBlock * scaled + side - 1) / side; };
    return std::min(wholeBlock,
                    std::max(enough(picture.width(), size.width()), enough(picture.height(), size.height())));
}

} // namespace

QImage PictureRows::jpeg(const QByteArray& file, QSize size)
{
    const auto frame = jpegFrame(file);
    if (!frame || frame->pixels.isEmpty() || !isAffordable(*frame, file.size()))
        return {};
    Gathering gathering;
    gathering.size = size;
    gathering.blockPixels = blockPixels(frame->pixels, size);
    Errors errors;
    jpeg_decompress_struct decoder;
    decoder.err = jpeg_std_error(&errors);
    errors.error_exit = giveUp;
    errors.output_message = sayNothing;
    decoder.client_data = &gathering;
    jpeg_create_decompress(&decoder);
    decoder.mem->request_virt_barray = requestBlocks;
    decoder.mem->access_virt_barray = accessBlocks;
    jpeg_mem_src(&decoder, reinterpret_cast<const uchar*>(file.constData()), ulong(file.size()));
    const bool isWhole = decode(decoder, errors, gathering);
    const bool hasInks = decoder.out_color_space == JCS_CMYK;
    jpeg_destroy_decompress(&decoder);
    if (!isWhole)
        return {};
    return hasInks ? printed(gathering.pixels->image()) : gathering.pixels->image();
}
