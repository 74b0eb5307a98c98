#include "tools/supervisor/bytetext.h"

namespace {

constexpr ushort firstEscape = 0xDC00;

/** The bytes that a character takes whose first byte this is; 1 where it is none. */
int characterBytes(quint8 first)
{
    if (first >= 0xF0)
        return 4;
    if (first >= 0xE0)
        return 3;
    return first >= 0xC0 ? 2 : 1;
}

bool isEscape(const QString& text, int at)
{
    const bool paired = at > 0 && text[at - 1].isHighSurrogate();
    return text[at].unicode() >= firstEscape + 0x80 && text[at].unicode() <= firstEscape + 0xFF && !paired;
}

} // namespace

QString textOf(const QByteArray& bytes)
{
    QString text;
    for (int at = 0; at < bytes.size();) {
        const QByteArray character = bytes.mid(at, characterBytes(quint8(bytes[at])));
        const QString decoded = QString::fromUtf8(character);
        const bool isText = decoded.toUtf8() == character;
        text += isText ? decoded : QString(QChar(ushort(firstEscape + quint8(bytes[at]))));
        at += isText ? int(character.size()) : 1;
    }
    return text;
}

QByteArray bytesOf(const QString& text)
{
    QByteArray bytes;
    int from = 0;
    for (int at = 0; at < text.size(); ++at) {
        if (!isEscape(text, at))
            continue;
        bytes += text.mid(from, at - from).toUtf8() + char(text[at].unicode() & 0xFF);
        from = at + 1;
    }
    return bytes + text.mid(from).toUtf8();
}
