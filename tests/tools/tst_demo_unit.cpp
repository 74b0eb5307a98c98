#include "tests/support/panelmain.h"
#include "tools/supervisor/script.h"

#include <QDirIterator>
#include <QRegularExpression>
#include <QXmlStreamReader>

static QString demo(const QString& path)
{
    return QStringLiteral(VIREO_SOURCE_DIR "/tools/demo-unit/") + path;
}

static QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

static QStringList filesBelow(const QString& folder, const QString& pattern)
{
    QStringList files;
    QDirIterator walk(demo(folder), {pattern}, QDir::Files, QDirIterator::Subdirectories);
    while (walk.hasNext())
        files << walk.next();
    return files;
}

/** The texts of all elements of one name, in order. */
static QStringList elements(const QString& path, const QString& name)
{
    QStringList texts;
    QXmlStreamReader xml(contents(path));
    while (!xml.atEnd())
        if (xml.readNext() == QXmlStreamReader::StartElement && xml.name() == name)
            texts << xml.readElementText();
    return xml.hasError() ? QStringList{xml.errorString()} : texts;
}

class DemoUnitTest : public QObject {
    Q_OBJECT

private:
    static QString conf(const QString& name) { return demo(QStringLiteral("root/opt/orvane/conf/") + name); }

private slots:
    void everyScriptIsUnderstood_data()
    {
        QTest::addColumn<QString>("path");
        for (const QString& path : filesBelow(QStringLiteral("scripts"), QStringLiteral("*.txt")))
            QTest::newRow(qPrintable(QFileInfo(path).fileName())) << path;
    }
    void everyScriptIsUnderstood()
    {
        QFETCH(QString, path);
        const Script script = Script::load(path);
        QCOMPARE(script.error, QString());
        QVERIFY(!script.lines.isEmpty());
    }

    void everyModeIsMetBySomeScript()
    {
        QSet<int> met;
        for (const QString& path : filesBelow(QStringLiteral("scripts"), QStringLiteral("*.txt")))
            for (const ScriptLine& line : Script::load(path).lines)
                if (line.action.kind == Action::Kind::Expect)
                    met << line.action.value;
        QCOMPARE(met, (QSet<int>{0, 1, 2, 3, 4, 5, 6, 7, 255}));
    }

    void configurationIsWellFormed()
    {
        const QStringList files = filesBelow(QStringLiteral("root"), QStringLiteral("*.xml"));
        QCOMPARE(files.size(), 7);
        for (const QString& path : files) {
            QXmlStreamReader xml(contents(path));
            while (!xml.atEnd())
                xml.readNext();
            QVERIFY2(!xml.hasError(), qPrintable(path));
        }
    }

    void chosenStationStandsInItsList()
    {
        const QString radio = conf(QStringLiteral("radio.xml"));
        const auto chosen = [&](const char* name) {
            return elements(radio, QString::fromLatin1(name)).value(0);
        };
        QCOMPARE(chosen("category"), QStringLiteral("0"));
        const QString list = conf(QStringLiteral("prefix_channels_%1.xml").arg(chosen("prefix")));
        const int row = chosen("channels").toInt();
        QCOMPARE(elements(list, QStringLiteral("title")).value(row), chosen("name"));
        QCOMPARE(elements(list, QStringLiteral("url")).value(row), chosen("url"));
    }

    void stationsAreWrittenInBothScripts()
    {
        const QString titles =
            elements(conf(QStringLiteral("prefix_channels_demo.xml")), QStringLiteral("title"))
                .join(QString())
            + elements(conf(QStringLiteral("user_channels.xml")), QStringLiteral("title")).join(QString());
        QVERIFY(titles.contains(QRegularExpression(QStringLiteral("[\\x{AC00}-\\x{D7A3}]"))));
        QVERIFY(titles.contains(QRegularExpression(QStringLiteral("[A-Za-z]"))));
    }

    void onlyReservedDomainsAreNamed()
    {
        QStringList files = filesBelow(QStringLiteral("root"), QStringLiteral("*.xml"));
        files += filesBelow(QStringLiteral("scripts"), QStringLiteral("*.txt"));
        const QRegularExpression host(QStringLiteral("http://([^/ <]+)"));
        int hosts = 0;
        for (const QString& path : files) {
            auto matches = host.globalMatch(QString::fromUtf8(contents(path)));
            for (; matches.hasNext(); ++hosts) {
                const QString name = matches.next().captured(1);
                QVERIFY2(name.endsWith(QLatin1String(".example"))
                             || name.endsWith(QLatin1String(".example.com")),
                         qPrintable(path));
            }
        }
        QVERIFY(hosts > 20);
    }

    void networkIsSet()
    {
        const QString path = conf(QStringLiteral("network.xml"));
        QCOMPARE(elements(path, QStringLiteral("dhcp")), QStringList{QStringLiteral("no")});
        for (const char* name : {"hwaddr", "hostname", "ip", "netmask", "gateway", "dns1", "dns2"})
            QVERIFY2(!elements(path, QString::fromLatin1(name)).value(0).isEmpty(), name);
        QCOMPARE(elements(conf(QStringLiteral("version.xml")), QStringLiteral("value")),
                 QStringList{QStringLiteral("1.0.1.6.1")});
        QCOMPARE(contents(demo(QStringLiteral("root/etc/resolv.conf"))).count("nameserver "), 2);
        QVERIFY(QFileInfo(demo(QStringLiteral("root/etc/rc.d/init.d/network"))).isExecutable());
    }

    void sampleRateIsOneLineWithoutItsEnd()
    {
        QCOMPARE(contents(demo(QStringLiteral("root/tmp/sampleRate"))), QByteArray("44.1KHz"));
    }

    void musicIsSmallAndOfEachFormat_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("mark");
        QTest::addColumn<QByteArray>("picture");
        QTest::newRow("MP3 with a JPEG")
            << "morning-corridor.mp3" << QByteArray("ID3\x03") << QByteArray("\xFF\xD8\xFF\xE0");
        QTest::newRow("FLAC with a PNG") << "sunset-walk.flac" << QByteArray("fLaC") << QByteArray("\x89PNG");
        QTest::newRow("Ogg") << "evening/quiet-hall.ogg" << QByteArray("OggS") << QByteArray("조용한 홀");
    }
    void musicIsSmallAndOfEachFormat()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, mark);
        QFETCH(QByteArray, picture);
        const QByteArray bytes = contents(demo(QStringLiteral("music/") + name));
        QVERIFY(bytes.startsWith(mark));
        QVERIFY(bytes.contains(picture));
        QVERIFY(bytes.size() < 60000);
    }
};

VIREO_TEST_MAIN(DemoUnitTest)
#include "tst_demo_unit.moc"
