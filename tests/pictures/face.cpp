#include "tests/pictures/face.h"

#include <QDataStream>
#include <QFont>
#include <QRawFont>

namespace {

constexpr quint16 versionName = 5;
constexpr quint16 twoBytesALetter = 3; // the platform whose texts are UTF-16

/** A record of the name table, in its own order. */
struct NameRecord {
    quint16 platform;
    quint16 encoding;
    quint16 language;
    quint16 name;
    quint16 length;
    quint16 offset;
};

QDataStream& operator>>(QDataStream& stream, NameRecord& record)
{
    return stream >> record.platform >> record.encoding >> record.language >> record.name >> record.length
        >> record.offset;
}

/** A text of the table whose letters are all Latin. */
QString latinText(const QByteArray& table, int begin, int length)
{
    QByteArray letters;
    for (int i = begin + 1; i < begin + length && i < table.size(); i += 2)
        letters += table[i];
    return QString::fromLatin1(letters);
}

} // namespace

QString faceVersion()
{
    const QByteArray table = QRawFont::fromFont(QFont(QStringLiteral("Unifont"))).fontTable("name");
    QDataStream stream(table);
    quint16 format = 0;
    quint16 count = 0;
    quint16 texts = 0;
    stream >> format >> count >> texts;
    for (NameRecord record; count > 0 && stream.status() == QDataStream::Ok; --count) {
        stream >> record;
        if (record.platform == twoBytesALetter && record.name == versionName)
            return latinText(table, texts + record.offset, record.length).remove(QStringLiteral("Version "));
    }
    return QString();
}
