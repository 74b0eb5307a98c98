#include "tests/docs/document.h"
#include "tests/mainwindow/listing.h"
#include "tests/mainwindow/panel.h"
#include "tests/support/ownport.h"
#include "tools/supervisor/words.h"

#include <QLabel>
#include <QProcess>

#include <algorithm>
#include <memory>

namespace {

const Document& page()
{
    static const Document protocol(QStringLiteral("docs/protocol.md"));
    return protocol;
}

QByteArray saidIn(const QString& words)
{
    const ParsedWords parsed = parseWords(words.split(QLatin1Char(' ')), Vocabulary::Packets,
                                          QDir(QStringLiteral(VIREO_SOURCE_DIR)));
    if (!parsed.ok())
        qFatal("%s: %s", qPrintable(words), qPrintable(parsed.error));
    return parsed.action.packet;
}

/** A panel on the demo unit, told things in words. */
class ToldPanel : public Panel {
public:
    ToldPanel()
    {
        const QString demo = QStringLiteral(VIREO_SOURCE_DIR "/tools/demo-unit/root/.");
        QProcess::execute(QStringLiteral("cp"), {QStringLiteral("-r"), demo, unit.path({})});
    }

    void say(const QString& words)
    {
        LogCatcher log(5);
        window.stackBuff(saidIn(words));
        QCoreApplication::processEvents();
    }
    QString report() { return modeName(quint8(code())); }
    QImage picture() { return window.grab().toImage(); }
    bool shows(const char* name) { return widget(name)->isVisibleTo(&window); }
    QString textOf(const char* name)
    {
        return shows(name) ? qobject_cast<QLabel*>(widget(name))->text() : QStringLiteral("none");
    }
};

const QMap<QString, QStringList> waysTo = {
    {QStringLiteral("none"), {}},
    {QStringLiteral("menu"), {QStringLiteral("device ir"), QStringLiteral("key long-select")}},
    {QStringLiteral("usb"), {QStringLiteral("device usb")}},
    {QStringLiteral("aoe"), {QStringLiteral("device aoe")}},
    {QStringLiteral("radio"), {QStringLiteral("device ir")}},
    {QStringLiteral("radio-list"), {QStringLiteral("device ir"), QStringLiteral("key select")}},
};

/** How a mode is reached from the start; those without a row through the menu, which opens at the radio. */
QStringList wayTo(const QString& mode)
{
    if (mode == QLatin1String("dhcp"))
        return wayTo(QStringLiteral("setup")) << QStringLiteral("key select");
    const auto& modes = Listing::accepted().modes();
    const auto listed = std::find_if(modes.begin(), modes.end(),
                                     [&](const auto& each) { return modeName(quint8(each.code)) == mode; });
    if (waysTo.contains(mode) || listed == modes.end())
        return waysTo.value(mode);
    // A turn under way goes no further than two entries: farther ones are reached in steps.
    constexpr int farthest = 2;
    QStringList way = waysTo.value(QStringLiteral("menu"));
    int turns = listed->menuEntry - modes[QStringLiteral("IRMain")].menuEntry;
    for (; turns > farthest; turns -= farthest)
        way << QStringLiteral("enc %1").arg(farthest) << QStringLiteral("key select")
            << QStringLiteral("key long-select");
    return way << QStringLiteral("enc %1").arg(turns) << QStringLiteral("key select");
}

std::unique_ptr<ToldPanel> panelIn(const QString& mode)
{
    auto panel = std::make_unique<ToldPanel>();
    for (const QString& words : wayTo(mode))
        panel->say(words);
    if (panel->report() != mode)
        qFatal("%s is not reached", qPrintable(mode));
    return panel;
}

QString codeOr(const QString& cell)
{
    const QString code = Document::word(cell);
    return code.isEmpty() ? cell : code;
}

} // namespace

/** What docs/protocol.md says of the screen, against the screen. */
class ProtocolSightsTest : public QObject {
    Q_OBJECT

private:
    static Table sights() { return page().table(QStringLiteral("What one sees")); }

    /** The modes that the table has a column for, in order. */
    static QStringList columns()
    {
        const QStringList rows = page()
                                     .section(QStringLiteral("What one sees"))
                                     .filter(QRegularExpression(QStringLiteral("^\\|")));
        return Document::code(rows.value(0));
    }

