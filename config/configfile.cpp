#include "config/configfile.h"

#include "app/dprintf.h"
#include "app/limits.h"
#include "app/openfile.h"
#include "app/qtcompat.h"

#include <QBuffer>
#include <QFile>
#include <QSaveFile>
#include <QXmlStreamWriter>

namespace {

QByteArray declaredEncoding(const QByteArray& bytes)
{
    QXmlStreamReader declaration(QString::fromLatin1(bytes.left(limits::declarationBytes)));
    declaration.readNext();
    return declaration.documentEncoding().toString().toLatin1();
}

/** The toolkit's XML reader knows only the Unicode encodings everywhere; a file that declares another is
 * decoded before it gets there. */
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

/** A full disk shows when the bytes are flushed; a flush that fails later, at the rename, is not noticed by
 * the toolkit. */
bool storeAll(QFileDevice& file, const QByteArray& bytes)
{
    return file.write(bytes) == bytes.size() && file.flush();
}

ConfigWrite storeFailed(const QString& path, const QFileDevice& file)
{
    DPRINTF(4, "Config write [%s] %s", path.toUtf8().constData(), file.errorString().toUtf8().constData());
    return ConfigWrite::Failed;
}

ConfigWrite notOpened(const QString& reason, QString* error)
{
    if (error)
        *error = reason;
    return ConfigWrite::NotOpened;
}

ConfigWrite writeInPlace(const QString& path, const QByteArray& bytes, QString* error)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return notOpened(file.errorString(), error);
    return storeAll(file, bytes) ? ConfigWrite::Written : storeFailed(path, file);
}

} // namespace

ConfigReader::ConfigReader(const QString& path)
    : m_path(path)
{
    QFile file(path);
    m_error = openToRead(file, QIODevice::ReadOnly | QIODevice::Text);
    if (!isOpen())
        return;
    const QByteArray bytes = file.read(limits::configFileBytes);
    if (!file.atEnd())
        DPRINTF(4, "Config read [%s] is cut at %d bytes", path.toUtf8().constData(), limits::configFileBytes);
    if (QTextCodec* codec = foreignCodec(bytes))
        m_xml.addData(codec->toUnicode(bytes));
    else
        m_xml.addData(bytes);
}

void ConfigReader::readFlat(const FlatPattern& pattern, const FlatConsumer& consumer)
{
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

bool ConfigReader::endedEarly() const
{
    if (!ended(m_xml))
        return false;
    const QString reason = m_xml.hasError() ? m_xml.errorString() : QStringLiteral("end of document");
    DPRINTF(4, "Config read [%s] ended early: %s", m_path.toUtf8().constData(), reason.toUtf8().constData());
    return true;
}

ConfigWrite writeConfig(const QString& path, const ConfigElements& elements, QString* error)
{
    const QString special = specialFileReason(path);
    if (!special.isEmpty())
        return notOpened(special, error);
    const QByteArray bytes = toXml(elements);
    QSaveFile aside(path);
    if (aside.open(QIODevice::WriteOnly)) {
        if (!storeAll(aside, bytes))
            return storeFailed(path, aside);
        if (aside.commit())
            return ConfigWrite::Written;
    }
    return writeInPlace(path, bytes, error);
}
