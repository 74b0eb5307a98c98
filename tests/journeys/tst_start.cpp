#include "app/version.h"
#include "tests/journeys/panelprocess.h"
#include "tests/support/ownport.h"
#include "tests/support/unitroot.h"

#include <QTemporaryFile>

#include <sys/stat.h>

namespace {

struct Ended {
    int status = -1;
    QString out;
    QString error;
};

Ended run(const QStringList& arguments, const char* platform)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QString::fromLatin1(platform));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(VIREO_PROGRAM), arguments);
    if (!process.waitForFinished(30000) || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

QString descriptorOf(qint64 process, int number)
{
    return QFile::symLinkTarget(QStringLiteral("/proc/%1/fd/%2").arg(process).arg(number));
}

/** What the service manager calls a file that stands in for the journal. */
QString nameAsStream(const QTemporaryFile& file)
{
    struct stat status = {};
    ::fstat(file.handle(), &status);
    return QStringLiteral("%1:%2").arg(qulonglong(status.st_dev)).arg(qulonglong(status.st_ino));
}

} // namespace

/** How the real program starts, or ends before it does. */
class StartTest : public QObject {
    Q_OBJECT

private slots:
    void questionsAreAnsweredWithoutADisplay_data()
    {
        QTest::addColumn<QString>("word");
        QTest::addColumn<QString>("start");
        QTest::newRow("--help") << "--help"
                                << "Usage: vireo [LEVEL]";
        QTest::newRow("-h") << "-h"
                            << "Usage: vireo [LEVEL]";
        QTest::newRow("--version") << "--version"
                                   << QStringLiteral("vireo %1\n").arg(QLatin1String(vireoVersion));
    }
    void questionsAreAnsweredWithoutADisplay()
    {
        QFETCH(QString, word);
        QFETCH(QString, start);
        const Ended ended = run({word}, "nosuch");
        QCOMPARE(ended.status, 0);
        QVERIFY2(ended.out.startsWith(start), qPrintable(ended.out));
        QCOMPARE(ended.error, QString());
    }

    void questionsMayStandBehindTheToolkitsOptions()
    {
        const Ended ended =
            run({QStringLiteral("--platform"), QStringLiteral("offscreen"), QStringLiteral("--version")}, "");
        QCOMPARE(ended.status, 0);
        QCOMPARE(ended.out, QStringLiteral("vireo %1\n").arg(QLatin1String(vireoVersion)));
    }

    void anyOtherWordWithTwoDashesIsRefused()
    {
        const Ended ended = run({QStringLiteral("--levle=3")}, "offscreen");
        QCOMPARE(ended.status, 2);
        QCOMPARE(ended.out, QString());
        QCOMPARE(ended.error,
                 QStringLiteral("vireo: --levle=3 is no level and no option; see vireo --help\n"));
    }

    void theToolkitsOptionsStartThePanel_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::newRow("-platform") << QStringList({QStringLiteral("-platform"), QStringLiteral("offscreen")});
        QTest::newRow("--platform") << QStringList(
            {QStringLiteral("--platform"), QStringLiteral("offscreen")});
        QTest::newRow("-style") << QStringList({QStringLiteral("-style"), QStringLiteral("fusion")});
        QTest::newRow("behind the level") << QStringList({QStringLiteral("5"), QStringLiteral("--help")});
    }
    void theToolkitsOptionsStartThePanel()
    {
        QFETCH(QStringList, options);
        const UnitRoot unit;
        PanelProcess panel(options);
        QVERIFY(panel.connectSupervisor());
        QCOMPARE(panel.mode(), 255);
    }

    /** What is logged at level 0 must not come out of the socket that would have got a free number. */
    void closedStandardStreamsAreOccupied()
    {
        const UnitRoot unit;
        PanelProcess panel({QStringLiteral("-c"), QStringLiteral("exec \"$0\" 0 <&- >&- 2>&-"),
                            QStringLiteral(VIREO_PROGRAM)},
                           QStringLiteral("/bin/sh"));
        QVERIFY(panel.connectSupervisor());
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(panel.mode(), 255);
            QCOMPARE(descriptorOf(panel.processId(), i), QStringLiteral("/dev/null"));
        }
        QCOMPARE(panel.link().bytesAvailable(), qint64(0));
    }

    void inTheJournalOnlyErrorsAreErrors()
    {
        const UnitRoot unit;
        QTemporaryFile journal;
        QVERIFY(journal.open());
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("JOURNAL_STREAM"), nameAsStream(journal));
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("nosuch"));
        QProcess process;
        process.setProcessEnvironment(environment);
        process.setStandardErrorFile(journal.fileName(), QIODevice::Append);
        process.start(QStringLiteral(VIREO_PROGRAM), {});
        QVERIFY(process.waitForFinished(30000));
        const QByteArray ended = UnitRoot::read(journal.fileName());
        QVERIFY2(ended.startsWith("<3>vireo: no display: "), ended.constData());
        QCOMPARE(ended.count('\n'), 1);
    }

    void inTheJournalTheAnnouncementOfErrorsIsNone()
    {
        const UnitRoot unit;
        QTemporaryFile journal;
        QVERIFY(journal.open());
        PanelProcess panel({QStringLiteral("-c"), QStringLiteral("JOURNAL_STREAM=$1 exec \"$0\" 2 2>>\"$2\""),
                            QStringLiteral(VIREO_PROGRAM), nameAsStream(journal), journal.fileName()},
                           QStringLiteral("/bin/sh"));
        QVERIFY(panel.connectSupervisor());
        QCOMPARE(panel.mode(), 255);
        const QByteArray log = UnitRoot::read(journal.fileName());
        for (const char* line :
             {"<6>[ ERROR@vireo ] Will be print 'ERROR MSG'\n", "<6>[ INFO @vireo ] Tcp server On\n"})
            QVERIFY2(log.contains(line), line);
    }
};

VIREO_PORT_TEST_MAIN(StartTest)
#include "tst_start.moc"