    static void checkOne(ToldPanel& panel, const QString& words, const QString& cell)
    {
        const QString mode = panel.report();
        const QImage before = panel.picture();
        panel.say(words);
        const QString there = Document::word(cell);
        if (!there.isEmpty()) {
            QCOMPARE(panel.report(), there);
            QVERIFY(there != mode);
        } else if (cell == QLatin1String("-")) {
            QCOMPARE(panel.report(), mode);
            QVERIFY(panel.picture() == before);
        } else {
            QTRY_VERIFY(panel.picture() != before);
        }
    }

private slots:
    void everyModeHasAColumn()
    {
        QStringList modes;
        for (const TableRow& row : page().table(QStringLiteral("Mode report")))
            modes << Document::word(row[2]);
        modes.sort();
        QStringList shown = columns();
        shown.sort();
        QCOMPARE(shown, modes);
    }

    void everyPacketHasARow()
    {
        QStringList said;
        for (const TableRow& row : sights())
            for (const QString& words : Document::code(row[0]))
                said << words.section(QLatin1Char(' '), 0, 0);
        for (const TableRow& row : page().table(QStringLiteral("Commands")))
            if (row[2] != QLatin1String("none"))
                QVERIFY2(said.contains(Document::word(row[2])), qPrintable(row[2]));
        for (const TableRow& row : page().table(QStringLiteral("Key codes")))
            QVERIFY2(page().text().contains(Document::word(row[1])), qPrintable(row[1]));
    }

    void cells_data()
    {
        QTest::addColumn<int>("column");
        for (int i = 0; i < columns().size(); ++i)
            QTest::newRow(qPrintable(columns().at(i))) << i + 1;
    }
    void cells()
    {
        QFETCH(int, column);
        const QString mode = QString::fromLatin1(QTest::currentDataTag());
        std::unique_ptr<ToldPanel> panel = panelIn(mode);
        for (const TableRow& row : sights()) {
            for (const QString& words : Document::code(row[0])) {
                checkOne(*panel, words, row[column]);
                if (QTest::currentTestFailed())
                    QFAIL(qPrintable(words + QStringLiteral(": ") + row[column]));
                if (panel->report() != mode)
                    panel = panelIn(mode);
            }
        }
    }

    /** The lines of a packet whose end came too late: the first three of what the panel then says. */
    void lostPacket()
    {
        QStringList written;
        for (const QString& line : page().section(QStringLiteral("Keeping step")))
            if (line.startsWith(QLatin1String("    ")))
                written << QStringLiteral("E ") + line.mid(4).trimmed();
        Panel panel;
        LogCatcher log(4);
        panel.window.stackBuff(QByteArray::fromHex("01004000") + "0123456789");
        QStringList logged;
        for (const QString& line : log.plain().mid(0, 3))
            logged << QStringLiteral("E ") + line.mid(2).trimmed();
        QCOMPARE(logged, written);
    }

    void lights()
    {
        ToldPanel panel;
        for (const TableRow& row : page().table(QStringLiteral("FRONT and REAR"))) {
            panel.say(Document::word(row[0]));
            const auto is = [&](const char* light) {
                return QLatin1String(panel.widget(light)->isHidden() ? "off" : "on");
            };
            QCOMPARE(is("lb_FrontUSB"), row[1]);
            QCOMPARE(is("lb_StreamUSB"), row[2]);
        }
    }

    void audioOverEthernetNotice()
    {
        ToldPanel panel;
        for (const TableRow& row : page().table(QStringLiteral("The audio-over-Ethernet notice"))) {
            panel.say(Document::word(row[0]));
            QCOMPARE(panel.textOf("lb_POPUP"), codeOr(row[1]));
        }
    }

    void upgradeNotice()
    {
        ToldPanel panel;
        for (const TableRow& row : page().table(QStringLiteral("The upgrade notice"))) {
            panel.say(Document::word(row[0]));
            QCOMPARE(panel.report(), Document::word(row[1]));
            QCOMPARE(panel.textOf("lb_sysup_msg"), codeOr(row[2]));
        }
    }
};

VIREO_PORT_TEST_MAIN(ProtocolSightsTest)
#include "tst_protocol_sights.moc"
