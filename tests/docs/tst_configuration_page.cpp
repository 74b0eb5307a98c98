#include "config/unitpaths.h"
#include "screens/aoeform.h"
#include "screens/irform.h"
#include "screens/radiolistform.h"
#include "screens/setupform.h"
#include "tests/docs/document.h"
#include "tests/mainwindow/panel.h"
#include "tests/support/ownport.h"
#include "tests/support/routestandin.h"
#include "tools/supervisor/words.h"

#include <QDirIterator>
#include <QLabel>
#include <QListView>
#include <QNetworkInterface>
#include <QSet>
#include <QXmlStreamReader>

#include <memory>
#include <sys/stat.h>
#include <vector>

namespace {

const Document& page()
{
    static const Document configuration(QStringLiteral("docs/configuration.md"));
    return configuration;
}

/** No default: a path without a name here does not compile. */
QString nameOf(UnitPath path)
{
    switch (path) {
    case UnitPath::OperMode:
        return QStringLiteral("OperMode");
    case UnitPath::Radio:
        return QStringLiteral("Radio");
    case UnitPath::UserChannels:
        return QStringLiteral("UserChannels");
    case UnitPath::Network:
        return QStringLiteral("Network");
    case UnitPath::Version:
        return QStringLiteral("Version");
    case UnitPath::AoeConnection:
        return QStringLiteral("AoeConnection");
    case UnitPath::SampleRate:
        return QStringLiteral("SampleRate");
    case UnitPath::ResolvConf:
        return QStringLiteral("ResolvConf");
    case UnitPath::NetworkRestart:
        return QStringLiteral("NetworkRestart");
    }
    return {};
}

/** The text of each element of an example, in order; the root is left out. */
QList<QPair<QString, QString>> elementsOf(const QByteArray& xml)
{
    QList<QPair<QString, QString>> found;
    QXmlStreamReader reader(xml);
    reader.readNextStartElement();
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement)
            continue;
        const QString name = reader.name().toString();
        const bool holdsOthers = name == QLatin1String("entry");
        found.append({name, holdsOthers ? QString() : reader.readElementText()});
    }
    return found;
}

QString exampleText(const QString& heading, const QString& element)
{
    for (const auto& pair : elementsOf(page().block(heading)))
        if (pair.first == element)
            return pair.second;
    return {};
}

/** A unit that holds the examples of the page. */
void writeExamples(const UnitRoot& unit)
{
    for (const char* name : {"oper_mode.xml", "radio.xml", "network.xml", "version.xml", "aoe_conn.xml"})
        unit.writeConf(QLatin1String(name), page().block(QLatin1String(name)));
    const QByteArray stations = page().block(QStringLiteral("Station lists"));
    unit.writeConf(QStringLiteral("user_channels.xml"), stations);
    const QString prefix = exampleText(QStringLiteral("radio.xml"), QStringLiteral("prefix"));
    unit.writeConf(QStringLiteral("prefix_channels_%1.xml").arg(prefix), stations);
    UnitRoot::write(unit.path(QStringLiteral("/tmp/sampleRate")),
                    page().block(QStringLiteral("sampleRate")).trimmed());
}

/** Which file stands at a path: replacing it makes another one of it. */
quint64 fileNumber(const QString& path)
{
    struct stat found = {};
    return ::stat(path.toUtf8().constData(), &found) == 0 ? quint64(found.st_ino) : 0;
}

void say(Panel& panel, const QString& words)
{
    panel.parser().parseBySupervisor(parseWords(words.split(QLatin1Char(' '))).action.packet);
}

QString labelText(const QWidget& form, const char* name)
{
    return form.findChild<QLabel*>(QLatin1String(name))->text();
}

} // namespace

