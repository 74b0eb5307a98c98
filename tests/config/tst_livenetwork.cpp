#include "config/livenetwork.h"
#include "tests/config/privileges.h"
#include "tests/support/panelmain.h"
#include "tests/support/routestandin.h"
#include "tests/support/unitroot.h"

#include <QStandardPaths>

#include <sys/stat.h>

namespace {

/** A command is given twice the time until it has done its part: a slow machine takes longer. */
constexpr int patienceMs = 60000;

/** The most memory that this process has held so far. */
int peakKilobytes()
{
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return int(usage.ru_maxrss);
}

} // namespace

class LiveNetworkTest : public QObject {
    Q_OBJECT

private slots:
    void withoutTheInterfaceThereIsNoAddress()
    {
        const OwnNetwork network;
        if (!network.isOwn())
            QSKIP(OwnNetwork::refused);
        QVERIFY(!liveAddress());
    }

    void anInterfaceWithoutAddressHasNone()
    {
        const OwnNetwork network;
        if (!network.ip("link add eth0 type veth"))
            QSKIP(OwnNetwork::refused);
        QVERIFY(!liveAddress());
    }

    void theFirstAddressCounts()
    {
        const OwnNetwork network;
        if (!network.ip("link add eth0 type veth"))
            QSKIP(OwnNetwork::refused);
        QVERIFY(network.ip("addr add 10.20.30.40/20 dev eth0"));
        QVERIFY(network.ip("addr add 10.99.0.1/24 dev eth0"));
        QVERIFY(network.ip("link set eth0 up"));
        const auto address = liveAddress();
        QVERIFY(address.has_value());
        QCOMPARE(address->ip().toString(), QStringLiteral("10.20.30.40"));
        QCOMPARE(address->netmask().toString(), QStringLiteral("255.255.240.0"));
    }

