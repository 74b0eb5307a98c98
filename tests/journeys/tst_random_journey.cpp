#include "link/packet.h"
#include "tests/mainwindow/panel.h"
#include "tests/support/panelmain.h"
#include "tests/support/routestandin.h"

#include <QListView>
#include <QSet>

namespace {

constexpr int presetStations = 3;
constexpr int userStations = 2;
constexpr int menuEntries = 5;

using wire::Key;

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
            const int end = direction > 0 ? menuEntries - 1 : 0;
            if (centre == end)
                return;
            focus = centre + direction;
            step = direction;
        } else {
            focus = centre;
        }
    }
};

/** The modes written out as prose would: one function an event, no machine. */
class Model {
public:
    QString screen;
    ModeCode code = ModeCode::None;

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

    void devices(int mask)
    {
        if (mask & int(wire::Source::FrontUsb) && screen != usb)
            enterUsb();
        if (mask & int(wire::Source::Radio) && screen != radio)
            enterRadio();
        if (mask & int(wire::Source::Aoe) && screen != aoe)
            enterAoe();
    }

private:
    const QString usb = QStringLiteral("wg_USB");
    const QString aoe = QStringLiteral("wg_AOE");
    const QString radio = QStringLiteral("wg_IR");
    const QString list = QStringLiteral("wg_IRList");
    const QString setup = QStringLiteral("wg_Setting");
    const QString netBgm = QStringLiteral("wg_NetBGM");
    const QString menu = QStringLiteral("wg_Menu");

    void enter(const QString& next, ModeCode nextCode)
    {
        // Leaving NetBGM sets the menu's entry once more.
        if (screen == netBgm)
            strip.set(3);
        screen = next;
        code = nextCode;
    }
    void enterUsb()
    {
        enter(usb, ModeCode::Usb);
        strip.set(0);
    }
    void enterAoe()
    {
        enter(aoe, ModeCode::Aoe);
        strip.set(1);
    }
    void enterRadio()
    {
        const bool fromList = screen == list;
        enter(radio, ModeCode::IRMain);
        if (!fromList)
            strip.set(2);
    }
    void enterSetup()
    {
        enter(setup, ModeCode::Setup);
        choice = dhcp;
        strip.set(4);
    }
    void enterNetBgm()
    {
        enter(netBgm, ModeCode::NetBgm);
        strip.set(3);
    }

    void openMenu()
    {
        if (screen == list || screen == menu)
            return;
        before = screen;
        enter(menu, ModeCode::Menu);
    }

    void select()
    {
        if (screen == menu)
            choose(strip.focus);
        else if (screen == radio)
            openList();
        else if (screen == list)
            chooseStation();
        else if (screen == setup)
            selectDhcp();
    }
    void choose(int entry)
    {
        if (entry <= 0)
            enterUsb();
        else if (entry == 1)
            enterAoe();
        else if (entry == 2)
            enterRadio();
        else if (entry == 3)
            enterNetBgm();
        else
            enterSetup();
    }
    void openList()
    {
        enter(list, ModeCode::IRList);
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
        if (screen == menu)
            returnFromMenu();
        else if (screen == list)
            enterRadio();
        else if (screen == setup && editing) {
            editing = false;
            choice = dhcp;
            code = ModeCode::Setup;
        }
    }
    void returnFromMenu()
    {
        if (before == usb)
            enterUsb();
        else if (before == aoe)
            enterAoe();
        else if (before == radio)
            enterRadio();
        else if (before == netBgm)
            enterNetBgm();
        else
            enterSetup();
    }

    void turnOnce(int direction)
    {
        constexpr int rows = presetStations + userStations;
        if (screen == menu)
            strip.turn(direction);
        else if (screen == list)
            row = (row + direction + rows) % rows;
        else if (screen == setup)
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
            const QStringList expected = model.screen.isEmpty() ? QStringList() : QStringList(model.screen);
            const QByteArray where = "event " + QByteArray::number(i) + ", packet " + event.packet().toHex()
                + ": expected " + model.screen.toLatin1() + ", shows "
                + panel.screens().join(QLatin1Char(' ')).toLatin1();
            QVERIFY2(panel.screens() == expected, where.constData());
            QVERIFY2(panel.code() == int(model.code), where.constData());
            if (model.screen == QStringLiteral("wg_IRList"))
                QVERIFY2(view->currentIndex().row() == model.row, where.constData());
            visited << model.screen;
        }
        QVERIFY(visited.size() >= 7);
    }
};

VIREO_TEST_MAIN(RandomJourneyTest)
#include "tst_random_journey.moc"
