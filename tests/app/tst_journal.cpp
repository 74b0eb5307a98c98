#include "app/dprintf.h"
#include "app/journal.h"
#include "app/journalstream.h"
#include "tests/support/panelmain.h"
#include "tests/support/standarderror.h"

class JournalTest : public QObject {
    Q_OBJECT

private:
    QtMessageHandler m_ofTheTests = nullptr;

private slots:
    void initTestCase() { debugLevel = 0; }
    void init() { m_ofTheTests = qInstallMessageHandler(nullptr); }
    void cleanup() { qInstallMessageHandler(m_ofTheTests); }

    /** First, because the colours do not come back. */
    void elsewhereNothingChanges()
    {
        QByteArray printed;
        {
            const StandardError error(false);
            QVERIFY(!standardErrorIsJournal());
            speakToJournal();
            DPRINTF(4, "text\n");
            DPRINTF(0, "text");
            qWarning("toolkit");
            noteInJournal("for the journal alone");
            printed = error.text();
        }
        QCOMPARE(printed, QByteArray("[ \x1B[35mERROR@vireo\x1B[0m ] text\n\ntext\ntoolkit\n"));
    }

    void everyLineSaysItsPriority()
    {
        QByteArray printed;
        {
            const StandardError error(true);
            QVERIFY(standardErrorIsJournal());
            speakToJournal();
            for (int level = 0; level <= 4; ++level)
                DPRINTF(level, "text\n");
            qDebug("one\ntwo");
            qInfo("toolkit");
            qWarning("toolkit");
            qCritical("toolkit");
            DPRINTF(4, "<7>%s", "forged\n<7>line");
            printed = error.text();
        }
        QCOMPARE(printed,
                 QByteArray("<7>text\n<7>text\n<6>[ INFO @vireo ] text\n<4>[ WARN @vireo ] text\n"
                            "<3>[ ERROR@vireo ] text\n<7>one\n<7>two\n<6>toolkit\n<4>toolkit\n<3>toolkit\n"
                            "<3>[ ERROR@vireo ] <7>forged\\x0a<7>line\n"));
    }

    void whatTellsOfErrorsIsNone()
    {
        QByteArray printed;
        {
            const StandardError error(true);
            speakToJournal();
            {
                const JournalInformation information;
                DPRINTF(4, "text");
                qCritical("toolkit");
            }
            DPRINTF(4, "text");
            printed = error.text();
        }
        QCOMPARE(printed, QByteArray("<6>[ ERROR@vireo ] text\n<6>toolkit\n<3>[ ERROR@vireo ] text\n"));
    }

    void aStreamThatCannotBeIsNone_data()
    {
        QTest::addColumn<QByteArray>("name");
        for (const char* name : {"", ":", "x:y", "1"})
            QTest::addRow("\"%s\"", name) << QByteArray(name);
    }
    void aStreamThatCannotBeIsNone()
    {
        QFETCH(QByteArray, name);
        const StandardError error(true);
        qputenv("JOURNAL_STREAM", name);
        QVERIFY(!standardErrorIsJournal());
    }
};

VIREO_TEST_MAIN(JournalTest)
#include "tst_journal.moc"
