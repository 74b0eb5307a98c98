#pragma once

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

/** A unit of the test's own: an empty file tree that VIREO_ROOT names while this object lives. */
class UnitRoot {
public:
    UnitRoot()
    {
        qputenv("VIREO_ROOT", m_dir.path().toUtf8());
        QDir(m_dir.path()).mkpath(QStringLiteral("opt/orvane/conf"));
        QDir(m_dir.path()).mkpath(QStringLiteral("tmp"));
        QDir(m_dir.path()).mkpath(QStringLiteral("etc/rc.d/init.d"));
    }
    ~UnitRoot() { qunsetenv("VIREO_ROOT"); }
    UnitRoot(const UnitRoot&) = delete;
    UnitRoot& operator=(const UnitRoot&) = delete;

    /** The real path of a path of the unit, such as "/tmp/sampleRate". */
    QString path(const QString& unitPath) const { return m_dir.path() + unitPath; }
    QString conf(const QString& name) const { return path(QStringLiteral("/opt/orvane/conf/") + name); }

    /** Writes a file below the unit's configuration folder. */
    void writeConf(const QString& name, const QByteArray& bytes) const { write(conf(name), bytes); }
    QByteArray readConf(const QString& name) const { return read(conf(name)); }

    static void write(const QString& realPath, const QByteArray& bytes)
    {
        QDir().mkpath(QFileInfo(realPath).path());
        QFile file(realPath);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("cannot write %s", qPrintable(realPath));
    }
    static QByteArray read(const QString& realPath)
    {
        QFile file(realPath);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private:
    QTemporaryDir m_dir;
};
