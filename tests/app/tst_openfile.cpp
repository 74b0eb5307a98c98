#include "app/openfile.h"
#include "tests/support/panelmain.h"
#include "tests/support/unitroot.h"

#include <QTemporaryDir>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

/** Puts two files in each other's place again and again while it lives. */
class Exchange {
public:
    Exchange(const QByteArray& one, const QByteArray& other)
        : m_thread([this, one, other] {
            while (!m_end)
                ::renameat2(AT_FDCWD, one.constData(), AT_FDCWD, other.constData(), RENAME_EXCHANGE);
        })
    {
    }
    ~Exchange()
    {
        m_end = true;
        m_thread.join();
    }
    Exchange(const Exchange&) = delete;
    Exchange& operator=(const Exchange&) = delete;

private:
    std::atomic<bool> m_end = false;
    std::thread m_thread;
};

} // namespace

class OpenFileTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_folder;
    QString path(const char* name) const { return m_folder.filePath(QString::fromLatin1(name)); }

private slots:
    void initTestCase()
    {
        UnitRoot::write(path("file"), "content");
        QCOMPARE(::mkfifo(path("pipe").toUtf8().constData(), 0600), 0);
    }

    void aFileIsReadFromItsStart()
    {
        QFile file(path("file"));
        QCOMPARE(openToRead(file, QIODevice::ReadOnly), QString());
        QVERIFY(!file.isSequential());
        QCOMPARE(file.size(), qint64(7));
        QCOMPARE(file.readAll(), QByteArray("content"));
    }

    void whatIsNoFileIsRefused_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("a pipe that nobody writes to") << path("pipe");
        QTest::newRow("a device") << QStringLiteral("/dev/zero");
    }
    void whatIsNoFileIsRefused()
    {
        QFETCH(QString, name);
        QFile file(name);
        QCOMPARE(openToRead(file, QIODevice::ReadOnly), QStringLiteral("Not a regular file"));
        QVERIFY(!file.isOpen());
        QCOMPARE(openRegular(file, O_WRONLY, QIODevice::WriteOnly), QStringLiteral("Not a regular file"));
        QCOMPARE(errno, 0);
    }

    void reasonsAreTheToolkits_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("missing") << path("none");
        QTest::newRow("below a file") << path("file/none");
        QTest::newRow("a folder") << m_folder.path();
        QTest::newRow("no name") << QString();
    }
    void reasonsAreTheToolkits()
    {
        QFETCH(QString, name);
        QFile plain(name);
        QVERIFY(!plain.open(QIODevice::ReadOnly));
        QFile file(name);
        QCOMPARE(openToRead(file, QIODevice::ReadOnly), plain.errorString());
        QVERIFY(!file.isOpen());
    }

    void writingLeavesTheContentUntilThen()
    {
        UnitRoot::write(path("written"), "old content");
        {
            QFile file(path("written"));
            QCOMPARE(openRegular(file, O_WRONLY, QIODevice::WriteOnly), QString());
            file.write("new");
        }
        QCOMPARE(UnitRoot::read(path("written")), QByteArray("new content"));
    }

    /** It hangs for ever where what a file is was asked before it was opened, and not after. */
    void aPipePutInAFilesPlaceDoesNotBlock()
    {
        const QByteArray name = path("exchanged").toUtf8();
        UnitRoot::write(path("exchanged"), "content");
        const Exchange exchange(name, path("pipe").toUtf8());
        int opened = 0;
        int refused = 0;
        while (opened < 2000 || refused < 2000) {
            QFile file(path("exchanged"));
            const QString reason = openToRead(file, QIODevice::ReadOnly);
            reason.isEmpty() ? ++opened : ++refused;
            QCOMPARE(file.isOpen() ? file.readAll() : QByteArray("content"), QByteArray("content"));
            QVERIFY(reason.isEmpty() || reason == QStringLiteral("Not a regular file"));
        }
    }
};

VIREO_TEST_MAIN(OpenFileTest)
#include "tst_openfile.moc"
