#include "app/limits.h"
#include "tags/bytesat.h"
#include "tags/nearestpixels.h"
#include "tags/picturerows.h"

#include <QtEndian>

#include <csetjmp>
#include <cstring>
#include <optional>
#include <png.h>

namespace {

/** What the decoder's functions have to find again. */
struct Gathering {
    QSize size;
    int width = 0;
    bool isInterlaced = false;
    bool isWhole = false;
    qint64 missingRows = 0;
    std::optional<NearestPixels> pixels;
};

Gathering& gatheringOf(png_structp decoder)
{
    return *static_cast<Gathering*>(png_get_progressive_ptr(decoder));
}

[[noreturn]] void giveUp(png_structp decoder, png_const_charp)
{
    png_longjmp(decoder, 1);
}

void sayNothing(png_structp, png_const_charp) { }

/** Has rows come as red, green, blue and transparency, of 8 or 16 bits each, whatever they are in the file.
 */
QImage::Format chooseFormat(png_structp decoder, png_infop info)
{
    const bool isDeep = png_get_bit_depth(decoder, info) == 16;
    png_set_expand(decoder);
    png_set_gray_to_rgb(decoder);
    png_set_add_alpha(decoder, isDeep ? 0xFFFF : 0xFF, PNG_FILLER_AFTER);
    if (isDeep && Q_BYTE_ORDER == Q_LITTLE_ENDIAN)
        png_set_swap(decoder);
    return isDeep ? QImage::Format_RGBA64 : QImage::Format_RGBA8888;
}

/** An interlaced picture comes as seven pictures, each with some of the columns of some of the rows. */
qint64 interlacedRows(qint64 width, qint64 height)
{
    qint64 rows = 0;
    for (int pass = 0; pass < PNG_INTERLACE_ADAM7_PASSES; ++pass)
        rows += PNG_PASS_COLS(width, pass) > 0 ? PNG_PASS_ROWS(height, pass) : 0;
    return rows;
}

void begin(png_structp decoder, png_infop info)
{
    const qint64 width = png_get_image_width(decoder, info);
    const qint64 height = png_get_image_height(decoder, info);
    if (width * height > limits::picturePixels
        || qint64(png_get_rowbytes(decoder, info)) * height > limits::pngBytes)
        png_error(decoder, "too large");
    Gathering& gathering = gatheringOf(decoder);
    gathering.width = int(width);
    gathering.isInterlaced = png_get_interlace_type(decoder, info) != PNG_INTERLACE_NONE;
    gathering.missingRows = gathering.isInterlaced ? interlacedRows(width, height) : height;
    gathering.pixels.emplace(QSize(int(width), int(height)), gathering.size, chooseFormat(decoder, info));
    png_read_update_info(decoder, info);
}

void takeRow(png_structp decoder, png_bytep bytes, png_uint_32 row, int pass)
{
    Gathering& gathering = gatheringOf(decoder);
    NearestPixels::Columns columns;
    int y = int(row);
    int width = gathering.width;
    if (gathering.isInterlaced) {
        columns = {PNG_PASS_START_COL(pass), PNG_PASS_COL_OFFSET(pass)};
        y = int(PNG_ROW_FROM_PASS_ROW(row, pass));
        width = int(PNG_PASS_COLS(gathering.width, pass));
    }
    const QImage::Format format = gathering.pixels->image().format();
    const int bytesPerPixel = gathering.pixels->image().depth() / 8;
    gathering.pixels->take(y, QImage(bytes, width, 1, width * bytesPerPixel, format), 0, columns);
    --gathering.missingRows;
}

void end(png_structp decoder, png_infop)
{
    Gathering& gathering = gatheringOf(decoder);
    gathering.isWhole = gathering.missingRows == 0;
}

// A part of a file: the length of its data, its name, the data, a checksum.
constexpr int lengthBytes = 4;
constexpr int partStartBytes = 8;
constexpr int checksumBytes = 4;

/** Where the part stands that ends a file; nothing where the parts before it are longer than the file. */
std::optional<qint64> findEnd(const QByteArray& file)
{
    constexpr int firstPartAt = 8;
    constexpr char name[] = "IEND";
    for (qint64 at = firstPartAt; at + partStartBytes <= file.size();) {
        const char* part = file.constData() + at;
        if (std::memcmp(part + lengthBytes, name, sizeof name - 1) == 0)
            return at;
        at += partStartBytes + qint64(qFromBigEndian<quint32>(part)) + checksumBytes;
    }
    return std::nullopt;
}

bool beginsWithHeader(const QByteArray& file)
{
    constexpr int nameAt = 12;
    constexpr char name[] = "IHDR";
    return bytesAt(file, nameAt, sizeof name - 1) == name;
}

/** Returns early where the decoder gives up, by a jump that no destructor sees: what has one is elsewhere. */
void decode(png_structp decoder, png_infop info, const QByteArray& start, const QByteArray& rest)
{
    if (setjmp(png_jmpbuf(decoder)) != 0)
        return;
    for (const QByteArray* bytes : {&start, &rest}) {
        auto* data = reinterpret_cast<png_bytep>(const_cast<char*>(bytes->constData())); // it only reads them
        png_process_data(decoder, info, data, std::size_t(bytes->size()));
    }
}

/** The toolkit does without the last checksum, where that is missing or broken off. */
void decode(png_structp decoder, png_infop info, const QByteArray& file, qint64 endAt)
{
    constexpr char checksum[] = "\xAE\x42\x60\x82";
    const qint64 checksumAt = endAt + partStartBytes;
    const bool isWhole = checksumAt + checksumBytes <= file.size();
    decode(decoder, info, bytesAt(file, 0, isWhole ? file.size() : checksumAt),
           isWhole ? QByteArray() : QByteArray(checksum));
}

} // namespace

/**
 * The decoder is handed the bytes, as it then stops at the last row. Reading by itself it would unpack what
 * is packed behind that, gigabytes if somebody means harm.
 */
QImage PictureRows::png(const QByteArray& file, QSize size)
{
    if (!beginsWithHeader(file))
        return {}; // the decoder asks for it only before parts that are not passed over here
    const auto endAt = findEnd(file);
    if (!endAt)
        return {}; // the decoder would keep a part that breaks off twice, and wait for the rest
    Gathering gathering;
    gathering.size = size;
    png_structp decoder = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, giveUp, sayNothing);
    png_infop info = png_create_info_struct(decoder);
    png_set_option(decoder, PNG_MAXIMUM_INFLATE_WINDOW, PNG_OPTION_ON);
    png_set_keep_unknown_chunks(decoder, PNG_HANDLE_CHUNK_NEVER, nullptr, -1); // texts, camera data, profiles
    png_set_progressive_read_fn(decoder, &gathering, begin, takeRow, end);
    decode(decoder, info, file, *endAt);
    png_destroy_read_struct(&decoder, &info, nullptr);
    return gathering.isWhole ? gathering.pixels->image() : QImage();
}
