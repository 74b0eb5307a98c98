#include "app/version.h"
#include "tests/support/panelmain.h"
#include "tests/tools/fakepanel.h"
#include "tests/tools/supervisorrun.h"
#include "tools/supervisor/commandline.h"

#include <QTemporaryDir>

class SendTest : public QObject {
    Q_OBJECT

private:
    static SupervisorRun send(const FakePanel& panel, const QStringList& words)
    {
        return runSupervisor(QStringList{QStringLiteral("--port"), panel.portText(), QStringLiteral("send")}
                             + words);
    }

private slots:
    void onePacketAndAnOrderlyEnd()
    {
        FakePanel panel;
        const SupervisorRun run = send(panel, {QStringLiteral("key"), QStringLiteral("long-select")});
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.out + run.err, QString());
        QTRY_COMPARE(panel.closed, 1);
        QCOMPARE(panel.bytes.toHex(), QByteArray("0500010086"));
    }

    void negativeStepsAreNoOption()
    {
        FakePanel panel;
        QCOMPARE(send(panel, {QStringLiteral("enc"), QStringLiteral("-3")}).exitCode, 0);
        QTRY_COMPARE(panel.bytes.toHex(), QByteArray("0b000100fd"));
    }

    void longestPacketArrivesWhole()
    {
        FakePanel panel;
        const QString text(65535, QLatin1Char('m'));
        QCOMPARE(send(panel, {QStringLiteral("upgrade-message"), text}).exitCode, 0);
        QTRY_COMPARE(panel.closed, 1);
        QCOMPARE(panel.bytes, QByteArray::fromHex("1000ffff") + text.toLatin1());
    }

    void namesAreSentAsTheirBytes()
    {
        QTemporaryDir dir;
        FakePanel panel;
        const SupervisorRun run = runSupervisorInShell(
            dir.path(),
            QStringLiteral("name=$(printf 'caf\\351 \\354\\235\\264.mp3') && : > \"$name\" && "
                           "\"$0\" --port $1 send file \"$name\""),
            panel.portText());
        QCOMPARE(run.err, QString());
        QCOMPARE(run.exitCode, 0);
        QTRY_COMPARE(panel.packets.size(), 1);
        QCOMPARE(panel.packets[0].mid(4), dir.path().toUtf8() + "/caf\xE9 \xEC\x9D\xB4.mp3");
    }

    void titleThatIsCutSaysSo()
    {
        FakePanel panel;
        const QString title = QString(254, QLatin1Char('t')) + QChar(0xAC00); // three bytes
        const SupervisorRun run = send(panel, {QStringLiteral("station"), title, QStringLiteral("u")});
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.err, QStringLiteral("vireo-supervisor: station: the title was cut to 254 bytes\n"));
        QTRY_COMPARE(panel.packets.size(), 1);
        QCOMPARE(panel.packets[0].size(), 4 + 256 + 1);
    }

    void requestPrintsTheName_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("name");
        QTest::newRow("menu") << 0 << "menu\n";
        QTest::newRow("station list") << 3 << "radio-list\n";
        QTest::newRow("no mode yet") << 255 << "none\n";
        QTest::newRow("a code without a name") << 99 << "unknown (99)\n";
    }
    void requestPrintsTheName()
    {
        QFETCH(int, code);
        QFETCH(QString, name);
        FakePanel panel;
        panel.mode = quint8(code);
        const SupervisorRun run = send(panel, {QStringLiteral("request")});
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.out, name);
        QCOMPARE(run.err, QString());
        QCOMPARE(panel.bytes.toHex(), QByteArray("0d00010008"));
    }

    void panelThatHangsUpInsteadOfAnswering()
    {
        FakePanel panel;
        panel.answering = false;
        connect(&panel, &FakePanel::received, &panel, &FakePanel::hangUp);
        const SupervisorRun run = send(panel, {QStringLiteral("request")});
        QCOMPARE(run.exitCode, int(ExitStatus::NoAnswer));
        QCOMPARE(run.out, QString());
        QCOMPARE(run.err,
                 QStringLiteral("vireo-supervisor: the panel did not answer: "
                                "The remote host closed the connection\n"));
    }

    void callerThatIsReplacedSaysSo()
    {
        FakePanel panel;
        panel.answering = false;
        QTcpSocket other;
        connect(&panel, &FakePanel::received, &other,
                [&] { other.connectToHost(QHostAddress(QHostAddress::LocalHost), panel.port()); });
        const SupervisorRun run = send(panel, {QStringLiteral("request")});
        QCOMPARE(run.exitCode, int(ExitStatus::NoAnswer));
        QCOMPARE(run.err,
                 QStringLiteral("vireo-supervisor: replaced: the panel serves another program that "
                                "connected after this one\n"));
    }

    void panelThatDoesNotAnswerInTime()
    {
        FakePanel panel;
        panel.answering = false;
        const SupervisorRun run =
            runSupervisor({QStringLiteral("--timeout"), QStringLiteral("1"), QStringLiteral("--port"),
                           panel.portText(), QStringLiteral("send"), QStringLiteral("request")});
        QCOMPARE(run.exitCode, int(ExitStatus::NoAnswer));
        QVERIFY2(run.err.endsWith(QLatin1String("; another supervisor may have taken the link\n")),
                 qPrintable(run.err));
        QCOMPARE(run.err.count(QLatin1Char('\n')), 1);
    }

    void noLinkIsOneLine()
    {
        quint16 freePort = 0;
        {
            FakePanel panel;
            freePort = panel.port();
        }
        const SupervisorRun run =
            runSupervisor({QStringLiteral("--port"), QString::number(freePort), QStringLiteral("send"),
                           QStringLiteral("key"), QStringLiteral("esc")});
        QCOMPARE(run.exitCode, int(ExitStatus::NoPanel));
        QCOMPARE(run.err,
                 QStringLiteral("vireo-supervisor: no link to the panel at 127.0.0.1:%1: "
                                "Connection refused\n")
                     .arg(freePort));
    }

    void optionsMayFollowTheVerb()
    {
        FakePanel panel;
        const SupervisorRun run = runSupervisor({QStringLiteral("send"), QStringLiteral("--host=127.0.0.1"),
                                                 QStringLiteral("--port=") + panel.portText(),
                                                 QStringLiteral("level"), QStringLiteral("7")});
        QCOMPARE(run.err, QString());
        QCOMPARE(run.exitCode, 0);
        QTRY_COMPARE(panel.bytes.toHex(), QByteArray("0400010007"));
    }

    void badCommandLinesSendNothing_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("line");
        const auto row = [](const char* arguments, const char* line) {
            QTest::newRow(arguments) << QString::fromLatin1(arguments).split(QLatin1Char(' '))
                                     << QString::fromLatin1(line);
        };
        row("send", "no words given; --help lists them");
        row("send hello", "unknown word \"hello\"; --help lists them");
        row("send level 999", "level: \"999\" is not a number from 0 to 255");
        row("send file /no/such.mp3", "file: no such file: \"/no/such.mp3\"");
        row("send wait 5", "unknown word \"wait\"; --help lists them");
        row("send a\nb", "unknown word \"a?b\"; --help lists them");
        row("receive", "unknown argument \"receive\"; expected send or script");
        row("--colour send key esc", "Unknown option 'colour'. --help lists all options.");
        row("--port 0 send key esc", "--port: \"0\" is not a number from 1 to 65535");
        row("--port 65536 send key esc", "--port: \"65536\" is not a number from 1 to 65535");
        row("--port", "Missing value after '--port'. --help lists all options.");
        row("--host=", "--host needs a name or an address");
        row("--timeout 0", "--timeout: \"0\" is not a number from 1 to 600000");
        row("--at 3", "--at: \"3\" is not two numbers as 340,0");
        row("--at 3,4,5", "--at: \"3,4,5\" is not two numbers as 340,0");
        row("--at x,4", "--at: \"x,4\" is not two numbers as 340,0");
        row("--music /no/such", "--music: no music below \"/no/such\"");
        row("--music /proc/self/task", "--music: no music below \"/proc/self/task\"");
        row("script", "script needs one file name, or - for standard input");
        row("script a b", "script needs one file name, or - for standard input");
    }
    void badCommandLinesSendNothing()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, line);
        FakePanel panel;
        if (arguments[0] == QLatin1String("send"))
            arguments = QStringList{QStringLiteral("--port"), panel.portText()} + arguments;
        const SupervisorRun run = runSupervisor(arguments);
        QCOMPARE(run.exitCode, int(ExitStatus::Usage));
        QCOMPARE(run.out, QString());
        QCOMPARE(run.err, QStringLiteral("vireo-supervisor: ") + line + QLatin1Char('\n'));
        QCOMPARE(panel.connections, 0);
    }

    void versionGoesToStandardOutput()
    {
        const SupervisorRun run = runSupervisor({QStringLiteral("--version")});
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.err, QString());
        QCOMPARE(run.out, QStringLiteral("vireo-supervisor %1\n").arg(QLatin1String(vireoVersion)));
    }

    void helpGoesToStandardOutput()
    {
        for (const char* option : {"--help", "-h"}) {
            const SupervisorRun run = runSupervisor({QString::fromLatin1(option)});
            QCOMPARE(run.exitCode, 0);
            QCOMPARE(run.err, QString());
            QVERIFY(run.out.startsWith(QLatin1String("Usage: vireo-supervisor")));
            QVERIFY(
                run.out.contains(QLatin1String("  key [long-]stop|play-pause|prev|next|mode|select|esc\n")));
        }
    }
};

VIREO_TEST_MAIN(SendTest)
#include "tst_send.moc"
