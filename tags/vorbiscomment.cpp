#include "tags/vorbiscomment.h"

#include "app/dprintf.h"
#include "app/limits.h"
#include "app/utf8.h"
#include "tags/bytesat.h"
#include "tags/touint.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr qint64 numberBytes = 4;
/** Room for the longest text that is shown, with the longest key before it that can mean one of the fields.
 */
constexpr qint64 maxCommentBytes = 3LL * limits::textCharacters + 64;

struct Field {
    const char* key;
    QString* VorbisCommentSink::*text;
};

constexpr Field fields[] = {
    {"TITLE", &VorbisCommentSink::title},
    {"ARTIST", &VorbisCommentSink::artist},
    {"ALBUM", &VorbisCommentSink::album},
};
static_assert(std::size(fields) == 3, "one row a text of the sink");

quint32 numberAt(const QByteArray& block, qint64 position)
{
    return toUInt(bytesAt(block, position, numberBytes), false);
}

/** The part of `text` between its first "=" and the second one or the end. */
QString valueOf(const QString& text, qint64 equals)
{
    const QString rest = text.mid(int(equals) + 1);
    return rest.left(rest.indexOf(QLatin1Char('='))); // none: all of it
}

void storeComment(const QString& text, const VorbisCommentSink& sink)
{
    const auto equals = text.indexOf(QLatin1Char('='));
    if (equals < 0)
        return;
    const QString key = text.left(equals);
    for (const Field& field : fields) {
        if (key.compare(QLatin1String(field.key), Qt::CaseInsensitive) != 0)
            continue;
        QString& stored = *(sink.*field.text);
        stored = valueOf(text, equals).left(limits::textCharacters);
        DPRINTF(2, "%s%s - %s", sink.prefix, field.key, stored.toLatin1().constData());
    }
}

void walkComments(const QByteArray& block, qint64 position, quint32 count, VorbisCommentSink& sink)
{
    for (; count > 0 && sink.commentsLeft > 0; --count, --sink.commentsLeft) {
        const qint64 begin = position + numberBytes;
        const qint64 length = numberAt(block, position);
        position = begin + length;
        if (position > block.size())
            return;
        const QByteArray comment = bytesAt(block, begin, std::min(length, maxCommentBytes));
        sink.bytesLeft -= comment.size();
        if (sink.bytesLeft < 0)
            return;
        storeComment(utf8UntilZero(comment), sink);
    }
}

} // namespace

bool readVorbisComments(const QByteArray& block, qint64 start, VorbisCommentSink& sink)
{
    const qint64 vendorAt = start + numberBytes;
    const qint64 vendorBytes = numberAt(block, start);
    const QByteArray vendor = bytesAt(block, vendorAt, std::min(vendorBytes, maxCommentBytes));
    DPRINTF(2, "%s%s", sink.vendorPrefix, utf8UntilZero(vendor).toUtf8().constData());

    const qint64 countAt = vendorAt + vendorBytes;
    const quint32 count = numberAt(block, countAt);
    const int limit = (int(block.size()) - 8) / 4;
    if (qint64(count) > limit) {
        // a count from half of the range on shows negative
        DPRINTF(3, "%sVorbis size error %d > %d", sink.prefix, int(count), limit);
        return false;
    }
    walkComments(block, countAt + numberBytes, count, sink);
    return true;
}