/** docs/configuration.md against the code, in both directions. */
class ConfigurationPageTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { debugLevel = 5; }

    void paths()
    {
        QMap<QString, QString> written;
        for (const TableRow& row : page().table(QStringLiteral("Files")))
            written.insert(row[1] == QLatin1String("preset") ? row[1] : Document::word(row[1]),
                           Document::word(row[0]));
        QMap<QString, QString> used = {
            {QStringLiteral("preset"), presetChannelsPath(QStringLiteral("PREFIX"))}};
        for (int i = 0; !nameOf(UnitPath(i)).isEmpty(); ++i)
            used.insert(nameOf(UnitPath(i)), unitPath(UnitPath(i)));
        QCOMPARE(written, used);
    }

    /** A walk through everything that writes replaces the files that the page calls written, and no other. */
    void writtenFiles()
    {
        Panel panel;
        writeExamples(panel.unit);
        const Table rows = page().table(QStringLiteral("Files"));
        QMap<QString, quint64> before;
        std::vector<std::unique_ptr<QFile>> kept; // while it is open, no new file gets an old one's number
        for (const TableRow& row : rows) {
            const QString path = Document::word(row[0]);
            kept.push_back(std::make_unique<QFile>(panel.unit.path(path)));
            QVERIFY(kept.back()->open(QIODevice::ReadOnly) || !kept.back()->exists());
            before.insert(path, fileNumber(panel.unit.path(path)));
        }
        for (const char* words : {"device usb", "device ir", "key select", "key select", "key long-select",
                                  "enc 2", "key select", "key select", "enc -1", "key select"})
            say(panel, QLatin1String(words));
        for (const TableRow& row : rows) {
            const QString path = Document::word(row[0]);
            const bool replaced = fileNumber(panel.unit.path(path)) != before.value(path);
            QVERIFY2(replaced == row[2].contains(QLatin1String("writes")), qPrintable(path));
        }
    }

    void missingFiles()
    {
        Table written;
        for (const TableRow& row : page().table(QStringLiteral("Files that cannot be opened")))
            written << TableRow{Document::word(row[0]), QStringLiteral("E ") + Document::word(row[1]),
                                Document::word(row[2])};
        UnitRoot unit;
        RadioListForm list;
        SetupForm setup;
        AOEForm aoe;
        LogCatcher log(4);
        Table missed;
        const auto note = [&](const char* file, const QString& shown) {
            missed << TableRow{QLatin1String(file), log.plain().join(QLatin1Char('\n')), shown};
            log.clear();
        };
        IRForm().RadioInfoFromXML(unitPath(UnitPath::Radio));
        note("radio.xml", {});
        list.RadioInfoFromXML(unitPath(UnitPath::Radio));
        note("radio.xml", {});
        list.RadioListFromXML(presetChannelsPath({}));
        note("prefix_channels_.xml", {});
        setup.XMLParse();
        note("network.xml", {});
        note("version.xml", setup.GetVersion());
        aoe.AoeInfoFromXML();
        note("sampleRate", labelText(aoe, "lb_aoe_sample_rate"));
        UnitRoot::write(unit.path(QStringLiteral("/tmp/sampleRate")), "44.1KHz");
        aoe.AoeInfoFromXML();
        note("aoe_conn.xml", labelText(aoe, "lb_aoe_ip"));
        QCOMPARE(written, missed);
    }

    void elementsAreThoseOfTheExamples_data()
    {
        QTest::addColumn<QString>("heading");
        for (const char* heading :
             {"oper_mode.xml", "radio.xml", "Station lists", "network.xml", "version.xml", "aoe_conn.xml"})
            QTest::newRow(heading) << QString::fromLatin1(heading);
    }
    void elementsAreThoseOfTheExamples()
    {
        QFETCH(QString, heading);
        QStringList written;
        for (const TableRow& row : page().table(heading))
            written << Document::word(row[0]);
        QStringList used;
        for (const auto& element : elementsOf(page().block(heading)))
            used << element.first;
        used.removeDuplicates();
        QCOMPARE(written, used);
    }

    void operModeWords()
    {
        const Table rows = page().table(QStringLiteral("oper_mode.xml"), 1);
        QMap<QString, QString> written;
        for (const TableRow& row : rows)
            written.insert(Document::word(row[1]), Document::word(row[0]));
        QMap<QString, QString> stored;
        for (const char* words : {"device usb", "device stream", "device aux", "device ir", "device aoe"}) {
            Panel panel;
            say(panel, QLatin1String(words));
            const QByteArray file = panel.unit.readConf(QStringLiteral("oper_mode.xml"));
            if (file.isEmpty())
                continue;
            stored.insert(modeName(quint8(panel.code())), elementsOf(file).value(0).second);
            if (QLatin1String(words) == QLatin1String("device usb"))
                QCOMPARE(file, page().block(QStringLiteral("oper_mode.xml")));
        }
        QCOMPARE(written, stored);
    }

    void radioExampleIsReadAndWritten()
    {
        UnitRoot unit;
        writeExamples(unit);
        RadioListForm list;
        list.XMLParse();
        unit.writeConf(QStringLiteral("radio.xml"), {});
        list.XMLwriteInfo();
        QCOMPARE(unit.readConf(QStringLiteral("radio.xml")), page().block(QStringLiteral("radio.xml")));
    }

    void stationExampleIsRead()
    {
        UnitRoot unit;
        writeExamples(unit);
        RadioListForm list;
        list.XMLParse();
        list.InitList();
        const QAbstractItemModel* model = list.findChild<QListView*>()->model();
        QStringList shown;
        for (int row = 0; row < model->rowCount(); ++row)
            shown << model->index(row, 0).data().toString();
        QStringList titles;
        for (const auto& element : elementsOf(page().block(QStringLiteral("Station lists"))))
            if (element.first == QLatin1String("title"))
                titles << element.second;
        QCOMPARE(shown, titles + titles); // presets, then the user's
    }

    void networkExampleIsReadAndWritten()
    {
        UnitRoot unit;
        writeExamples(unit);
        SetupForm setup;
        unit.writeConf(QStringLiteral("network.xml"), {});
        setup.XMLwriteInfo();
        QCOMPARE(unit.readConf(QStringLiteral("network.xml")), page().block(QStringLiteral("network.xml")));
    }

    void liveValuesThatAreMissing()
    {
        UnitRoot unit;
        const RouteStandIn none;
        unit.writeConf(QStringLiteral("network.xml"), "<config><dhcp>yes</dhcp></config>");
        SetupForm setup;
        setup.XMLParse();
        QStringList shown;
        for (const char* name : {"lb_IPAddr", "lb_netmask", "lb_dns1", "lb_dns2", "lb_gateway"})
            shown << labelText(setup, name);
        QStringList written;
        for (const TableRow& row : page().table(QStringLiteral("network.xml"), 1))
            written << Document::word(row[2]);
        const auto interface = QNetworkInterface::interfaceFromName(QStringLiteral("eth0"));
        if (!interface.addressEntries().isEmpty()) {
            shown.erase(shown.begin(), shown.begin() + 2);
            written.erase(written.begin(), written.begin() + 2);
        }
        QCOMPARE(written, shown);
    }

    void smallExamplesAreShown()
    {
        UnitRoot unit;
        writeExamples(unit);
        QCOMPARE(SetupForm().GetVersion(),
                 exampleText(QStringLiteral("version.xml"), QStringLiteral("value")));
        AOEForm aoe;
        aoe.AoeInfoFromXML();
        QCOMPARE(labelText(aoe, "lb_aoe_ip"),
                 exampleText(QStringLiteral("aoe_conn.xml"), QStringLiteral("ip_addr")));
        QCOMPARE(labelText(aoe, "lb_aoe_sample_rate").toUtf8(),
                 page().block(QStringLiteral("sampleRate")).trimmed());
    }

    void logLines()
    {
        const Table rows = page().table(QStringLiteral("Command line"));
        QStringList written;
        for (const TableRow& row : rows)
            written << Document::word(row[2]).replace(QLatin1String("ESC"), QLatin1String("\x1B"));
        LogCatcher log(0);
        for (int level = 0; level < 5; ++level) {
            DPRINTF(level, "text");
            QCOMPARE(Document::number(rows.value(level).value(0)), level);
        }
        QCOMPARE(written, log.lines());
    }

    void environment()
    {
        QSet<QString> written;
        for (const TableRow& row : page().table(QStringLiteral("Environment")))
            written << Document::word(row[0]);
        QSet<QString> used;
        static const QRegularExpression call(
            QStringLiteral("\\b(?:qgetenv|qputenv|qEnvironmentVariable\\w*|getenv|take)\\(\"(\\w+)\""));
        for (const char* room :
             {"app", "config", "link", "protocol", "tags", "widgets", "screens", "mainwindow"}) {
            const QString folder = QStringLiteral(VIREO_SOURCE_DIR "/") + QLatin1String(room);
            for (QDirIterator it(folder, {QStringLiteral("*.cpp"), QStringLiteral("*.h")}); it.hasNext();) {
                const QString source = QString::fromUtf8(UnitRoot::read(it.next()));
                for (auto matches = call.globalMatch(source); matches.hasNext();)
                    used << matches.next().captured(1);
            }
        }
        QCOMPARE(written, used);
    }
};

VIREO_PORT_TEST_MAIN(ConfigurationPageTest)
#include "tst_configuration_page.moc"
