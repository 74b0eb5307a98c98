#include "config/unitpaths.h"
#include "tests/support/panelmain.h"

class UnitPathsTest : public QObject {
    Q_OBJECT

private slots:
    void cleanup() { qunsetenv("VIREO_ROOT"); }

    void pathsOfTheUnit_data()
    {
        QTest::addColumn<int>("file");
        QTest::addColumn<QString>("path");
        const auto row = [](UnitPath file, const char* path) {
            QTest::newRow(path) << int(file) << QString::fromLatin1(path);
        };
        row(UnitPath::OperMode, "/opt/orvane/conf/oper_mode.xml");
        row(UnitPath::Radio, "/opt/orvane/conf/radio.xml");
        row(UnitPath::UserChannels, "/opt/orvane/conf/user_channels.xml");
        row(UnitPath::Network, "/opt/orvane/conf/network.xml");
        row(UnitPath::Version, "/opt/orvane/conf/version.xml");
        row(UnitPath::AoeConnection, "/opt/orvane/conf/aoe_conn.xml");
        row(UnitPath::SampleRate, "/tmp/sampleRate");
        row(UnitPath::ResolvConf, "/etc/resolv.conf");
        row(UnitPath::NetworkRestart, "/etc/rc.d/init.d/network");
    }
    void pathsOfTheUnit()
    {
        QFETCH(int, file);
        QFETCH(QString, path);
        QCOMPARE(unitPath(UnitPath(file)), path);
        qputenv("VIREO_ROOT", "/some/root");
        QCOMPARE(unitPath(UnitPath(file)), QStringLiteral("/some/root") + path);
    }

    void presetListsByPrefix()
    {
        QCOMPARE(presetChannelsPath(QStringLiteral("kr")),
                 QStringLiteral("/opt/orvane/conf/prefix_channels_kr.xml"));
        QCOMPARE(presetChannelsPath(QString()), QStringLiteral("/opt/orvane/conf/prefix_channels_.xml"));
        qputenv("VIREO_ROOT", "/some/root");
        QCOMPARE(presetChannelsPath(QStringLiteral("kr")),
                 QStringLiteral("/some/root/opt/orvane/conf/prefix_channels_kr.xml"));
    }
};

VIREO_TEST_MAIN(UnitPathsTest)
#include "tst_unitpaths.moc"
