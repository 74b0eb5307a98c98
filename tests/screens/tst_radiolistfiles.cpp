#include "tests/config/privileges.h"
#include "tests/screens/radiounit.h"
#include "tests/support/logcatcher.h"
#include "tests/support/panelmain.h"
#include "tests/support/strings.h"

#include <QXmlStreamReader>

using namespace Radio;

class RadioListFilesTest : public QObject {
    Q_OBJECT

private:
    std::optional<Unit> m_unit;

private slots:
    void init() { m_unit.emplace(); }

    void numbersAreWrittenAsTheyWereRead()
    {
        m_unit->writeStations(1, 0);
        m_unit->writeRadio(
            "<config><category>200</category><channels>300</channels><prefix>kr</prefix></config>");
        RadioListForm form;
        form.XMLParse();
        form.XMLwriteInfo();
        QVERIFY(m_unit->readRadio().contains("<category>-56</category>\n    <channels>44</channels>"));
    }

    void entriesOfAFile_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<int>("count");
        QTest::addColumn<QStringList>("titles");
        const auto row = [](const char* name, const QByteArray& file, int count, const QStringList& titles) {
            QTest::newRow(name) << file << count << titles;
        };
        const QByteArray good = "<entry><title>t</title><url>u</url></entry>";
        const QStringList t = strings({"t"});
        row("below \"channels\"", "<channels>" + good + "</channels>", 1, t);
        row("below \"config\"", "<config><channels>" + good + "</channels></config>", 1, t);
        row("below any other name", "<list><x>" + good + good + "</x></list>", 2, t + t);
        row("as the root", good, 1, t);
        row("url first", "<c><entry><url>u</url><title>t</title></entry></c>", 1, t);
        row("other children are passed by",
            "<c><entry><id>1</id><title>t</title><x><y/></x><url>u</url>z</entry></c>", 1, t);
        row("children of children count", "<c><entry><x><title>t</title><url>u</url></x></entry></c>", 1, t);
        row("the last title counts", "<c><entry><title>s</title><title>t</title><url>u</url></entry></c>", 1,
            t);
        row("an empty title does not replace one",
            "<c><entry><title>t</title><title> </title><title/><url>u</url></entry></c>", 1, t);
        row("a url inside an empty title",
            "<c><entry><title><url>u</url></title><title>t</title></entry></c>", 1, t);
        row("white space is simplified",
            "<c>\r\n<entry>\r\n<title>\r\n a \t b </title><url> u </url></entry></c>", 1, strings({"a b"}));
        row("a blank title counts but is not listed", "<c><entry><title> \n </title><url>u</url></entry></c>",
            1, {});
        row("a blank url too", "<c><entry><title>t</title><url> </url></entry></c>", 1, {});
        row("no url", "<c><entry><title>t</title></entry></c>", 1, {});
        row("no title", "<c><entry><url>u</url></entry></c>", 1, {});
        row("an empty entry", "<c><entry/><entry></entry>" + good + "</c>", 3, t);
        row("an entry in an entry ends with the inner one",
            "<c><entry><title>t</title><entry><url>u</url></entry><url>v</url></entry></c>", 1, t);
        row("names are case-sensitive", "<c><Entry/><entry><Title>t</Title><url>u</url></entry></c>", 1, {});
        row("CDATA", "<c><entry><title><![CDATA[<t>]]></title><url>u</url></entry></c>", 1, strings({"<t>"}));
        row("a comment before the text hides it",
            "<c><entry><title><!-- --> t</title><url>u</url></entry></c>", 1, {});
        row("no entries", "<channels></channels>", 0, {});
        row("empty", "", 0, {});
        row("no closing tags", "<c>" + good + "<entry><title>s</title><url>u</url>", 2, strings({"t", "s"}));
        row("damaged behind the first", "<c>" + good + "<entry></c>" + good, 2, t);
    }
    void entriesOfAFile()
    {
        QFETCH(QByteArray, file);
        QFETCH(int, count);
        QFETCH(QStringList, titles);
        m_unit->writeUser(file);
        ListScreen form;
        LogCatcher log(5);
        QCOMPARE(form.RadioListFromXML(m_unit->conf(QStringLiteral("user_channels.xml"))), count);
        form.InitList();
        QCOMPARE(form.titles(), titles);
    }

    void aCutEntryIsLogged()
    {
        m_unit->writeUser("<c><entry><title>t</title>");
        RadioListForm form;
        LogCatcher log(4);
        const QString path = m_unit->conf(QStringLiteral("user_channels.xml"));
        QCOMPARE(form.RadioListFromXML(path), 1);
        QCOMPARE(log.plain(),
                 QStringList(
                     QStringLiteral("E Config read [%1] ended early: Premature end of document.").arg(path)));
    }

    void linesOfOneReading()
    {
        m_unit->writeStations(1, 0);
        QFile::remove(m_unit->conf(QStringLiteral("user_channels.xml")));
        RadioListForm form;
        LogCatcher log;
        form.XMLParse();
        const QString presets = QStringLiteral("I ") + m_unit->conf(QStringLiteral("prefix_channels_kr.xml"));
        const char* const listFromXml = "int RadioListForm::RadioListFromXML(QString)";
        const char* const addElement =
            "void RadioListForm::addElementDataToMap(QXmlStreamReader&, QMap<QString, QString>&) const";
        QCOMPARE(
            log.plain(),
            strings({"void RadioListForm::XMLParse()", "void RadioListForm::RadioInfoFromXML(QString)"})
                + QStringList(presets)
                + strings({listFromXml, "QMap<QString, QString> RadioListForm::parseData(QXmlStreamReader&)",
                           addElement, addElement, listFromXml,
                           "E RadioList_XML Error MSG [No such file or directory]"}));
    }

    void withoutAnyFileTheListIsEmpty()
    {
        ListScreen form;
        LogCatcher log(2);
        form.enter();
        QCOMPARE(form.rows(), 0);
        const QString list = QStringLiteral("E RadioList_XML Error MSG [No such file or directory]");
        QCOMPARE(log.plain(),
                 QStringList({QStringLiteral("E RadioInfo XML [No such file or directory]"),
                              QStringLiteral("I ") + m_unit->conf(QStringLiteral("prefix_channels_.xml")),
                              list, list}));
    }

    void withoutRootThePathsAreTheUnitsOwn()
    {
        RadioListForm form;
        qunsetenv("VIREO_ROOT");
        LogCatcher log(2);
        form.XMLParse();
        QVERIFY(log.has(QStringLiteral("I /opt/orvane/conf/prefix_channels_.xml")));
    }

    void withoutRadioFileTheOldRecordStays()
    {
        m_unit->writeStations(3, 2);
        m_unit->writeRadio(radio(1, 1, QStringLiteral("u"), QStringLiteral("n"), QStringLiteral("no")));
        ListScreen form;
        form.enter();
        QFile::remove(m_unit->conf(QStringLiteral("radio.xml")));
        form.enter();
        QCOMPARE(form.titles().size(), 5);
        QCOMPARE(form.row(), 4);
        form.XMLwriteInfo();
        QCOMPARE(m_unit->readRadio(),
                 radio(1, 1, QStringLiteral("u"), QStringLiteral("n"), QStringLiteral("no")));
    }

    void aFolderIsNoChannelFile()
    {
        QDir().mkpath(m_unit->conf(QStringLiteral("user_channels.xml")));
        RadioListForm form;
        LogCatcher log(4);
        QCOMPARE(form.RadioListFromXML(m_unit->conf(QStringLiteral("user_channels.xml"))), 0);
        QCOMPARE(log.lines().size(), 1);
        QVERIFY(log.plain().at(0).startsWith(QStringLiteral("E RadioList_XML Error MSG [")));
    }

    void recordOfTheFile_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QByteArray>("written");
        const auto row = [](const char* name, const char* file, const QByteArray& written) {
            QTest::newRow(name) << QByteArray(file) << written;
        };
        const auto record = [](int category, int channel, const char* url, const char* name,
                               const char* enable, const char* prefix) {
            return radio(category, channel, QString::fromUtf8(url), QString::fromUtf8(name),
                         QString::fromUtf8(enable), QString::fromUtf8(prefix));
        };
        row("all fields",
            "<config><category>1</category><channels>2</channels><url>u2</url><name>n2</name>"
            "<enable>no</enable><prefix>p2</prefix></config>",
            record(1, 2, "u2", "n2", "no", "p2"));
        row("an empty field keeps its value",
            "<config><category/><channels></channels><url> </url><name>n2</name>"
            "<enable/><prefix>p2</prefix></config>",
            record(5, 6, "u", "n2", "yes", "p2"));
        row("what follows the prefix is not read",
            "<config><name>n2</name><prefix>p2</prefix><url>u2</url></config>",
            record(5, 6, "u", "n2", "yes", "p2"));
        row("an empty prefix does not end the reading", "<config><prefix></prefix><url>u2</url></config>",
            record(5, 6, "u2", "n", "yes", "kr"));
        row("no prefix at all", "<config><url>u2</url></config>", record(5, 6, "u2", "n", "yes", "kr"));
        row("an end tag \"entry\" ends the reading",
            "<config><url>u2</url><entry></entry><name>n2</name></config>",
            record(5, 6, "u2", "n", "yes", "kr"));
        row("text behind an end tag counts too", "<config><name>n2</name>n3<url>u2</url> </config>",
            record(5, 6, "u2", "n3", "yes", "kr"));
        row("text behind the prefix's end tag ends it as well", "<config><prefix/>p2<url>u2</url></config>",
            record(5, 6, "u", "n", "yes", "p2"));
        row("the second \"config\" counts",
            "<r><config><url>u2</url><prefix>p2</prefix></config><config><url>u3</url></config></r>",
            record(5, 6, "u3", "n", "yes", "p2"));
        row("elements outside \"config\"", "<r><url>u2</url></r>", record(5, 6, "u", "n", "yes", "kr"));
        row("a damaged file gives what stands before",
            "<config><url>u2</url><name></config><enable>no</enable>", record(5, 6, "u2", "n", "yes", "kr"));
        row("an empty file", "", record(5, 6, "u", "n", "yes", "kr"));
    }
    void recordOfTheFile()
    {
        QFETCH(QByteArray, file);
        QFETCH(QByteArray, written);
        m_unit->writeRadio(radio(5, 6, QStringLiteral("u"), QStringLiteral("n")));
        RadioListForm form;
        form.XMLParse();
        m_unit->writeRadio(file);
        LogCatcher log(5);
        form.RadioInfoFromXML(m_unit->conf(QStringLiteral("radio.xml")));
        form.XMLwriteInfo();
        QCOMPARE(m_unit->readRadio(), written);
    }

    void aRecordWithoutPrefixIsReadAgain()
    {
        m_unit->writeUser(stations('u', 2));
        ListScreen form;
        form.enter();
        form.setRow(1);
        form.select_action();
        QCOMPARE(m_unit->readRadio(),
                 radio(1, 1, QStringLiteral("http://u1/"), QStringLiteral("u1"), QStringLiteral("yes"),
                       QString()));
        ListScreen next;
        LogCatcher log(4);
        next.enter();
        QCOMPARE(next.row(), 1);
        QCOMPARE(log.plain().value(0),
                 QStringLiteral("E Config read [%1] ended early: end of document")
                     .arg(m_unit->conf(QStringLiteral("radio.xml"))));
    }

    void theOldRecordStaysWhereAFileIsCut()
    {
        m_unit->writeStations(2, 1);
        const QByteArray whole =
            radio(1, 0, QStringLiteral("u2"), korean, QStringLiteral("no"), QStringLiteral("kr"));
        for (int length = 0; length < whole.size(); ++length) {
            m_unit->writeRadio(station(0, 1));
            RadioListForm form;
            LogCatcher log(5);
            form.XMLParse();
            m_unit->writeRadio(whole.left(length));
            form.XMLParse();
            form.XMLwriteInfo();
            const QByteArray written = m_unit->readRadio();
            QVERIFY(written.contains("<url>u</url>") || written.contains("<url>u2</url>"));
            QVERIFY(written.contains("<name>n</name>")
                    || written.contains(ConfigBytes::element("name", korean)));
            QVERIFY(written.contains("<enable>yes</enable>") || written.contains("<enable>no</enable>"));
            QVERIFY(written.contains("<prefix>kr</prefix>"));
        }
    }

    void aCutChannelFileGivesTheStationsBeforeTheCut()
    {
        m_unit->writeStations(0, 0);
        const QByteArray whole =
            channels(entry(QStringLiteral("a"), QStringLiteral("u")) + entry(korean, QStringLiteral("v")));
        const QStringList all{QStringLiteral("a"), korean};
        ListScreen form;
        for (int length = 0; length <= whole.size(); ++length) {
            m_unit->writePresets(whole.left(length));
            LogCatcher log(5);
            form.enter();
            QCOMPARE(form.titles(), all.mid(0, form.rows()));
        }
        QCOMPARE(form.rows(), 2);
    }

    void anEntryIsReadFromWhereTheReaderStands()
    {
        RadioListForm form;
        QXmlStreamReader xml(QByteArray("<c><entry><title>t</title><url>u</url></entry></c>"));
        while (!xml.isEndElement() || xml.name() != QLatin1String("entry"))
            xml.readNext();
        QCOMPARE(form.parseData(xml).size(), 0);
        QCOMPARE(xml.tokenType(), QXmlStreamReader::EndElement);
        QXmlStreamReader cut(QByteArray("<entry><title>t</title><url>u"));
        cut.readNextStartElement();
        QCOMPARE(form.parseData(cut).keys(), strings({"title"}));
    }

    void onlyStartTagsGiveText()
    {
        const RadioListForm form;
        QMap<QString, QString> map;
        QXmlStreamReader xml(QByteArray("<a>1</a>"));
        form.addElementDataToMap(xml, map);
        QCOMPARE(map.size(), 0);
        xml.readNextStartElement();
        form.addElementDataToMap(xml, map);
        QCOMPARE(map.value(QStringLiteral("a")), QStringLiteral("1"));
    }

    void aMissingFolderIsNotNoticedOnWriting()
    {
        m_unit->writeStations(1, 0);
        ListScreen form;
        form.enter();
        QDir(m_unit->path(QStringLiteral("/opt"))).removeRecursively();
        QSignalSpy main(&form, &RadioListForm::sgSetMain);
        LogCatcher log(1);
        form.select_action();
        QCOMPARE(log.lines(), QStringList());
        QCOMPARE(main.count(), 1);
    }

    void aFullDiskIsLoggedAndTheOldFileStays()
    {
        m_unit->writeStations(1, 0);
        ListScreen form;
        form.enter();
        const QByteArray old = m_unit->readRadio();
        QSignalSpy main(&form, &RadioListForm::sgSetMain);
        LogCatcher log(1);
        {
            const FileSizeLimit limit(0);
            form.select_action();
        }
        QCOMPARE(log.plain(),
                 QStringList(QStringLiteral("E Config write [%1] File too large")
                                 .arg(m_unit->conf(QStringLiteral("radio.xml")))));
        QCOMPARE(m_unit->readRadio(), old);
        QCOMPARE(main.count(), 1);
    }
};

VIREO_TEST_MAIN(RadioListFilesTest)
#include "tst_radiolistfiles.moc"
