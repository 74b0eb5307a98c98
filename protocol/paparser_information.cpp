#include "app/dprintf.h"
#include "app/utf8.h"
#include "protocol/paparser.h"

#include <iterator>

/** The handlers of the packets that carry text or numbers to show. Missing bytes read as zero. */

namespace {

/** The station's title fills this field, padded with zeros; its address follows. */
constexpr int titleFieldBytes = 256;

constexpr int addressBytes = 4;

constexpr const char* sampleRates[] = {"16KHz", "32KHz", "44.1KHz", "48KHz"};

quint8 byteAt(const QByteArray& data, int offset)
{
    return offset < data.size() ? quint8(data.at(offset)) : 0;
}

/** Two bytes, the low one first. */
int countAt(const QByteArray& data, int offset)
{
    return byteAt(data, offset) | byteAt(data, offset + 1) << 8;
}

/** Binary-coded decimal as "hh:mm:ss" or, blanks in the place of the hours, "  mm:ss". Digits are not
 * checked. */
QString playTime(const QByteArray& bcd)
{
    QString text = QString::fromLatin1(bcd.toHex());
    if (bcd.size() == 3)
        return text.insert(4, QLatin1Char(':')).insert(2, QLatin1Char(':'));
    if (bcd.size() == 2)
        return QStringLiteral("  ") + text.insert(2, QLatin1Char(':'));
    return {};
}

QString sampleRate(quint8 code)
{
    return code < std::size(sampleRates) ? QString::fromLatin1(sampleRates[code]) : QString();
}

} // namespace

void PAparser::parseFilename(QByteArray data)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    const QString name = utf8UntilZero(data);
    DPRINTF(2, "FileName [ %s ]", name.toUtf8().constData());
    emit sgFileName(name);
    // A new file name always means that it plays now; no key packet follows.
    emit sgKEY_PLAY();
}

void PAparser::parseTime(QByteArray data)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    if (data.size() < 2) {
        DPRINTF(4, "shortage, time data size");
        return;
    }
    emit sgPlayTime(playTime(data));
}

void PAparser::parseDiskInfo(QByteArray data)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    const QString files = QStringLiteral("FILES: %1").arg(countAt(data, 0));
    const QString folders = QString::number(countAt(data, 2));
    emit sgDiskInfo(folders, files);
}

void PAparser::parseIRStationInfo(QByteArray data)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    emit sgIRInfo(utf8UntilZero(data.left(titleFieldBytes)), utf8UntilZero(data.mid(titleFieldBytes)));
}

void PAparser::parseUpgradeMSG(QByteArray data)
{
    const QString text = utf8UntilZero(data);
    if (text.isEmpty()) {
        DPRINTF(4, "MSG is Nothing");
        return;
    }
    DPRINTF(2, "UPGRADE MSG [ %s ]", text.toUtf8().constData());
    emit sgUpgradeMSG(text);
}

void PAparser::parseAOEInfo(QByteArray data)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    QStringList octets;
    for (int i = 0; i < addressBytes; ++i)
        octets << QString::number(byteAt(data, i));
    emit sgAoeInfo(octets.join(QLatin1Char('.')), sampleRate(byteAt(data, addressBytes)));
}
