#include "bench/bench.h"
#include "bench/link.h"
#include "bench/medians.h"
#include "bench/program.h"
#include "link/tcp_server.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QThread>

/** The link from outside, beside a server of the toolkit that does nothing else, and a well-known panel
 * server. */

namespace {

constexpr quint16 echoPort = 5071;
constexpr quint16 dropPort = 5072;
constexpr quint16 lcdPort = 5073;
constexpr int requestsInTurn = 50;
constexpr int burstRounds = 5;
constexpr char burstEnd = '\xFF';

double microseconds(const QElapsedTimer& clock)
{
    return double(clock.nsecsElapsed()) / 1000;
}

QString programPath(const Bench& bench, const char* name)
{
    return QDir(bench.programs).filePath(QLatin1String(name));
}

void timeRequests(Link& link, int count, std::vector<double>& times)
{
    const QByteArray request = modeRequest();
    for (int i = 0; i < count; ++i) {
        QElapsedTimer clock;
        clock.start();
        link.write(request);
        link.read(request.size()); // the answer is as long as the question, of the echo too
        times.push_back(microseconds(clock));
    }
}

/** What a supervisor says while music plays, each packet a little different from the one before. */
QByteArray mixedPackets(int count)
{
    QByteArray all;
    for (int i = 0; i < count; ++i) {
        switch (i % 10) {
        case 0:
            all +=
                packetOf(Command::Time, QByteArray::fromHex(QByteArray::number(100000 + i / 10 % 60 + 10)));
            break;
        case 3:
            all += packetOf(Command::Key, wire::Key::PlayPause); // play or pause
            break;
        case 6:
            all += packetOf(Command::Mode, i / 10 % 16);
            break;
        case 9:
            all += packetOf(Command::DiskInfo, QByteArray(4, char(i / 10 % 100)));
            break;
        default:
            all += packetOf(Command::Level, i * 37 % 255);
        }
    }
    return all;
}

double burstMicroseconds(Link& panel, const QByteArray& packets)
{
    QElapsedTimer clock;
    clock.start();
    panel.write(packets + modeRequest());
    panel.read(modeAnswerBytes);
    return microseconds(clock);
}

double dropMicroseconds(Link& bare, const QByteArray& packets)
{
    QElapsedTimer clock;
    clock.start();
    bare.write(packets + burstEnd);
    bare.read(1);
    return microseconds(clock);
}

void addRequestRows(Bench& bench, Link& panel)
{
    const Program server(programPath(bench, "bare-server"),
                         {QString::number(echoPort), QStringLiteral("echo")});
    Link echo(echoPort);
    std::vector<double> panelTimes;
    std::vector<double> echoTimes;
    timeRequests(panel, requestsInTurn, panelTimes);
    timeRequests(echo, requestsInTurn, echoTimes);
    panelTimes.clear(); // the screen was painted meanwhile
    echoTimes.clear();
    for (int done = 0; done < bench.effort.requests; done += requestsInTurn) {
        timeRequests(panel, requestsInTurn, panelTimes);
        timeRequests(echo, requestsInTurn, echoTimes);
    }
    bench.table.add("mode request, median / a bare echo server", "us", quantile(panelTimes, 0.5),
                    quantile(echoTimes, 0.5), atMostTimes(1.2));
    bench.table.add("mode request, 99 of 100 / a bare echo server", "us", quantile(panelTimes, 0.99),
                    quantile(echoTimes, 0.99), atMostTimes(1.2));
}

void addBurstRows(Bench& bench, Link& panel)
{
    const Program server(programPath(bench, "bare-server"),
                         {QString::number(dropPort), QStringLiteral("drop")});
    Link drop(dropPort);
    const int many = bench.effort.burstPackets;
    const int few = many / 100;
    const QByteArray manyPackets = mixedPackets(many);
    const QByteArray fewPackets = mixedPackets(few);
    std::vector<double> panelMany;
    std::vector<double> panelFew;
    std::vector<double> dropMany;
    for (int i = 0; i < burstRounds; ++i) {
        panelMany.push_back(burstMicroseconds(panel, manyPackets) / many);
        dropMany.push_back(dropMicroseconds(drop, manyPackets) / many);
        for (int j = 0; j < burstRounds; ++j)
            panelFew.push_back(burstMicroseconds(panel, fewPackets) / few);
    }
    const std::string manyText = std::to_string(many);
    bench.table.add("a packet in a burst of " + manyText + " / a bare server dropping it", "us",
                    median(panelMany), median(dropMany));
    bench.table.add("a packet in a burst of " + manyText + " / of " + std::to_string(few), "us",
                    median(panelMany), median(panelFew), atMostTimes(1.2));
}

/** The panel server of the lcdproc package, with its text driver, in a process of its own. */
class LcdServer {
public:
    static QString path()
    {
        return QFile::exists(QStringLiteral("/usr/sbin/LCDd")) ? QStringLiteral("/usr/sbin/LCDd") : QString();
    }

