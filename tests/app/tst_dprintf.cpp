#include "app/dprintf.h"
#include "app/utf8.h"
#include "tests/support/logcatcher.h"
#include "tests/support/panelmain.h"

class DprintfTest : public QObject {
    Q_OBJECT

private slots:
    void prefixOfEachLevel_data()
    {
        QTest::addColumn<int>("level");
        QTest::addColumn<QString>("line");
        QTest::newRow("dump") << 0 << "text 7";
        QTest::newRow("verbose") << 1 << "text 7";
        QTest::newRow("info") << 2 << "[ \x1B[36mINFO @vireo\x1B[0m ] text 7";
        QTest::newRow("warning") << 3 << "[ \x1B[34mWARN @vireo\x1B[0m ] text 7";
        QTest::newRow("error") << 4 << "[ \x1B[35mERROR@vireo\x1B[0m ] text 7";
        QTest::newRow("any other") << 6 << "text 7";
    }
    void prefixOfEachLevel()
    {
        QFETCH(int, level);
        QFETCH(QString, line);
        LogCatcher log;
        DPRINTF(level, "text %d", 7);
        QCOMPARE(log.lines(), QStringList(line));
    }

    void belowTheThresholdNothingIsEvaluated()
    {
        LogCatcher log(3);
        int evaluated = 0;
        DPRINTF(2, "%d", ++evaluated);
        QCOMPARE(evaluated, 0);
        DPRINTF(3, "%d", ++evaluated);
        QCOMPARE(evaluated, 1);
        QCOMPARE(log.plain(), QStringList(QStringLiteral("W 1")));
    }

    void thresholdFiveSilencesEverything()
    {
        LogCatcher log(5);
        for (int level = 0; level <= 4; ++level)
            DPRINTF(level, "text");
        QVERIFY(log.lines().isEmpty());
    }

    void longTextIsCutAtTheBuffer()
    {
        LogCatcher log;
        const QByteArray text(20000, 'x');
        DPRINTF(0, "%s", text.constData());
        QCOMPARE(log.lines().value(0).size(), 8191);
        DPRINTF(4, "%s", text.constData());
        QCOMPARE(log.lines().value(1).size(), 8191);
        QVERIFY(log.lines().value(1).startsWith(QStringLiteral("[ \x1B[35mERROR")));
    }

    void newlineOfTheCallerStays()
    {
        LogCatcher log;
        DPRINTF(1, "line\n");
        QCOMPARE(log.lines(), QStringList(QStringLiteral("line\n")));
    }

    void controlBytesShowAsEscapes()
    {
        LogCatcher log;
        for (int byte = 0x01; byte <= 0x7F; ++byte) {
            if (byte >= 0x20 && byte < 0x7F)
                continue;
            log.clear();
            const char text[] = {'a', char(byte), 'b', '\0'};
            DPRINTF(1, "%s", text);
            const QString escape = QStringLiteral("a\\x%1b").arg(byte, 2, 16, QLatin1Char('0'));
            QCOMPARE(log.lines(), QStringList(escape));
        }
    }

    void whatIsNoControlByteStays()
    {
        LogCatcher log;
        QByteArray text;
        for (int byte = 0x20; byte < 0x7F; ++byte)
            text += char(byte);
        text += QString::fromUtf8("노래 é").toUtf8();
        DPRINTF(4, "%s", text.constData());
        QCOMPARE(log.plain(), QStringList(QStringLiteral("E ") + QString::fromUtf8(text)));
    }

    void noTextPassesForAnotherLine()
    {
        LogCatcher log;
        DPRINTF(2, "file [%s]\n", "a\n[ \x1B[35mERROR@vireo\x1B[0m ] forged");
        QCOMPARE(log.plain(),
                 QStringList(QStringLiteral("I file [a\\x0a[ \\x1b[35mERROR@vireo\\x1b[0m ] forged]\n")));
    }

    void onlyTheLastLineFeedStays()
    {
        LogCatcher log;
        DPRINTF(1, "a\n\n");
        QCOMPARE(log.lines(), QStringList(QStringLiteral("a\\x0a\n")));
    }

    void longTextIsCutBeforeItIsEscaped()
    {
        LogCatcher log;
        DPRINTF(1, "%s", QByteArray(20000, '\t').constData());
        QCOMPARE(log.lines(), QStringList(QStringLiteral("\\x09").repeated(8191)));
    }

    void textEndsAtTheFirstZero()
    {
        QCOMPARE(utf8UntilZero(QByteArray("abc\0def", 7)), QStringLiteral("abc"));
        QCOMPARE(utf8UntilZero(QByteArray("\0def", 4)), QString());
        QCOMPARE(utf8UntilZero(QByteArray()), QString());
        QCOMPARE(utf8UntilZero("\xEB\x85\xB8\xEB\x9E\x98"), QString::fromUtf8("노래"));
        QCOMPARE(utf8UntilZero("\xFFx"), QStringLiteral("\uFFFDx"));
    }
};

VIREO_TEST_MAIN(DprintfTest)
#include "tst_dprintf.moc"
