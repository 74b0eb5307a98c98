#include "link/packet.h"
#include "tests/mainwindow/listing.h"
#include "tests/mainwindow/panel.h"
#include "tests/support/ownport.h"
#include "tests/support/routestandin.h"

#include <QListView>
#include <QPair>
#include <QSet>

namespace {

constexpr int presetStations = 3;
constexpr int userStations = 2;

using wire::Key;

const QMap<QString, Listing::Mode>& modes()
{
    return Listing::accepted().modes();
}

/** The last entry of the menu. */
int lastEntry()
{
    int last = 0;
    for (const Listing::Mode& mode : modes())
        last = qMax(last, mode.menuEntry);
    return last;
}

/** The strip of menu entries as the panel's user knows it while no time passes: a turn under way does not
 * end. */
struct MenuStrip {
    int centre = 0;
    int step = 0;
    int focus = 0;

    void set(int index)
    {
        centre = index;
        focus = index;
        step = 0;
    }
    void turn(int direction)
    {
        if (step == direction) {
            focus = centre + 2 * direction;
        } else if (step == 0) {
            const int end = direction > 0 ? lastEntry() : 0;
            if (centre == end)
                return;
            focus = centre + direction;
            step = direction;
        } else {
            focus = centre;
        }
    }
};

/** The modes as prose would tell them: one function an event, no machine. Of the listing it takes what a mode
 * shows and reports, and where it stands in the menu. */
class Model {
public:
    QString mode = QStringLiteral("StartState");
    ModeCode code = ModeCode::None;

    QString screen() const { return modes().value(mode).screen; }

    void key(int pressed)
    {
        if (pressed == int(Key::Select))
            select();
        else if (pressed == int(Key::Esc))
            escape();
        else if (pressed == wire::held(Key::Select))
            openMenu();
    }

    void turn(int steps)
    {
        for (int i = qAbs(steps); i > 0; --i)
            turnOnce(steps > 0 ? 1 : -1);
    }

    /** Each source that is active brings up its mode, in the order of the bits; one without a mode does
     * nothing. */
    void devices(int mask)
    {
        static const QPair<wire::Source, const char*> entering[] = {
            {wire::Source::FrontUsb, "sgDEVICE_USB_FRONT_Enter()"},
            {wire::Source::StreamUsb, "sgDEVICE_USB_STREAM_Enter()"},
            {wire::Source::Aux, "sgDEVICE_AUX_Enter()"},
            {wire::Source::Radio, "sgDEVICE_IR_Enter()"},
            {wire::Source::Aoe, "sgDEVICE_AOE_Enter()"},
        };
        for (const auto& [source, signal] : entering) {
            const QString next = Listing::accepted().after(mode, QLatin1String(signal));
            if (mask & int(source) && next != mode)
                next == radio ? enterRadio() : enter(next);
        }
    }

private:
    const QString radio = QStringLiteral("IRMain");
    const QString list = QStringLiteral("IRList");
    const QString setup = QStringLiteral("SetMode");
    const QString menu = QStringLiteral("MenuMode");

    void show(const QString& next)
    {
        mode = next;
        code = ModeCode(modes().value(next).code);
    }
    void enter(const QString& next)
    {
        if (next == setup)
            choice = dhcp;
        show(next);
        strip.set(modes().value(next).menuEntry);
    }
    void enterRadio() { mode == list ? show(radio) : enter(radio); }

    void openMenu()
    {
        if (mode == list || mode == menu)
            return;
        before = mode;
        show(menu);
        // Only NetBGM's way out tells the menu where it stands once more.
        if (before == QLatin1String("NetBGMMode"))
            strip.set(modes().value(before).menuEntry);
    }

    void select()
    {
        if (mode == menu)
            choose(qBound(0, strip.focus, lastEntry()));
        else if (mode == radio)
            openList();
        else if (mode == list)
            chooseStation();
        else if (mode == setup)
            selectDhcp();
    }
    void choose(int entry)
    {
        for (auto each = modes().begin(); each != modes().end(); ++each)
            if (each->menuEntry == entry && stands(each.key()))
                return enter(each.key());
    }
    /** Whether a mode has an entry of its own: the others only show where the one before them stood. */
    bool stands(const QString& each) const
    {
        return each != menu && each != list && each != QLatin1String("StartState");
    }
    void openList()
    {
        show(list);
        row = channel + (category == 1 ? presetStations : 0);
    }
    void chooseStation()
    {
        category = row < presetStations ? 0 : 1;
        channel = category == 0 ? row : row - presetStations;
        enterRadio();
    }
    void selectDhcp()
    {
        if (!editing) {
            editing = true;
            saved = choice;
            code = ModeCode::DhcpOpened;
            return;
        }
        editing = false;
        if (choice != saved)
            dhcp = choice;
        choice = dhcp;
        code = ModeCode::Setup;
    }

