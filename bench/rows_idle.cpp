#include "bench/bench.h"
#include "bench/link.h"
#include "bench/program.h"
#include "link/tcp_server.h"
#include "screens/menuform.h"
#include "widgets/pictureflow.h"
#include "widgets/pictureflowanimator.h"

#include <QDir>
#include <QThread>

#include <cmath>

/** What the panel does on each screen while nothing is sent: nothing but what its timers ask for. */

namespace {

constexpr int turnMilliseconds = 3000; // of the tickers and of the setup screen
constexpr int settleMilliseconds = 500;
constexpr int updateMilliseconds = 150; // of the menu's strip

constexpr int usb = int(wire::Source::FrontUsb);
constexpr int radio = int(wire::Source::Radio);
constexpr int aoe = int(wire::Source::Aoe);
constexpr int select = int(wire::Key::Select);
constexpr int escape = int(wire::Key::Esc);
constexpr int longSelect = wire::held(wire::Key::Select);

struct Step {
    Command command;
    int value;
};

/** A screen, how to get there from the one before, and how many timers of 3 s run on it. */
struct Screen {
    const char* name;
    std::vector<Step> steps;
    int timers;
};

const Screen screens[] = {
    {"logo", {}, 0},
    {"menu", {{Command::Key, longSelect}}, 0},
    {"setup", {{Command::Key, escape}}, 1},
    {"radio", {{Command::Device, radio}}, 2},
    {"stations", {{Command::Key, select}}, 0},
    {"player", {{Command::Device, usb}}, 1},
    {"audio over Ethernet", {{Command::Device, aoe}}, 0},
    {"NetBGM", {{Command::Key, longSelect}, {Command::Encoder, 2}, {Command::Key, select}}, 0},
};

struct Activity {
    Activity(const Program& program, int milliseconds)
    {
        const ActivityFigures before = program.activity();
        QThread::msleep(ulong(milliseconds));
        const ActivityFigures after = program.activity();
        wakeups = after.wakeups - before.wakeups;
        processorMicroseconds = after.processorMicroseconds - before.processorMicroseconds;
    }
    double wakeups;
    double processorMicroseconds;
};

void go(Link& link, const std::vector<Step>& steps)
{
    for (const Step& step : steps)
        link.write(packetOf(step.command, step.value));
    QThread::msleep(settleMilliseconds);
}

/** The updates that it takes to turn the strip by one slide, one every 150 ms. */
int updatesOfATurn()
{
    MenuForm menu;
    PictureFlow& flow = *menu.findChild<PictureFlow*>();
    int updates = 0;
    for (flow.showNext(); flow.animator().step != 0; flow.updateAnimation())
        ++updates;
    return updates;
}

/** A screen rests: its timers may each wake the process once a turn. */
void addScreenRows(Bench& bench, const Program& program, const Screen& screen)
{
    const int rest = bench.effort.idleMilliseconds;
    const Activity activity(program, rest);
    const std::string name = screen.name + (" for " + std::to_string(rest)) + " ms";
    const double due = screen.timers * std::ceil(double(rest) / turnMilliseconds);
    bench.table.add("wakeups, " + name + " / due timers", "", activity.wakeups, due, atMostMore(0));
    bench.table.add("processor time, " + name, "us", activity.processorMicroseconds);
}

void addTurnRow(Bench& bench, const Program& program, Link& link)
{
    const int updates = updatesOfATurn();
    link.write(packetOf(Command::Encoder, 1));
    const Activity activity(program, settleMilliseconds + updates * updateMilliseconds);
    bench.table.add("wakeups, menu turned by one / its packet and due timers", "", activity.wakeups,
                    1 + updates, atMostMore(0));
    bench.table.add("processor time, menu turned by one", "us", activity.processorMicroseconds);
}

} // namespace

void addIdleRows(Bench& bench)
{
    qputenv("VIREO_ROOT", bench.unit.toUtf8());
    const Program program(QDir(bench.programs).filePath(QStringLiteral("vireo")));
    Link link(tcp_server::port);
    for (const Screen& screen : screens) {
        go(link, screen.steps);
        addScreenRows(bench, program, screen);
        if (screen.name == std::string("menu"))
            addTurnRow(bench, program, link);
    }
}
