#include "tests/config/configfolder.h"
#include "tests/config/privileges.h"
#include "tests/support/configbytes.h"
#include "tests/support/logcatcher.h"
#include "tests/support/panelmain.h"

#include <sys/stat.h>
#include <sys/wait.h>

using ConfigBytes::declaration;

namespace {

/** A process that writes a short and a long configuration file in turn until it is killed. */
class LoopingWriter {
public:
    explicit LoopingWriter(const QString& path)
    {
        if (::pipe(m_progress) != 0)
            qFatal("no pipe");
        m_pid = ::fork();
        if (m_pid == 0)
            writeForEver(path);
        ::close(m_progress[1]);
    }
    ~LoopingWriter() { ::close(m_progress[0]); }
    LoopingWriter(const LoopingWriter&) = delete;
    LoopingWriter& operator=(const LoopingWriter&) = delete;

    /** Waits until it has written `files` files. */
    bool hasWritten(int files) const
    {
        char dot = 0;
        while (files > 0 && ::read(m_progress[0], &dot, 1) == 1)
            --files;
        return files == 0;
    }
    void kill() const
    {
        ::kill(m_pid, SIGKILL);
        ::waitpid(m_pid, nullptr, 0);
    }
    static QByteArray file(int i)
    {
        return declaration + "<config>\n    <a>" + text(i) + "</a>\n</config>\n";
    }

private:
    static QByteArray text(int i) { return i == 0 ? QByteArray(10, 'x') : QByteArray(60000, 'y'); }
    [[noreturn]] void writeForEver(const QString& path) const
    {
        for (int i = 0;; i = 1 - i) {
            const ConfigElements elements{{QStringLiteral("a"), QString::fromLatin1(text(i))}};
            if (writeConfig(path, elements) != ConfigWrite::Written || ::write(m_progress[1], ".", 1) != 1)
                ::_exit(1);
        }
    }

    int m_progress[2] = {-1, -1};
    pid_t m_pid = -1;
};

} // namespace

class ConfigWriterTest : public QObject {
    Q_OBJECT

private:
    ConfigFolder m_folder;

private slots:
    void cleanup() { m_folder.clear(); }

    void aFifoIsNeitherReadNorWritten()
    {
        QCOMPARE(::mkfifo(m_folder.path().toUtf8().constData(), 0600), 0);
        const ConfigReader reader(m_folder.path());
        QCOMPARE(reader.errorString(), QStringLiteral("Not a regular file"));
        QString error;
        QCOMPARE(writeConfig(m_folder.path(), {}, &error), ConfigWrite::NotOpened);
        QCOMPARE(error, QStringLiteral("Not a regular file"));
        QCOMPARE(m_folder.names(), QStringList(QStringLiteral("file.xml")));
        struct stat status = {};
        QCOMPARE(::stat(m_folder.path().toUtf8().constData(), &status), 0);
        QVERIFY(S_ISFIFO(status.st_mode));
    }

    void aLinkToAPipeLeavesThePipe()
    {
        const QString pipe = m_folder.path(QStringLiteral("pipe"));
        QCOMPARE(::mkfifo(pipe.toUtf8().constData(), 0600), 0);
        QVERIFY(QFile::link(pipe, m_folder.path()));
        QCOMPARE(writeConfig(m_folder.path(), {}), ConfigWrite::NotOpened);
        QVERIFY(QFileInfo(m_folder.path()).isSymLink());
        struct stat status = {};
        QCOMPARE(::stat(pipe.toUtf8().constData(), &status), 0);
        QVERIFY(S_ISFIFO(status.st_mode));
        QVERIFY(QFile::remove(pipe));
    }

