#pragma once

#include "config/configfile.h"
#include "tests/support/unitroot.h"

#include <QTextCodec>

/** A folder of the test's own for configuration files, and how one is read. */
class ConfigFolder {
public:
    QString folder() const { return m_dir.path(); }
    QString path(const QString& name = QStringLiteral("file.xml")) const { return m_dir.filePath(name); }
    QString write(const QByteArray& bytes) const
    {
        UnitRoot::write(path(), bytes);
        return path();
    }
    QStringList names() const
    {
        return QDir(folder()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System
                                        | QDir::NoDotAndDotDot);
    }
    void clear() const
    {
        for (const QString& name : names())
            QFile::remove(path(name)) || QDir(path(name)).removeRecursively();
    }

private:
    /** In memory where there is such a folder: thousands of files are written here. */
    static QString nameTemplate()
    {
        const QString memory = QStringLiteral("/dev/shm");
        const QString parent = QFileInfo(memory).isWritable() ? memory : QDir::tempPath();
        return parent + QStringLiteral("/tst_config-XXXXXX");
    }

    QTemporaryDir m_dir{nameTemplate()};
};

const QString korean = QString::fromUtf8("서울 방송");

/** The elements "a" and "b". */
inline FlatPattern abPattern(bool byNameAlone = false)
{
    FlatPattern result;
    result.names << QStringLiteral("a") << QStringLiteral("b");
    result.byNameAlone = byNameAlone;
    return result;
}

/** Each text that the reader gives, as "name=text"; ends at the element `last` where one is named. */
inline QStringList readAll(const QString& path, const FlatPattern& flat = abPattern(),
                           const QString& last = QString())
{
    QStringList given;
    ConfigReader reader(path);
    reader.readFlat(flat, [&](const QString& name, const QString& text) {
        given << name + QLatin1Char('=') + text;
        return name == last ? Flat::Done : Flat::More;
    });
    return given;
}

/** Reads a file without damage, so that the next damage is logged. */
inline void mend(const ConfigFolder& folder)
{
    readAll(folder.write("<config><entry></entry></config>"));
}

inline QByteArray encoded(const char* codec, const QString& text)
{
    return QTextCodec::codecForName(codec)->fromUnicode(text);
}