    explicit LcdServer(const Bench& bench)
        : program(path(), {QStringLiteral("-f"), QStringLiteral("-c"), configuration(bench)})
        , link(lcdPort)
    {
        link.exchange("hello\n", "\n", 1);
        link.exchange("screen_add s\nwidget_add s w string\n", "success\n", 2);
    }

    static QByteArray command() { return "widget_set s w 1 1 text\n"; }
    void run(int commands) { link.exchange(command().repeated(commands), "success\n", commands); }

    Program program;
    Link link;

private:
    static QString driverFolder()
    {
        for (const QFileInfo& folder :
             QDir(QStringLiteral("/usr/lib")).entryInfoList({QStringLiteral("*-linux-*")}))
            if (QFile::exists(folder.filePath() + QStringLiteral("/lcdproc/text.so")))
                return folder.filePath() + QStringLiteral("/lcdproc/");
        return QStringLiteral("/usr/lib/lcdproc/");
    }
    static QString configuration(const Bench& bench)
    {
        const QString path = QDir(bench.scratch).filePath(QStringLiteral("lcd.conf"));
        QFile file(path);
        file.open(QIODevice::WriteOnly);
        file.write("[server]\nDriver=text\nBind=127.0.0.1\nReportToSyslog=no\nServerScreen=no\nDriverPath="
                   + driverFolder().toUtf8() + "\nPort=" + QByteArray::number(lcdPort)
                   + "\n[text]\nSize=20x4\n");
        return path;
    }
};

void addLcdRequestRow(Bench& bench, Link& panel, LcdServer& lcd)
{
    std::vector<double> panelTimes;
    std::vector<double> lcdTimes;
    for (int i = 0; i < bench.effort.peerRequests; ++i) {
        timeRequests(panel, 1, panelTimes);
        QElapsedTimer clock;
        clock.start();
        lcd.run(1);
        lcdTimes.push_back(microseconds(clock));
    }
    bench.table.add("mode request, median / a command of LCDd", "us", median(panelTimes), median(lcdTimes));
}

void addLcdBurstRow(Bench& bench, Link& panel, LcdServer& lcd)
{
    const int count = bench.effort.peerPackets;
    const double ours = burstMicroseconds(panel, mixedPackets(count));
    QElapsedTimer clock;
    clock.start();
    lcd.run(count);
    bench.table.add("a packet in a burst of " + std::to_string(count) + " / a command of LCDd", "us",
                    ours / count, microseconds(clock) / count);
}

void addLcdIdleRows(Bench& bench, const Program& panel, const LcdServer& lcd)
{
    const ActivityFigures panelBefore = panel.activity();
    const ActivityFigures lcdBefore = lcd.program.activity();
    QThread::msleep(ulong(bench.effort.idleMilliseconds));
    const ActivityFigures panelAfter = panel.activity();
    const ActivityFigures lcdAfter = lcd.program.activity();
    const std::string time = " in " + std::to_string(bench.effort.idleMilliseconds) + " idle ms / LCDd";
    bench.table.add("wakeups" + time, "", panelAfter.wakeups - panelBefore.wakeups,
                    lcdAfter.wakeups - lcdBefore.wakeups);
    bench.table.add("processor time" + time, "us",
                    panelAfter.processorMicroseconds - panelBefore.processorMicroseconds,
                    lcdAfter.processorMicroseconds - lcdBefore.processorMicroseconds);
    bench.table.add("private memory / LCDd", "MiB", panel.memory().privateMiB,
                    lcd.program.memory().privateMiB);
}

} // namespace

void addLinkRows(Bench& bench)
{
    qputenv("VIREO_ROOT", bench.unit.toUtf8());
    const Program program(programPath(bench, "vireo"));
    Link panel(tcp_server::port);
    panel.write(packetOf(Command::Device, wire::Source::FrontUsb));
    addRequestRows(bench, panel);
    addBurstRows(bench, panel);
}

void addPanelServerRows(Bench& bench)
{
    if (LcdServer::path().isEmpty())
        return bench.table.leaveOut("a well-known panel server", "LCDd is not installed");
    qputenv("VIREO_ROOT", bench.unit.toUtf8());
    const Program program(programPath(bench, "vireo"));
    Link panel(tcp_server::port);
    panel.write(packetOf(Command::Device, wire::Source::FrontUsb));
    LcdServer lcd(bench);
    addLcdRequestRow(bench, panel, lcd);
    addLcdIdleRows(bench, program, lcd);
    addLcdBurstRow(bench, panel, lcd);
}