    void escape()
    {
        if (mode == menu)
            enter(before == QLatin1String("StartState") ? setup : before);
        else if (mode == list)
            enterRadio();
        else if (mode == setup && editing) {
            editing = false;
            choice = dhcp;
            code = ModeCode::Setup;
        }
    }

    void turnOnce(int direction)
    {
        constexpr int rows = presetStations + userStations;
        if (mode == menu)
            strip.turn(direction);
        else if (mode == list)
            row = (row + direction + rows) % rows;
        else if (mode == setup)
            choice = direction < 0;
    }

public:
    int row = 0;

private:
    MenuStrip strip;
    QString before;
    int category = 0;
    int channel = 0;
    bool dhcp = false;
    bool choice = false;
    bool saved = false;
    bool editing = false;
};

QByteArray stations(const char* name, int count)
{
    QByteArray xml = "<channels>";
    for (int i = 0; i < count; ++i)
        xml += QByteArray("<entry><title>") + name + QByteArray::number(i) + "</title><url>http://" + name
            + QByteArray::number(i) + ".example/</url></entry>";
    return xml + "</channels>";
}

/** Stations and network settings for the unit. */
void furnish(const UnitRoot& unit)
{
    unit.writeConf(QStringLiteral("radio.xml"),
                   "<config><category>0</category><channels>0</channels>"
                   "<url>u</url><name>n</name><prefix>k</prefix></config>");
    unit.writeConf(QStringLiteral("prefix_channels_k.xml"), stations("p", presetStations));
    unit.writeConf(QStringLiteral("user_channels.xml"), stations("u", userStations));
    unit.writeConf(QStringLiteral("network.xml"), "<config><dhcp>no</dhcp><dns2>192.0.2.2</dns2></config>");
}

/** The keys, those that lead to other modes more often than the rest. */
constexpr quint8 keys[] = {
    quint8(Key::Stop), quint8(Key::PlayPause),  quint8(Key::Prev),       quint8(Key::Next),
    quint8(Key::Mode), quint8(Key::Select),     quint8(Key::Select),     quint8(Key::Esc),
    quint8(Key::Esc),  wire::held(Key::Select), wire::held(Key::Select), wire::held(Key::Esc),
};

class Random {
public:
    explicit Random(quint32 seed)
        : m_state(seed)
    {
    }
    int below(int bound)
    {
        m_state = m_state * 1664525u + 1013904223u;
        return int((m_state >> 8) % quint32(bound));
    }

private:
    quint32 m_state;
};

/** What somebody does on the front panel: one byte of one command. */
struct Event {
    Command command;
    int value;

    static Event any(Random& random)
    {
        const int kind = random.below(10);
        if (kind < 5)
            return {Command::Key, keys[random.below(int(std::size(keys)))]};
        if (kind < 9)
            return {Command::Encoder, random.below(7) - 3};
        return {Command::Device, random.below(32)};
    }
    QByteArray packet() const { return packetOf(command, value); }
    void happenIn(Model& model) const
    {
        if (command == Command::Key)
            model.key(value);
        else if (command == Command::Encoder)
            model.turn(value);
        else
            model.devices(value);
    }
};

} // namespace

class RandomJourneyTest : public QObject {
    Q_OBJECT

private slots:
    void modeAndScreenFollow_data()
    {
        QTest::addColumn<quint32>("seed");
        for (quint32 seed = 1; seed <= 4; ++seed)
            QTest::newRow(qPrintable(QStringLiteral("seed %1").arg(seed))) << seed;
    }
    void modeAndScreenFollow()
    {
        QFETCH(quint32, seed);
        LogCatcher log(5);
        const RouteStandIn route("echo 0.0.0.0 192.0.2.1");
        Panel panel;
        furnish(panel.unit);
        Model model;
        Random random(seed);
        auto* view = panel.window.findChild<QListView*>(QStringLiteral("listView"));
        QSet<QString> visited;
        for (int i = 0; i < 2000; ++i) {
            const Event event = Event::any(random);
            panel.window.stackBuff(event.packet());
            event.happenIn(model);
            const QStringList expected = model.screen().split(QLatin1Char(' '), Qt::SkipEmptyParts);
            const QByteArray where = "event " + QByteArray::number(i) + ", packet " + event.packet().toHex()
                + ": expected " + model.screen().toLatin1() + ", shows "
                + panel.screens().join(QLatin1Char(' ')).toLatin1();
            QVERIFY2(panel.screens() == expected, where.constData());
            QVERIFY2(panel.code() == int(model.code), where.constData());
            if (model.mode == QStringLiteral("IRList"))
                QVERIFY2(view->currentIndex().row() == model.row, where.constData());
            visited << model.mode;
        }
        QVERIFY(visited.size() >= 7);
    }
};

VIREO_PORT_TEST_MAIN(RandomJourneyTest)
#include "tst_random_journey.moc"
