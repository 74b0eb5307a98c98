#include "tags/pngtexts.h"

#include "tags/bytesat.h"
#include "tags/touint.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr char signature[] = "\x89PNG\r\n\x1a\n";
constexpr int signatureBytes = sizeof signature - 1;

// A chunk is the length of its data, a name, the data and a checksum.
constexpr int numberBytes = 4;
constexpr int headBytes = 2 * numberBytes;

constexpr const char* textNames[] = {"tEXt", "zTXt", "iTXt"};
constexpr char emptyText[] = "\0\0\0\0tEXt\x96\x42\xC5\x85";
constexpr int emptyTextBytes = sizeof emptyText - 1;
static_assert(emptyTextBytes == headBytes + numberBytes, "no data");

bool isText(const QByteArray& name)
{
    return std::any_of(std::begin(textNames), std::end(textNames),
                       [&name](const char* text) { return name == text; });
}

} // namespace

QByteArray withoutPngTexts(const QByteArray& imageFile)
{
    if (!imageFile.startsWith(signature))
        return imageFile;
    QByteArray kept;
    qint64 keptEnd = 0; // of the bytes that are in `kept`
    qint64 at = signatureBytes;
    while (at < imageFile.size()) {
        const qint64 dataEnd = at + headBytes + toUInt(bytesAt(imageFile, at, numberBytes), true);
        const QByteArray name = bytesAt(imageFile, at + numberBytes, numberBytes);
        if (name == "IEND")
            break; // the toolkit forgives an end that is cut
        if (dataEnd > imageFile.size())
            return {};
        const qint64 end = dataEnd + numberBytes;
        if (isText(name)) {
            if (keptEnd == 0)
                kept.reserve(imageFile.size());
            kept += bytesAt(imageFile, keptEnd, at - keptEnd);
            kept += QByteArray::fromRawData(emptyText, emptyTextBytes);
            keptEnd = end;
        }
        at = end;
    }
    return keptEnd == 0 ? imageFile : kept + bytesAt(imageFile, keptEnd, imageFile.size());
}
