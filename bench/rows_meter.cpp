#include "bench/bench.h"
#include "bench/medians.h"
#include "bench/panel.h"
#include "protocol/paparser.h"
#include "screens/levelmeter.h"

#include <QLabel>

#include <array>
#include <iterator>
#include <random>
#include <string>

/** What arrives inside the panel: junk in the receive queue, and levels on the meter. */

namespace {

constexpr quint8 levels[] = {3, 7, 40, 30, 200, 255, 90, 12, 60, 5, 120, 1, 25, 64, 16, 100};

/** Bytes of which no two begin a packet. */
QByteArray junk(int bytes)
{
    std::minstd_rand random(1);
    QByteArray result(bytes, '\0');
    for (char& byte : result)
        byte = char(0x20 + random() % 0xDF);
    return result;
}

/** The meter's labels and the background alone, in a window of their own. */
class BareMeter {
public:
    explicit BareMeter(const Panel& panel)
    {
        m_window.setFixedSize(320, 240);
        copy(panel, "lbl_background");
        for (int i = 0; i < LevelMeter::segments; ++i)
            copy(panel, "lbLevel" + std::to_string(i + 1));
        for (int i = 0; i < LevelMeter::segments; ++i)
            m_lit[std::size_t(i)] = copy(panel, "lbLevel" + std::to_string(i + 1) + "_2");
        m_window.show();
        Panel::settle();
    }

    void light(int segments)
    {
        for (int i = 0; i < LevelMeter::segments; ++i)
            m_lit[std::size_t(i)]->setVisible(i < segments);
    }

private:
    QLabel* copy(const Panel& panel, const std::string& name)
    {
        const auto& original =
            *panel.find<QWidget>("wg_USB").findChild<QLabel*>(QString::fromStdString(name));
        auto* const label = new QLabel(&m_window);
        label->setGeometry(original.geometry());
        label->setPixmap(original.pixmap(Qt::ReturnByValue));
        return label;
    }

    QWidget m_window;
    std::array<QLabel*, LevelMeter::segments> m_lit = {};
};

void receiveLevel(Panel& panel, quint8 level)
{
    panel.receive(Command::Level, int(level));
    Panel::settle();
}

/** The segments that the panel lights for each of the levels; falling ones are smoothed, so they follow from
 * all. */
std::vector<int> segmentsShown(Panel& panel)
{
    std::vector<int> segments;
    const auto connection = QObject::connect(&panel.parser(), &PAparser::sgMasterLevel,
                                             [&segments](unsigned char lit) { segments.push_back(lit); });
    for (const quint8 level : levels)
        receiveLevel(panel, level);
    QObject::disconnect(connection);
    return segments;
}

double repaintedPixels(Panel& panel, QWidget& background)
{
    PaintCounter counter(background);
    for (const quint8 level : levels)
        receiveLevel(panel, level);
    return counter.pixels / double(std::size(levels));
}

} // namespace

void addJunkRows(Bench& bench)
{
    Panel panel(bench);
    std::vector<Task> tasks;
    std::vector<int> lengths;
    for (int bytes = 10000; bytes <= bench.effort.mostJunkBytes; bytes *= 10) {
        lengths.push_back(bytes);
        tasks.push_back({std::to_string(bytes), [&panel, text = junk(bytes)] { panel.receive(text); }});
    }
    const std::vector<double> times = medianMicroseconds(bench.effort, tasks);
    const double first = times.front() / lengths.front() * 1000;
    for (std::size_t i = 1; i < lengths.size(); ++i)
        bench.table.add("a byte of " + tasks[i].name + " of junk / of " + tasks.front().name, "ns",
                        times[i] / lengths[i] * 1000, first, atMostTimes(1.2));
}

void addMeterRows(Bench& bench)
{
    Panel panel(bench);
    panel.receive(Command::Device, wire::Source::FrontUsb);
    Panel::settle();
    BareMeter bare(panel);
    segmentsShown(panel);
    const std::vector<int> segments = segmentsShown(panel);
    std::size_t panelNext = 0;
    std::size_t bareNext = 0;
    const auto receiveNext = [&] { receiveLevel(panel, levels[panelNext++ % std::size(levels)]); };
    const auto lightNext = [&] {
        bare.light(segments[bareNext++ % segments.size()]);
        Panel::settle();
    };
    const auto times = medianMicroseconds(bench.effort, {{"packet", receiveNext}, {"labels", lightNext}});
    bench.table.add("level packet to painted meter / its labels alone", "us", times[0], times[1],
                    atMostTimes(1.5));
    auto& screen = panel.find<QWidget>("wg_USB");
    auto& background = *screen.findChild<QLabel*>(QStringLiteral("lbl_background"));
    const QRect all = screen.findChild<QLabel*>(QStringLiteral("lbLevel1"))->geometry()
        | screen.findChild<QLabel*>(QStringLiteral("lbLevel8"))->geometry();
    bench.table.add("pixels repainted a level / pixels of the meter", "", repaintedPixels(panel, background),
                    double(all.width()) * all.height(), atMostTimes(1));
}
