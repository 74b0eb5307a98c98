#include "config/configfile.h"

#include "app/dprintf.h"
#include "app/qtcompat.h"

#include <QBuffer>
#include <QFile>
#include <QSaveFile>
#include <QXmlStreamWriter>

#include <memory>

namespace {

/** The largest list of a unit holds some thousand stations of a few hundred bytes; what lies beyond is not
 * read. */
constexpr qint64 maxConfigBytes = 64 * 1024 * 1024;

/** The encoding declaration stands in the first line of a file. */
constexpr int declarationBytes = 256;

QByteArray declaredEncoding(const QByteArray& bytes)
{
    const QByteArray head = bytes.left(declarationBytes);
    const auto end = head.indexOf("?>");
    const auto key = head.indexOf("encoding");
    if (!head.startsWith("<?xml") || key < 0 || key > end)
        return {};
    const QByteArray value = head.mid(key, end - key);
    const char quote = value.contains('"') ? '"' : '\'';
    return value.split(quote).value(1);
}

/** The toolkit's XML reader knows only the Unicode encodings; a file that declares another is decoded before
 * it. */
QTextCodec* foreignCodec(const QByteArray& bytes)
{
    const QByteArray encoding = declaredEncoding(bytes).toUpper();
    if (encoding.isEmpty() || encoding.startsWith("UTF"))
        return nullptr;
    return QTextCodec::codecForName(encoding);
}

QByteArray toXml(const ConfigElements& elements)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QXmlStreamWriter writer(&buffer);
    writer.setAutoFormatting(true);
    writer.writeStartDocument();
    writer.writeStartElement(QStringLiteral("config"));
    for (const auto& element : elements)
        writer.writeTextElement(element.first, element.second);
    writer.writeEndElement();
    writer.writeEndDocument();
    return buffer.data();
}

ConfigWrite storeFailed(const QString& path, const QFileDevice& file)
{
    DPRINTF(4, "Config write [%s] %s", path.toUtf8().constData(), file.errorString().toUtf8().constData());
    return ConfigWrite::Failed;
}

/** A full disk shows when the bytes are flushed; what is written after that is not noticed by the toolkit. */
bool storeAll(QFileDevice& file, const QByteArray& bytes)
{
    return file.write(bytes) == bytes.size() && file.flush() && file.error() == QFileDevice::NoError;
}

} // namespace

ConfigReader::ConfigReader(const QString& path)
    : m_path(path)
{
    QFile file(path);
    m_open = file.open(QIODevice::ReadOnly | QIODevice::Text);
    if (!m_open) {
        m_error = file.errorString();
        return;
    }
    const QByteArray bytes = file.read(maxConfigBytes);
    if (QTextCodec* codec = foreignCodec(bytes))
        m_xml.addData(codec->toUnicode(bytes));
    else
        m_xml.addData(bytes);
}

void ConfigReader::readFlat(const FlatPattern& pattern, const FlatConsumer& consumer)
{
    while (!m_xml.atEnd()) {
        m_xml.readNext();
        if (m_xml.isStartElement() && m_xml.name() == QLatin1String("config"))
            readChildren(pattern, consumer);
    }
}

void ConfigReader::readChildren(const FlatPattern& pattern, const FlatConsumer& consumer)
{
    m_xml.readNext();
    while (!endedEarly()) {
        const QString name = m_xml.name().toString();
        if (m_xml.isEndElement() && name == pattern.endName)
            return;
        const bool tag = m_xml.isStartElement() || (pattern.endTagsToo && m_xml.isEndElement());
        const bool wanted = tag && pattern.names.contains(name);
        m_xml.readNext();
        if (!wanted || !m_xml.isCharacters())
            continue;
        if (consumer(name, m_xml.text().toString().simplified()) == Flat::Done)
            return;
    }
}

bool ConfigReader::endedEarly()
{
    if (!m_xml.atEnd())
        return false;
    const QString reason = m_xml.hasError() ? m_xml.errorString() : QStringLiteral("end of document");
    DPRINTF(4, "Config read [%s] ended early: %s", m_path.toUtf8().constData(), reason.toUtf8().constData());
    return true;
}

ConfigWrite writeConfig(const QString& path, const ConfigElements& elements, QString* error)
{
    const QByteArray bytes = toXml(elements);
    QSaveFile aside(path);
    if (aside.open(QIODevice::WriteOnly)) {
        if (!storeAll(aside, bytes) || !aside.commit())
            return storeFailed(path, aside);
        return ConfigWrite::Written;
    }
    QFile inPlace(path);
    if (inPlace.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return storeAll(inPlace, bytes) ? ConfigWrite::Written : storeFailed(path, inPlace);
    if (error)
        *error = inPlace.errorString();
    return ConfigWrite::NotOpened;
}
