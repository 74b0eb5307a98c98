#include "tests/support/panelmain.h"
#include "tests/support/strings.h"
#include "tests/support/unitroot.h"
#include "tests/tools/fakepanel.h"
#include "tests/tools/supervisorrun.h"
#include "tools/supervisor/commandline.h"
#include "tools/supervisor/script.h"

#include <QElapsedTimer>
#include <QTemporaryDir>

class ScriptTest : public QObject {
    Q_OBJECT

private:
    static SupervisorRun runText(const FakePanel& panel, const QByteArray& text)
    {
        return runSupervisor(
            {QStringLiteral("--port"), panel.portText(), QStringLiteral("script"), QStringLiteral("-")},
            text);
    }
    static SupervisorRun runFile(const FakePanel& panel, const QString& path)
    {
        return runSupervisor({QStringLiteral("--port"), panel.portText(), QStringLiteral("script"), path});
    }

private slots:
    void splitting_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QStringList>("words");
        const auto row = [](const char* line, std::initializer_list<const char*> words) {
            QTest::newRow(*line ? line : "empty line") << QString::fromUtf8(line) << strings(words);
        };
        row("", {});
        row("  \t ", {});
        row("key stop", {"key", "stop"});
        row("  key\tstop  \r", {"key", "stop"});
        row("# a comment", {});
        row("key stop # and why", {"key", "stop"});
        row("key stop#x", {"key", "stop#x"});
        row("station \"Two Words\" http://a.example/#b", {"station", "Two Words", "http://a.example/#b"});
        row("station 'Two Words' \"\"", {"station", "Two Words", ""});
        row("a\"b c\"d", {"ab cd"});
        row("\"# no comment\" '# nor here'", {"# no comment", "# nor here"});
        row("\"say \\\"so\\\" \\\\\"", {"say \"so\" \\"});
        row("'a \\ stays' a\\b", {"a \\ stays", "a\\b"});
        row("\"it's\" 'a \"b\"'", {"it's", "a \"b\""});
        row("station \"한국 방송\"", {"station", "한국 방송"});
    }
    void splitting()
    {
        QFETCH(QString, line);
        QFETCH(QStringList, words);
        const SplitLine split = splitLine(line);
        QCOMPARE(split.error, QString());
        QCOMPARE(split.words, words);
    }

    void openQuotes_data()
    {
        QTest::addColumn<QString>("line");
        QTest::newRow("double") << QStringLiteral("station \"One");
        QTest::newRow("single") << QStringLiteral("station 'One");
        QTest::newRow("last quote taken by a backslash") << QStringLiteral("\"one\\\"");
        QTest::newRow("backslash at the end") << QStringLiteral("\"one\\");
        QTest::newRow("quote alone") << QStringLiteral("\"");
    }
    void openQuotes()
    {
        QFETCH(QString, line);
        QCOMPARE(splitLine(line).error, QStringLiteral("a quote is not closed"));
    }

    void joinedWordsAreSplitAgain()
    {
        const QStringList words{QStringLiteral("station"),
                                QStringLiteral("Two \"quoted\" Words"),
                                QString::fromUtf8("한국 # 방송"),
                                QStringLiteral("back\\slash"),
                                QString(),
                                QStringLiteral("it's"),
                                QStringLiteral("tab\there")};
        QCOMPARE(splitLine(joinLine(words)).words, words);
        QCOMPARE(joinLine({QStringLiteral("key"), QStringLiteral("long-esc")}),
                 QStringLiteral("key long-esc"));
    }

    void allLinesOverOneConnection()
    {
        FakePanel panel;
        const SupervisorRun run = runText(panel,
                                          "\xEF\xBB\xBF# a small tour\r\n"
                                          "device usb\r\n"
                                          "\r\n"
                                          "level 9   # quiet\n"
                                          "wait 1\n"
                                          "upgrade-message \"Two words\"");
        QCOMPARE(run.err, QString());
        QCOMPARE(run.exitCode, 0);
        QTRY_COMPARE(panel.closed, 1);
        QCOMPARE(panel.connections, 1);
        QCOMPARE(panel.bytes.toHex(),
                 QByteArray("0700010001") + "0400010009" + "10000900" + QByteArray("Two words").toHex()
                     + "0d00010008"); // the question at the end
    }

    void metExpectations()
    {
        FakePanel panel;
        panel.modes = {255, 1, 0};
        const SupervisorRun run =
            runText(panel, "expect none\ndevice usb\nexpect usb\nkey long-select\nrequest\n");
        QCOMPARE(run.err, QString());
        QCOMPARE(run.out, QStringLiteral("menu\n"));
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(panel.requests, 3 + 1); // and one at the end
    }

    void unmetExpectationsNameTheirLine()
    {
        FakePanel panel;
        panel.modes = {255, 1, 42};
        const SupervisorRun run = runText(panel, "\nexpect usb\nexpect usb\nexpect menu\nlevel 1\n");
        QCOMPARE(run.exitCode, int(ExitStatus::Unmet));
        QCOMPARE(run.err,
                 QStringLiteral(
                     "vireo-supervisor: standard input:2: expected usb, the panel is in none\n"
                     "vireo-supervisor: standard input:4: expected menu, the panel is in unknown (42)\n"));
        QTRY_COMPARE(panel.packetsButRequests().size(), 1); // it goes on to its end
    }

    void answersOfRawRequestsAreNotTakenForLaterOnes()
    {
        FakePanel panel;
        panel.modes = {5, 1};
        const SupervisorRun run = runText(panel, "raw 0d00010008\nexpect usb\n");
        QCOMPARE(run.err, QString());
        QCOMPARE(run.exitCode, 0);
    }

    void waitingTakesItsTime()
    {
        FakePanel panel;
        QElapsedTimer clock;
        clock.start();
        QCOMPARE(runText(panel, "wait 300").exitCode, 0);
        QVERIFY(clock.elapsed() >= 300);
    }

    void panelThatGoesAwayEndsTheScript()
    {
        FakePanel panel;
        connect(&panel, &FakePanel::received, &panel, &FakePanel::hangUp);
        const SupervisorRun run = runText(panel, "level 1\nwait 60000\nlevel 2\n");
        QCOMPARE(run.exitCode, int(ExitStatus::NoAnswer));
        QCOMPARE(run.err,
                 QStringLiteral("vireo-supervisor: standard input:2: the panel has gone: "
                                "The remote host closed the connection\n"));
        QCOMPARE(panel.bytes.toHex(), QByteArray("0400010001"));
    }

    void linkTakenByAnotherShowsAtTheEnd()
    {
        FakePanel panel;
        panel.answering = false;
        const SupervisorRun run =
            runSupervisor({QStringLiteral("--timeout=1"), QStringLiteral("--port"), panel.portText(),
                           QStringLiteral("script"), QStringLiteral("-")},
                          "level 1\n");
        QCOMPARE(run.exitCode, int(ExitStatus::NoAnswer));
        QVERIFY2(run.err.startsWith(QLatin1String(
                     "vireo-supervisor: standard input: at the end the panel did not answer: ")),
                 qPrintable(run.err));
        QCOMPARE(run.err.count(QLatin1Char('\n')), 1);
    }

    void mistakesSendNothing_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("line");
        QTest::newRow("unknown word in the last line")
            << QByteArray("level 1\n\nlevl 2")
            << "standard input:3: unknown word \"levl\"; --help lists them";
        QTest::newRow("bad number") << QByteArray("level 300")
                                    << "standard input:1: level: \"300\" is not a number from 0 to 255";
        QTest::newRow("missing file")
            << QByteArray("level 1\nfile none.mp3\n") << "standard input:2: file: no such file: \"none.mp3\"";
        QTest::newRow("open quote") << QByteArray("station \"A b\n")
                                    << "standard input:1: a quote is not closed";
        QTest::newRow("only the first mistake")
            << QByteArray("level loud\nwait x\n")
            << "standard input:1: level: \"loud\" is not a number from 0 to 255";
        QTest::newRow("negative wait")
            << QByteArray("wait -1") << "standard input:1: wait: \"-1\" is not a number from 0 to 600000";
    }
    void mistakesSendNothing()
    {
        QFETCH(QByteArray, text);
        QFETCH(QString, line);
        FakePanel panel;
        const SupervisorRun run = runText(panel, text);
        QCOMPARE(run.exitCode, 1);
        QCOMPARE(run.err, QStringLiteral("vireo-supervisor: ") + line + QLatin1Char('\n'));
        QCOMPARE(panel.connections, 0);
    }

    void titleThatIsCutNamesItsLine()
    {
        FakePanel panel;
        const SupervisorRun run = runText(panel, "level 1\nstation " + QByteArray(300, 't') + " u\n");
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(
            run.err,
            QStringLiteral("vireo-supervisor: standard input:2: station: the title was cut to 255 bytes\n"));
    }

    void filesAreRelativeToTheScript()
    {
        QTemporaryDir dir;
        UnitRoot::write(dir.filePath(QStringLiteral("music/a b.mp3")), "x");
        UnitRoot::write(dir.filePath(QStringLiteral("scripts/play.txt")), "file \"../music/a b.mp3\"\n");
        FakePanel panel;
        const SupervisorRun run = runFile(panel, dir.filePath(QStringLiteral("scripts/play.txt")));
        QCOMPARE(run.err, QString());
        QTRY_COMPARE(panel.packetsButRequests().size(), 1);
        QCOMPARE(panel.packets[0].mid(4), dir.filePath(QStringLiteral("music/a b.mp3")).toUtf8());
    }

    void scriptsNameMayBeNoUtf8()
    {
        QTemporaryDir dir;
        FakePanel panel;
        const SupervisorRun run = runSupervisorInShell(
            dir.path(),
            QStringLiteral("name=$(printf 'caf\\351.txt') && echo level 1 > \"$name\" && "
                           "\"$0\" --port $1 script \"$name\""),
            panel.portText());
        QCOMPARE(run.err, QString());
        QTRY_COMPARE(panel.packetsButRequests().size(), 1);
    }

    void unreadableScripts()
    {
        FakePanel panel;
        const SupervisorRun missing = runFile(panel, QStringLiteral("/no/such/script.txt"));
        QCOMPARE(missing.exitCode, 1);
        QCOMPARE(missing.err,
                 QStringLiteral("vireo-supervisor: cannot read \"/no/such/script.txt\": "
                                "No such file or directory\n"));
        const SupervisorRun folder = runFile(panel, QStringLiteral("/"));
        QCOMPARE(folder.exitCode, 1);
        QCOMPARE(folder.err, QStringLiteral("vireo-supervisor: cannot read \"/\": it is a folder\n"));
    }

    void emptyScriptHolds()
    {
        FakePanel panel;
        QCOMPARE(runText(panel, "").exitCode, 0);
        QTRY_COMPARE(panel.closed, 1);
        QVERIFY(panel.bytes.isEmpty());
    }

    void noLinkIsOneLine()
    {
        const SupervisorRun run = runSupervisor(
            {QStringLiteral("--port"), QStringLiteral("1"), QStringLiteral("script"), QStringLiteral("-")},
            "level 1\n");
        QCOMPARE(run.exitCode, int(ExitStatus::NoPanel));
        QCOMPARE(
            run.err,
            QStringLiteral("vireo-supervisor: no link to the panel at 127.0.0.1:1: Connection refused\n"));
    }
};

VIREO_TEST_MAIN(ScriptTest)
#include "tst_script.moc"
