#include "link/packet.h"
#include "tests/support/panelmain.h"

class PacketTest : public QObject {
    Q_OBJECT

private slots:
    void headerIsLittleEndian()
    {
        QCOMPARE(packetOf(0x1234, 0xABCD, "x"), QByteArray::fromHex("3412cdab78"));
        const PacketHeader header = PacketHeader::from(QByteArray::fromHex("ff3412cdab"), 1);
        QCOMPARE(header.command, quint16(0x1234));
        QCOMPARE(header.length, quint16(0xABCD));
    }

    void lengthIsThatOfTheData()
    {
        QCOMPARE(packetOf(Command::UpgradeMsg, "abc"), QByteArray::fromHex("10000300616263"));
        QCOMPARE(packetOf(Command::Encoder, -3), QByteArray::fromHex("0b000100fd"));
        QCOMPARE(packetOf(Command::Key, wire::held(wire::Key::Esc)), QByteArray::fromHex("0500010087"));
        QCOMPARE(packetOf(Command::Request, ModeCode::None), QByteArray::fromHex("0d000100ff"));
    }

    void lengthIsWrittenAsGiven() { QCOMPARE(packetOf(5, 3, "a"), QByteArray::fromHex("0500030061")); }

    void missingFieldsReadAsZero_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("command");
        QTest::newRow("nothing") << QByteArray() << 0;
        QTest::newRow("half a command") << QByteArray::fromHex("05") << 0;
        QTest::newRow("command alone") << QByteArray::fromHex("0500") << 5;
        QTest::newRow("half a length") << QByteArray::fromHex("050001") << 5;
    }
    void missingFieldsReadAsZero()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(int, command);
        QCOMPARE(int(PacketHeader::from(bytes).command), command);
        QCOMPARE(int(PacketHeader::from(bytes).length), 0);
    }
};

VIREO_TEST_MAIN(PacketTest)
#include "tst_packet.moc"