    void writtenBytes_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QByteArray>("line");
        QTest::newRow("a word") << "usb" << QByteArray("<type>usb</type>");
        QTest::newRow("Korean") << korean << QByteArray("<type>") + korean.toUtf8() + "</type>";
        QTest::newRow("empty") << "" << QByteArray("<type></type>");
        QTest::newRow("markup") << "<a> & b" << QByteArray("<type>&lt;a&gt; &amp; b</type>");
        QTest::newRow("quotes") << "\"a\" 'b'" << QByteArray("<type>&quot;a&quot; 'b'</type>");
        QTest::newRow("an address") << "http://a/?b=1&c=2"
                                    << QByteArray("<type>http://a/?b=1&amp;c=2</type>");
    }
    void writtenBytes()
    {
        QFETCH(QString, text);
        QFETCH(QByteArray, line);
        QCOMPARE(writeConfig(m_folder.path(), {{QStringLiteral("type"), text}}), ConfigWrite::Written);
        QCOMPARE(UnitRoot::read(m_folder.path()), declaration + "<config>\n    " + line + "\n</config>\n");
    }

    void whatIsWrittenReadsTheSame()
    {
        const QStringList texts{QStringLiteral("<&>\"']]>&amp;"), korean, QStringLiteral("a b"),
                                QString::fromUtf8("é 😀"), QStringLiteral("%1 %s \\n")};
        ConfigElements elements;
        QStringList expected;
        for (const QString& text : texts) {
            elements << qMakePair(QStringLiteral("a"), text);
            expected << QStringLiteral("a=") + text;
        }
        QCOMPARE(writeConfig(m_folder.path(), elements), ConfigWrite::Written);
        LogCatcher log;
        QCOMPARE(readAll(m_folder.path()), expected);
    }

    void oldContentIsDiscarded()
    {
        m_folder.write(QByteArray(100000, 'x'));
        QFile::setPermissions(m_folder.path(), QFileDevice::ReadOwner | QFileDevice::WriteOwner);
        const auto permissions = QFile::permissions(m_folder.path());
        QCOMPARE(writeConfig(m_folder.path(), {}), ConfigWrite::Written);
        QCOMPARE(UnitRoot::read(m_folder.path()), declaration + "<config/>\n");
        QCOMPARE(QFile::permissions(m_folder.path()), permissions);
        QCOMPARE(m_folder.names(), QStringList(QStringLiteral("file.xml")));
    }

    void aLinkStaysAndItsTargetIsReplaced_data()
    {
        QTest::addColumn<bool>("relative");
        QTest::addColumn<bool>("targetExists");
        QTest::newRow("absolute") << false << true;
        QTest::newRow("relative") << true << true;
        QTest::newRow("dangling") << false << false;
    }
    void aLinkStaysAndItsTargetIsReplaced()
    {
        QFETCH(bool, relative);
        QFETCH(bool, targetExists);
        const QString target = m_folder.path(QStringLiteral("sub/target.xml"));
        QDir(m_folder.folder()).mkpath(QStringLiteral("sub"));
        if (targetExists)
            UnitRoot::write(target, "old");
        const QByteArray named = relative ? QByteArray("sub/target.xml") : target.toUtf8();
        QCOMPARE(::symlink(named.constData(), m_folder.path().toUtf8().constData()), 0);
        QCOMPARE(writeConfig(m_folder.path(), {}), ConfigWrite::Written);
        QVERIFY(QFileInfo(m_folder.path()).isSymLink());
        QVERIFY(!QFileInfo(target).isSymLink());
        QCOMPARE(UnitRoot::read(target), declaration + "<config/>\n");
    }

    void whatCannotBeOpenedForWritingIsSaid_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<QString>("reason");
        QTest::newRow("folder missing")
            << m_folder.path(QStringLiteral("none/x.xml")) << "No such file or directory";
        QTest::newRow("below a file") << QStringLiteral("/dev/null/x.xml") << "Not a directory";
        QTest::newRow("a folder") << m_folder.folder() << QString();
    }
    void whatCannotBeOpenedForWritingIsSaid()
    {
        QFETCH(QString, target);
        QFETCH(QString, reason);
        QFile plain(target);
        QVERIFY(!plain.open(QIODevice::WriteOnly | QIODevice::Truncate));
        LogCatcher log;
        QString error;
        QCOMPARE(writeConfig(target, {}, &error), ConfigWrite::NotOpened);
        QCOMPARE(error, reason.isEmpty() ? plain.errorString() : reason);
        QCOMPARE(error, plain.errorString());
        QCOMPARE(log.lines(), QStringList());
    }

    void aWriteProtectedFileStays()
    {
        m_folder.write("old");
        QFile::setPermissions(m_folder.path(), QFileDevice::ReadOwner);
        const AsNobody nobody(m_folder.folder());
        QString error;
        QCOMPARE(writeConfig(m_folder.path(), {}, &error), ConfigWrite::NotOpened);
        QCOMPARE(error, QStringLiteral("Permission denied"));
        QCOMPARE(UnitRoot::read(m_folder.path()), QByteArray("old"));
    }

    void aFolderWithoutRoomForFilesIsWrittenInPlace()
    {
        m_folder.write("old content that is longer than the new one, so that what is left of it would show");
        QFile::setPermissions(m_folder.path(), QFileDevice::Permissions(0x6666));
        const AsNobody nobody(m_folder.folder());
        QFile::setPermissions(m_folder.folder(), QFileDevice::ReadOwner | QFileDevice::ExeOwner);
        const ConfigWrite result = writeConfig(m_folder.path(), {});
        QFile::setPermissions(m_folder.folder(),
                              QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
        QCOMPARE(result, ConfigWrite::Written);
        QCOMPARE(UnitRoot::read(m_folder.path()), declaration + "<config/>\n");
    }

    void aFileThatCannotBeRenamedOverIsWrittenInPlace()
    {
        const OwnMounts mounts;
        const QString source = m_folder.path(QStringLiteral("source.xml"));
        UnitRoot::write(source, "old");
        m_folder.write("hidden");
        if (!mounts.bind(source, m_folder.path()))
            QSKIP(OwnMounts::refused);
        QCOMPARE(writeConfig(m_folder.path(), {}), ConfigWrite::Written);
        QCOMPARE(UnitRoot::read(source), declaration + "<config/>\n");
        ::umount(m_folder.path().toUtf8().constData());
        QCOMPARE(UnitRoot::read(m_folder.path()), QByteArray("hidden"));
        QCOMPARE(m_folder.names().size(), 2);
    }

    void aFullDiskLeavesTheOldFile_data()
    {
        QTest::addColumn<int>("textBytes");
        QTest::newRow("found at the flush, the text being buffered") << 8000;
        QTest::newRow("found at once, the text being long") << 100000;
    }
    void aFullDiskLeavesTheOldFile()
    {
        QFETCH(int, textBytes);
        const OwnMounts mounts;
        if (!mounts.smallDisk(m_folder.folder(), 16384))
            QSKIP(OwnMounts::refused);
        m_folder.write("old");
        UnitRoot::write(m_folder.path(QStringLiteral("filler")), QByteArray(3 * 4096, 'x'));
        LogCatcher log(4);
        const ConfigElements elements{{QStringLiteral("a"), QString(textBytes, QLatin1Char('x'))}};
        const ConfigWrite result = writeConfig(m_folder.path(), elements);
        const QByteArray left = UnitRoot::read(m_folder.path());
        const QStringList names = m_folder.names();
        ::umount(m_folder.folder().toUtf8().constData());
        QCOMPARE(result, ConfigWrite::Failed);
        QCOMPARE(left, QByteArray("old"));
        QCOMPARE(names, QStringList({QStringLiteral("file.xml"), QStringLiteral("filler")}));
        QCOMPARE(
            log.plain(),
            QStringList(QStringLiteral("E Config write [%1] No space left on device").arg(m_folder.path())));
    }

    void aDiskThatTakesNoMoreFilesLeavesTheOldOne()
    {
        const OwnMounts mounts;
        if (!mounts.diskOfFewFiles(m_folder.folder(), 3))
            QSKIP(OwnMounts::refused);
        m_folder.write("old");
        for (int i = 0; i < 3; ++i)
            QFile(m_folder.path(QString::number(i))).open(QIODevice::WriteOnly);
        LogCatcher log(4);
        const ConfigWrite result = writeConfig(m_folder.path(), {});
        QString error;
        const ConfigWrite another = writeConfig(m_folder.path(QStringLiteral("new.xml")), {}, &error);
        const QByteArray left = UnitRoot::read(m_folder.path());
        ::umount(m_folder.folder().toUtf8().constData());
        const QString reason = QStringLiteral("No space left on device");
        QCOMPARE(result, ConfigWrite::Failed);
        QCOMPARE(left, QByteArray("old"));
        QCOMPARE(log.plain(),
                 QStringList(QStringLiteral("E Config write [%1] %2").arg(m_folder.path(), reason)));
        QCOMPARE(another, ConfigWrite::NotOpened);
        QCOMPARE(error, reason);
    }

    /** Neither a file beside it nor a longer content has room. */
    void aFullDiskLeavesAFileThatIsWrittenInPlace()
    {
        const OwnMounts mounts;
        const QString disk = m_folder.path(QStringLiteral("disk"));
        QDir(m_folder.folder()).mkpath(QStringLiteral("disk"));
        m_folder.write("hidden");
        if (!mounts.smallDisk(disk, 16384))
            QSKIP(OwnMounts::refused);
        UnitRoot::write(disk + QStringLiteral("/file"), "old");
        UnitRoot::write(disk + QStringLiteral("/filler"), QByteArray(3 * 4096, 'x'));
        QVERIFY(mounts.bind(disk + QStringLiteral("/file"), m_folder.path()));
        LogCatcher log(4);
        const ConfigElements elements{{QStringLiteral("a"), QString(8000, QLatin1Char('x'))}};
        const ConfigWrite result = writeConfig(m_folder.path(), elements);
        const QByteArray left = UnitRoot::read(m_folder.path());
        ::umount(m_folder.path().toUtf8().constData());
        ::umount(disk.toUtf8().constData());
        QCOMPARE(result, ConfigWrite::Failed);
        QCOMPARE(left, QByteArray("old"));
        QCOMPARE(
            log.plain(),
            QStringList(QStringLiteral("E Config write [%1] No space left on device").arg(m_folder.path())));
    }

    void whatAPowerCutLeftAsideIsTakenOver()
    {
        m_folder.write("old");
        UnitRoot::write(m_folder.path() + QStringLiteral(".vireo-new"), QByteArray(100000, 'x'));
        QCOMPARE(writeConfig(m_folder.path(), {}), ConfigWrite::Written);
        QCOMPARE(UnitRoot::read(m_folder.path()), declaration + "<config/>\n");
        QCOMPARE(m_folder.names(), QStringList(QStringLiteral("file.xml")));
    }

    void aRefusedFlushLeavesTheOldFile()
    {
        m_folder.write("old");
        const FileSizeLimit limit(0);
        LogCatcher log(4);
        const ConfigElements elements{{QStringLiteral("a"), QString(8000, QLatin1Char('x'))}};
        QCOMPARE(writeConfig(m_folder.path(), elements), ConfigWrite::Failed);
        QCOMPARE(UnitRoot::read(m_folder.path()), QByteArray("old"));
        QCOMPARE(m_folder.names(), QStringList(QStringLiteral("file.xml")));
        QCOMPARE(log.plain(),
                 QStringList(QStringLiteral("E Config write [%1] File too large").arg(m_folder.path())));
    }

    /** A power cut as near as a program can have it: the writer is killed somewhere in its writing. */
    void aKilledWriterLeavesAWholeFile()
    {
        QSet<QByteArray> seen;
        for (int round = 0; round < 500; ++round) {
            const LoopingWriter writer(m_folder.path());
            QVERIFY(writer.hasWritten(1 + round % 16));
            writer.kill();
            const QByteArray left = UnitRoot::read(m_folder.path());
            QVERIFY2(left == LoopingWriter::file(0) || left == LoopingWriter::file(1),
                     left.left(100).constData());
            seen << left;
        }
        QCOMPARE(seen.size(), 2);
        QVERIFY2(m_folder.names().size() <= 2, "what they left aside piles up");
    }
};

VIREO_TEST_MAIN(ConfigWriterTest)
#include "tst_configwriter.moc"
