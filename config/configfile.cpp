#include "config/configfile.h"

#include "app/dprintf.h"
#include "app/limits.h"
#include "app/openfile.h"
#include "app/qtcompat.h"
#include "config/xmlbounds.h"

#include <QBuffer>
#include <QFile>
#include <QXmlStreamWriter>

namespace {

QByteArray declaredEncoding(const QByteArray& bytes)
{
    QXmlStreamReader declaration(QString::fromLatin1(bytes.left(limits::declarationBytes)));
    declaration.readNext();
    return declaration.documentEncoding().toString().toLatin1();
}

/** How files begin that spend several bytes on every character; longer beginnings first. */
struct WideStart {
    const char* bytes;
    int length;
    const char* codec;
};
constexpr WideStart wideStarts[] = {
    {"\xFF\xFE\0\0", 4, "UTF-32"}, {"\0\0\xFE\xFF", 4, "UTF-32"}, {"<\0\0\0", 4, "UTF-32LE"},
    {"\0\0\0<", 4, "UTF-32BE"},    {"\xFF\xFE", 2, "UTF-16"},     {"\xFE\xFF", 2, "UTF-16"},
    {"<\0", 2, "UTF-16LE"},        {"\0<", 2, "UTF-16BE"},
};

/** What decodes a file that is not UTF-8; nothing where it is, or where the encoding is unknown. */
QTextCodec* foreignCodec(const QByteArray& bytes)
{
    for (const WideStart& start : wideStarts)
        if (bytes.startsWith(QByteArray::fromRawData(start.bytes, start.length)))
            return QTextCodec::codecForName(start.codec);
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

} // namespace

ConfigReader::ConfigReader(const QString& path)
    : m_path(path)
{
    QFile file(path);
    m_error = openToRead(file, QIODevice::ReadOnly | QIODevice::Text);
    if (!isOpen())
        return;
    m_sizeLine.watch(path + QLatin1String(" size"));
    m_endLine.watch(path);
    const QByteArray bytes = file.read(limits::configFileBytes);
    if (!file.atEnd())
        m_sizeLine.log(
            QStringLiteral("Config read [%1] is cut at %2 bytes").arg(path).arg(limits::configFileBytes));
    if (QTextCodec* codec = foreignCodec(bytes))
        feed(codec->toUnicode(bytes));
    else
        feed(bytes);
}

template <typename Document> void ConfigReader::feed(const Document& document)
{
    const XmlPart part = boundedPart(document);
    m_bound = QLatin1String(part.reason);
    m_xml.addData(document.left(part.length));
}

void ConfigReader::readFlat(const FlatPattern& pattern, const FlatConsumer& consumer)
{
    if (isOpen())
        m_endLine.watch(m_path + QLatin1Char(' ') + pattern.names.join(QLatin1Char(' ')));
    while (!ended(m_xml)) {
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
        const bool counts = pattern.byNameAlone || m_xml.isStartElement();
        const bool wanted = counts && pattern.names.contains(name);
        m_xml.readNext();
        if (!wanted || !m_xml.isCharacters())
            continue;
        if (consumer(name, m_xml.text().toString().simplified()) == Flat::Done)
            return;
    }
}

bool ConfigReader::ended(const QXmlStreamReader& xml)
{
    return xml.tokenType() == QXmlStreamReader::EndDocument || xml.hasError();
}

bool ConfigReader::endedEarly()
{
    if (!ended(m_xml))
        return false;
    m_endLine.log(QStringLiteral("Config read [%1] ended early: %2").arg(m_path, endReason()));
    return true;
}

QString ConfigReader::endReason() const
{
    if (!m_xml.hasError())
        return QStringLiteral("end of document");
    const bool atBound = m_xml.error() == QXmlStreamReader::PrematureEndOfDocumentError && !m_bound.isEmpty();
    return atBound ? m_bound : m_xml.errorString();
}

ConfigWrite writeConfig(const QString& path, const ConfigElements& elements, QString* error)
{
    QString reason;
    const ConfigWrite result = replaceFile(path, toXml(elements), reason);
    if (result == ConfigWrite::Failed)
        DPRINTF(4, "Config write [%s] %s", path.toUtf8().constData(), reason.toUtf8().constData());
    if (result == ConfigWrite::NotOpened && error)
        *error = reason;
    return result;
}