    void nameServers_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QStringList>("servers");
        const auto row = [](const char* name, const QByteArray& file, const QByteArray& servers) {
            QStringList list;
            for (const QByteArray& server : servers.split('|'))
                list << QString::fromUtf8(server);
            QTest::newRow(name) << file << (servers.isEmpty() ? QStringList() : list);
        };
        row("two", "nameserver 10.0.0.1\nnameserver 10.0.0.2\n", "10.0.0.1|10.0.0.2");
        row("one line only", "nameserver 10.0.0.1", "10.0.0.1");
        row("the second line only", "search lan\nnameserver 10.0.0.1\n", "10.0.0.1");
        row("a third line is never read", "search lan\n# comment\nnameserver 10.0.0.1\n", "");
        row("blank lines count", "\nnameserver 10.0.0.1\nnameserver 10.0.0.2\n", "10.0.0.1");
        row("white space is simplified", " \tnameserver \t 10.0.0.1 \r\nx\n", "10.0.0.1");
        row("the word is removed where it stands", "# old nameserver 10.0.0.1\n", "# old 10.0.0.1");
        row("only the first time", "nameserver nameserver 1\n", "nameserver 1");
        row("the word inside a longer one", "xnameservers 1\n", "xs 1");
        row("capitals are another word", "Nameserver 10.0.0.1\nNAMESERVER 2\n", "");
        row("UTF-8", QString::fromUtf8("nameserver 서버\n").toUtf8(), "서버");
        row("a line ends at a zero byte", QByteArray("nameserver 1\0002\nnameserver 3\n", 28), "1|3");
        row("empty", "", "");
        row("a first line without end is cut", "nameserver " + QByteArray(10000000, '1') + "\nnameserver 2\n",
            QByteArray(64 * 1024 - 11, '1'));
    }
    void nameServers()
    {
        QFETCH(QByteArray, file);
        QFETCH(QStringList, servers);
        const UnitRoot root;
        UnitRoot::write(root.path(QStringLiteral("/etc/resolv.conf")), file);
        QString error = QStringLiteral("left over");
        QCOMPARE(liveNameServers(error), servers);
        QCOMPARE(error, QString());
    }

    void aNameServerWithoutAddressIsEmpty()
    {
        const UnitRoot root;
        UnitRoot::write(root.path(QStringLiteral("/etc/resolv.conf")), "nameserver\n");
        QString error;
        QCOMPARE(liveNameServers(error), QStringList(QString()));
    }

    void withoutTheFileTheReasonIsGiven()
    {
        const UnitRoot root;
        QString error;
        QCOMPARE(liveNameServers(error), QStringList());
        QCOMPARE(error, QStringLiteral("No such file or directory"));
    }

    void aFifoDoesNotBlock()
    {
        const UnitRoot root;
        const QByteArray path = root.path(QStringLiteral("/etc/resolv.conf")).toUtf8();
        QCOMPARE(::mkfifo(path.constData(), 0600), 0);
        QString error;
        QCOMPARE(liveNameServers(error), QStringList());
        QCOMPARE(error, QStringLiteral("Not a regular file"));
    }

    void lastLineOfTheRoutes_data()
    {
        QTest::addColumn<QByteArray>("script");
        QTest::addColumn<QByteArray>("line");
        const auto row = [](const char* name, const QByteArray& script, const QByteArray& line) {
            QTest::newRow(name) << script << line;
        };
        row("the last of several", "printf 'one\\ntwo\\nthree\\n'", "three\n");
        row("without a line break", "printf 'one\\ntwo'", "two");
        row("a blank last line is a line", "printf 'one\\n\\n'", "\n");
        row("a line in pieces", "printf 'one\\ntw'; sleep 0.1; printf 'o '; sleep 0.1; printf 'three\\n'",
            "two three\n");
        row("a line after a pause", "printf 'one\\n'; sleep 0.1; printf 'two\\n'", "two\n");
        row("nothing", "", "");
        row("the exit status does not count", "echo one; exit 3", "one\n");
        row("errors are no lines", "echo one; echo two >&2", "one\n");
        row("the arguments", "echo $# $1", "1 -n\n");
        row("output closed before the end", "echo one; exec >&-; sleep 0.2", "one\n");
        row("a long last line is cut", "echo one; head -c 1000000 /dev/zero | tr '\\0' x",
            QByteArray(64 * 1024, 'x'));
        row("a long line before the last", "head -c 1000000 /dev/zero | tr '\\0' x; echo; echo two", "two\n");
        row("a million lines", "seq 1000000", "1000000\n");
        row("errors without end do not hold it up", "head -c 10000000 /dev/zero >&2; echo one", "one\n");
    }
    void lastLineOfTheRoutes()
    {
        QFETCH(QByteArray, script);
        QFETCH(QByteArray, line);
        const RouteStandIn route(script);
        QCOMPARE(lastRoute(30000), line);
    }

    void aMissingCommandPrintsNothing()
    {
        const RouteStandIn none;
        QCOMPARE(lastRoute(30000), QByteArray());
    }

    void askingForAMissingCommandLeavesNoDescriptorOpen()
    {
        const RouteStandIn none;
        lastRoute(30000);
        const QDir descriptors(QStringLiteral("/proc/self/fd"));
        const auto open = descriptors.entryList(QDir::Files | QDir::System).size();
        for (int i = 0; i < 20; ++i)
            lastRoute(30000);
        QCOMPARE(descriptors.entryList(QDir::Files | QDir::System).size(), open);
    }

    void aCommandThatCannotRunPrintsNothing()
    {
        const RouteStandIn route("echo one", "#!/no/such/interpreter\n");
        QCOMPARE(lastRoute(30000), QByteArray());
    }

    void aHangingCommandIsEnded_data()
    {
        QTest::addColumn<QString>("script"); // says its number as soon as it is what the row says
        QTest::newRow("silent") << "%1; exec sleep 1000";
        QTest::newRow("after its output is closed") << "echo one; exec >&-; %1; exec sleep 1000";
        QTest::newRow("reading its input") << "%1; exec cat";
        QTest::newRow("deaf to a polite end") << "trap '' TERM; %1; while :; do sleep 1; done";
    }
    void aHangingCommandIsEnded()
    {
        QFETCH(QString, script);
        const RouteStandIn route(script.arg("echo $$ > \"$ROUTE_PID\"").toUtf8());
        for (int waitMs = 20; route.pid() == 0 && waitMs < patienceMs; waitMs *= 2)
            lastRoute(waitMs);
        QVERIFY(route.pid() > 0);
        QVERIFY(!QFileInfo::exists(QStringLiteral("/proc/%1").arg(route.pid())));
    }

    void whatAHangingCommandPrintedCounts()
    {
        const RouteStandIn route("printf 'one\\ntwo\\n'; exec sleep 1000");
        QByteArray line;
        for (int waitMs = 20; line.isEmpty() && waitMs < patienceMs; waitMs *= 2)
            line = lastRoute(waitMs);
        QCOMPARE(line, "two\n");
    }

    void aFloodTakesNoMemory_data()
    {
        QTest::addColumn<QByteArray>("script");
        QTest::addColumn<QByteArray>("last");
        QTest::newRow("of lines") << QByteArray("yes 'a b c' | head -c 600000000; echo; echo end")
                                  << QByteArray("end\n");
        QTest::newRow("of one line") << QByteArray("head -c 600000000 /dev/zero; echo; echo end")
                                     << QByteArray("end\n");
        QTest::newRow("of errors") << QByteArray("head -c 600000000 /dev/zero >&2; echo end")
                                   << QByteArray("end\n");
    }
    void aFloodTakesNoMemory()
    {
        QFETCH(QByteArray, script);
        QFETCH(QByteArray, last);
        const RouteStandIn route(script);
        const int before = peakKilobytes();
        QCOMPARE(lastRoute(60000), last);
        QVERIFY(peakKilobytes() - before < 400000);
    }

    void aFloodWithoutEndIsEnded()
    {
        const RouteStandIn route("echo $$ > \"$ROUTE_PID\"; exec yes 'a b c'");
        QByteArray line;
        for (int waitMs = 20; line.isEmpty() && waitMs < patienceMs; waitMs *= 2)
            line = lastRoute(waitMs);
        QVERIFY(line.startsWith("a b c"));
        QVERIFY(!QFileInfo::exists(QStringLiteral("/proc/%1").arg(route.pid())));
    }

    void theRealCommand()
    {
        const OwnNetwork network;
        if (!network.ip("link add eth0 type veth"))
            QSKIP(OwnNetwork::refused);
        if (QStandardPaths::findExecutable(QStringLiteral("route")).isEmpty())
            QSKIP("route is not installed");
        QVERIFY(network.ip("addr add 10.20.30.40/24 dev eth0"));
        QVERIFY(network.ip("link set eth0 up"));
        QVERIFY(network.ip("route add 10.50.0.0/16 via 10.20.30.1"));
        const QList<QByteArray> columns = lastRoute(30000).simplified().split(' ');
        QCOMPARE(columns.mid(0, 3), QList<QByteArray>({"10.50.0.0", "10.20.30.1", "255.255.0.0"}));
    }
};

VIREO_TEST_MAIN(LiveNetworkTest)
#include "tst_livenetwork.moc"
