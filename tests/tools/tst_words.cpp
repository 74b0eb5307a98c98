#include "link/packet.h"
#include "tests/support/panelmain.h"
#include "tools/supervisor/bytetext.h"
#include "tools/supervisor/modeanswers.h"
#include "tools/supervisor/words.h"

#include <algorithm>

#include <QTemporaryDir>

/** Splits at blanks; "_" stands for the empty text. */
static QStringList split(const QString& line)
{
    QStringList words = line.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    words.replaceInStrings(QStringLiteral("_"), QString());
    return words;
}

class WordsTest : public QObject {
    Q_OBJECT

private slots:
    void packetOfEachWord_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QByteArray>("hex");
        const auto row = [](const char* line, const char* hex) {
            QTest::newRow(line) << QString::fromLatin1(line) << QByteArray(hex);
        };
        row("key stop", "0500010001");
        row("key play-pause", "0500010002");
        row("key prev", "0500010003");
        row("key next", "0500010004");
        row("key mode", "0500010005");
        row("key select", "0500010006");
        row("key esc", "0500010007");
        row("key long-stop", "0500010081");
        row("key long-play-pause", "0500010082");
        row("key long-prev", "0500010083");
        row("key long-next", "0500010084");
        row("key long-mode", "0500010085");
        row("key long-select", "0500010086");
        row("key long-esc", "0500010087");
        row("enc -3", "0b000100fd");
        row("enc 5", "0b00010005");
        row("enc 0", "0b00010000");
        row("enc 127", "0b0001007f");
        row("enc -128", "0b00010080");
        row("device usb", "0700010001");
        row("device stream", "0700010002");
        row("device aux", "0700010004");
        row("device ir", "0700010008");
        row("device aoe", "0700010010");
        row("device none", "0700010000");
        row("device usb stream", "0700010003");
        row("device aoe ir aux stream usb", "070001001f");
        row("time 0:03:07", "02000300000307");
        row("time 01:23:45", "02000300012345");
        row("time 3:07", "020002000307");
        row("time 03:07", "020002000307");
        row("time 99:59", "020002009959");
        row("level 0", "0400010000");
        row("level 200", "04000100c8");
        row("level 255", "04000100ff");
        row("disk 12 3", "0a0004000c000300");
        row("disk 65535 256", "0a000400ffff0001");
        row("disk-state normal", "0600010001");
        row("disk-state removed", "0600010003");
        row("mode one", "0300010000");
        row("mode all", "0300010001");
        row("mode folder", "0300010002");
        row("mode repeat one", "0300010004");
        row("mode shuffle all", "0300010009");
        row("mode repeat all shuffle", "030001000d");
        row("mode shuffle repeat folder", "030001000e");
        row("aoe stop", "1100010000");
        row("aoe ok", "1100010001");
        row("aoe fail", "1100010002");
        row("aoe over", "1100010003");
        row("upgrade start", "0f00010001");
        row("upgrade fail", "0f00010002");
        row("upgrade-message abc", "10000300616263");
        row("dhcp done", "0e00010002");
        row("request", "0d00010008");
        row("raw 0500010086", "0500010086");
        row("raw 05 00 01 00 AB", "05000100ab");
        row("raw ff", "ff");
    }
    void packetOfEachWord()
    {
        QFETCH(QString, line);
        QFETCH(QByteArray, hex);
        const ParsedWords parsed = parseWords(split(line));
        QCOMPARE(parsed.error, QString());
        QCOMPARE(parsed.action.packet.toHex(), hex);
    }

    void errors_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("error");
        const auto row = [](const char* line, const char* error) {
            QTest::newRow(line) << QString::fromLatin1(line) << QString::fromUtf8(error);
        };
        row("", "no words given; --help lists them");
        row("kei stop", "unknown word \"kei\"; --help lists them");
        row("KEY stop", "unknown word \"KEY\"; --help lists them");
        row("_", "unknown word \"\"; --help lists them");
        row("key", "key: too few words; say: key [long-]stop|play-pause|prev|next|mode|select|esc");
        row("key stop esc", "key: too many words; say: key [long-]stop|play-pause|prev|next|mode|select|esc");
        row("key halt", "key: \"halt\" is not one of stop, play-pause, prev, next, mode, select, esc");
        row("key long-halt",
            "key: \"long-halt\" is not one of stop, play-pause, prev, next, mode, select, esc");
        row("key long-long-esc",
            "key: \"long-long-esc\" is not one of stop, play-pause, prev, next, mode, select, esc");
        row("enc", "enc: too few words; say: enc STEPS");
        row("enc x", "enc: \"x\" is not a number from -128 to 127");
        row("enc 128", "enc: \"128\" is not a number from -128 to 127");
        row("enc -129", "enc: \"-129\" is not a number from -128 to 127");
        row("enc 1.5", "enc: \"1.5\" is not a number from -128 to 127");
        row("enc 0x10", "enc: \"0x10\" is not a number from -128 to 127");
        row("enc 99999999999999999999", "enc: \"99999999999999999999\" is not a number from -128 to 127");
        row("enc %2", "enc: \"%2\" is not a number from -128 to 127");
        row("device", "device: too few words; say: device usb|stream|aux|ir|aoe|none ...");
        row("device tape", "device: \"tape\" is not one of usb, stream, aux, ir, aoe, none");
        row("device usb usb", "device: \"usb\" is given twice");
        row("device usb none", "device: \"none\" stands alone");
        row("file", "file: too few words; say: file PATH");
        row("file /no/such/file.mp3", "file: no such file: \"/no/such/file.mp3\"");
        row("file _", "file: no such file: \"\"");
        row("file /", "file: \"/\" is a folder");
        row("time 7", "time: \"7\" is not a time like 3:07 or 0:03:07");
        row("time 3:7", "time: \"3:7\" is not a time like 3:07 or 0:03:07");
        row("time 3:60", "time: \"3:60\" is not a time like 3:07 or 0:03:07");
        row("time 0:60:00", "time: \"0:60:00\" is not a time like 3:07 or 0:03:07");
        row("time 100:00:00", "time: \"100:00:00\" is not a time like 3:07 or 0:03:07");
        row("time 3:+7", "time: \"3:+7\" is not a time like 3:07 or 0:03:07");
        row("time -3:07", "time: \"-3:07\" is not a time like 3:07 or 0:03:07");
        row("time :07", "time: \":07\" is not a time like 3:07 or 0:03:07");
        row("time 1:2:3:4", "time: \"1:2:3:4\" is not a time like 3:07 or 0:03:07");
        row("time _", "time: \"\" is not a time like 3:07 or 0:03:07");
        row("level 256", "level: \"256\" is not a number from 0 to 255");
        row("level -1", "level: \"-1\" is not a number from 0 to 255");
        row("level loud", "level: \"loud\" is not a number from 0 to 255");
        row("disk 1", "disk: too few words; say: disk FILES FOLDERS");
        row("disk 1 2 3", "disk: too many words; say: disk FILES FOLDERS");
        row("disk 65536 1", "disk: \"65536\" is not a number from 0 to 65535");
        row("disk 1 many", "disk: \"many\" is not a number from 0 to 65535");
        row("disk-state gone", "disk-state: \"gone\" is not one of normal, removed");
        row("mode", "mode: too few words; say: mode [repeat] [shuffle] one|all|folder");
        row("mode shuffle", "mode: needs one of one, all, folder");
        row("mode one all", "mode: needs one of one, all, folder");
        row("mode all all", "mode: \"all\" is given twice");
        row("mode album", "mode: \"album\" is not one of repeat, shuffle, one, all, folder");
        row("station T", "station: too few words; say: station TITLE URL");
        row("aoe maybe", "aoe: \"maybe\" is not one of stop, ok, fail, over");
        row("upgrade done", "upgrade: \"done\" is not one of start, fail");
        row("upgrade-message", "upgrade-message: too few words; say: upgrade-message TEXT");
        row("upgrade-message _", "upgrade-message: the text is empty");
        row("dhcp", "dhcp: too few words; say: dhcp done");
        row("dhcp failed", "dhcp: \"failed\" is not one of done");
        row("request mode", "request: too many words; say: request");
        row("raw", "raw: too few words; say: raw HEX ...");
        row("raw 050", "raw: needs pairs of hexadecimal digits");
        row("raw 05zz", "raw: needs pairs of hexadecimal digits");
        row("raw _", "raw: needs pairs of hexadecimal digits");
        row("wait 10", "unknown word \"wait\"; --help lists them");
        row("expect usb", "unknown word \"expect\"; --help lists them");
    }
    void errors()
    {
        QFETCH(QString, line);
        QFETCH(QString, error);
        const ParsedWords parsed = parseWords(split(line));
        QCOMPARE(parsed.error, error);
        QVERIFY(parsed.action.packet.isEmpty());
    }

    void scriptsKnowTwoMoreWords()
    {
        const ParsedWords wait = parseWords(split(QStringLiteral("wait 250")), Vocabulary::Script);
        QCOMPARE(wait.action.kind, Action::Kind::Wait);
        QCOMPARE(wait.action.value, 250);
        QVERIFY(wait.action.packet.isEmpty());
        const ParsedWords tooLong = parseWords(split(QStringLiteral("wait 600001")), Vocabulary::Script);
        QCOMPARE(tooLong.error, QStringLiteral("wait: \"600001\" is not a number from 0 to 600000"));
        const ParsedWords noMode = parseWords(split(QStringLiteral("expect tape")), Vocabulary::Script);
        QStringList words;
        for (const wire::Term& mode : wire::modes)
            words << QString::fromLatin1(mode.word);
        QCOMPARE(noMode.error,
                 QStringLiteral("expect: \"tape\" is not one of ") + words.join(QLatin1String(", ")));
    }

    void expectedModes_data()
    {
        QTest::addColumn<int>("code");
        QTest::newRow("menu") << 0;
        QTest::newRow("usb") << 1;
        QTest::newRow("aoe") << 2;
        QTest::newRow("radio-list") << 3;
        QTest::newRow("radio") << 4;
        QTest::newRow("netbgm") << 5;
        QTest::newRow("setup") << 6;
        QTest::newRow("dhcp") << 7;
        QTest::newRow("none") << 255;
    }
    void expectedModes()
    {
        QFETCH(int, code);
        const QString name = QString::fromLatin1(QTest::currentDataTag());
        QCOMPARE(modeName(quint8(code)), name);
        const ParsedWords parsed = parseWords({QStringLiteral("expect"), name}, Vocabulary::Script);
        QCOMPARE(parsed.action.kind, Action::Kind::Expect);
        QCOMPARE(parsed.action.value, code);
        QCOMPARE(parsed.action.packet.toHex(), QByteArray("0d00010008"));
    }

    void codeWithoutNameIsShownAsNumber() { QCOMPARE(modeName(42), QStringLiteral("unknown (42)")); }

    void onlyRequestsPrintTheAnswer()
    {
        QCOMPARE(parseWords({QStringLiteral("request")}).action.kind, Action::Kind::Request);
        QCOMPARE(parseWords(split(QStringLiteral("raw 0d00010008"))).action.kind, Action::Kind::Send);
        QCOMPARE(modeRequest().toHex(), QByteArray("0d00010008"));
    }

    void fileIsSentAsAbsolutePath()
    {
        QTemporaryDir dir;
        const QString name = QString::fromUtf8("노래 1.mp3");
        QFile file(dir.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        const QByteArray path = file.fileName().toUtf8();
        const QByteArray expected = QByteArray("\x01\0", 2) + char(path.size()) + '\0' + path;
        const auto packet = [&](const QString& said) {
            return parseWords({QStringLiteral("file"), said}, Vocabulary::Packets, QDir(dir.path()))
                .action.packet;
        };
        QCOMPARE(packet(name), expected);
        QCOMPARE(packet(QStringLiteral("./") + name), expected);
        QCOMPARE(packet(file.fileName()), expected);
        QVERIFY(
            parseWords({QStringLiteral("file"), name}).error.startsWith(QLatin1String("file: no such file")));
    }

    void stationFields()
    {
        const QByteArray packet = parseWords({QStringLiteral("station"), QString::fromUtf8("한국 FM"),
                                              QStringLiteral("http://radio.example/a")})
                                      .action.packet;
        const QByteArray title = "\xED\x95\x9C\xEA\xB5\xAD FM";
        QCOMPARE(packet.left(4).toHex(), QByteArray("08001601")); // 256 + 22 bytes
        QCOMPARE(packet.mid(4, 256), title + QByteArray(256 - title.size(), '\0'));
        QCOMPARE(packet.mid(260), QByteArray("http://radio.example/a"));
    }

    void longTitleIsCutBetweenCharacters_data()
    {
        QTest::addColumn<QString>("title");
        QTest::addColumn<int>("kept");
        const auto wide = [](int count) { return QString(count, QChar(0xD55C)); }; // three bytes each
        QTest::newRow("255 bytes fit") << QString(255, QLatin1Char('a')) << 255;
        QTest::newRow("256 bytes are cut") << QString(256, QLatin1Char('a')) << 255;
        QTest::newRow("85 wide characters fit") << wide(85) << 255;
        QTest::newRow("86 wide characters are cut") << wide(86) << 255;
        QTest::newRow("cut inside a character") << QStringLiteral("a") + wide(85) << 253;
        QTest::newRow("cut before its last byte") << QStringLiteral("aa") + wide(85) << 254;
        QTest::newRow("a pair of surrogates")
            << QString(254, QLatin1Char('a')) + QString::fromUtf8("😀") << 254;
        QTest::newRow("empty") << QString() << 0;
    }
    void longTitleIsCutBetweenCharacters()
    {
        QFETCH(QString, title);
        QFETCH(int, kept);
        const QByteArray packet = parseWords({QStringLiteral("station"), title, QString()}).action.packet;
        QCOMPARE(packet.size(), 4 + 256);
        QCOMPARE(packet.mid(4, kept), title.toUtf8().left(kept));
        QCOMPARE(packet.mid(4 + kept), QByteArray(256 - kept, '\0'));
        QVERIFY(!QString::fromUtf8(packet.mid(4, kept)).contains(QChar::ReplacementCharacter));
    }

    void longestPacket()
    {
        const auto parsed = [](int size) {
            return parseWords({QStringLiteral("upgrade-message"), QString(size, QLatin1Char('m'))});
        };
        QCOMPARE(parsed(65535).action.packet.left(4).toHex(), QByteArray("1000ffff"));
        QCOMPARE(parsed(65536).error, QStringLiteral("upgrade-message: longer than a packet can be"));
    }

    void helpListsEveryWord()
    {
        QStringList listed;
        const QStringList lines = wordsHelp().split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        for (int i = 0; i < lines.size(); i += 2) {
            listed << lines[i].trimmed().section(QLatin1Char(' '), 0, 0);
            QVERIFY(!lines[i + 1].trimmed().isEmpty());
        }
        for (const char* word :
             {"key", "enc", "device", "file", "time", "level", "disk", "disk-state", "mode", "station", "aoe",
              "upgrade", "upgrade-message", "dhcp", "request", "raw", "expect", "wait"})
            QVERIFY2(listed.contains(QLatin1String(word)), word);
    }

    void answersAreCutFromTheStream_data()
    {
        QTest::addColumn<QStringList>("chunks");
        QTest::addColumn<QList<quint8>>("codes");
        QTest::newRow("one answer") << QStringList{QStringLiteral("0d00010004")} << QList<quint8>{4};
        QTest::newRow("two at once") << QStringList{QStringLiteral("0d000100040d000100ff")}
                                     << QList<quint8>{4, 255};
        QTest::newRow("byte by byte")
            << QStringList{QStringLiteral("0d"), QStringLiteral("00"), QStringLiteral("01"),
                           QStringLiteral("00"), QStringLiteral("07")}
            << QList<quint8>{7};
        QTest::newRow("another packet before it")
            << QStringList{QStringLiteral("0900020000000d00010001")} << QList<quint8>{1};
    }
    void answersAreCutFromTheStream()
    {
        QFETCH(QStringList, chunks);
        QFETCH(QList<quint8>, codes);
        ModeAnswers answers;
        QList<quint8> taken;
        for (const QString& chunk : chunks)
            taken += answers.take(QByteArray::fromHex(chunk.toLatin1()));
        QCOMPARE(taken, codes);
    }

    void anyBytesComeBackFromText_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        const auto row = [](const char* name, const QByteArray& bytes) { QTest::newRow(name) << bytes; };
        row("plain", "plain");
        row("characters of two to four bytes", "\xC3\xA9 \xEC\x9D\xB4 \xF0\x9F\x8E\xB5");
        row("Latin-1", "caf\xE9 na\xEFve");
        row("cut character", "a\xEC\x9D");
        row("surrogate in UTF-8", "\xED\xB2\x80");
        row("byte-order mark", "\xEF\xBB\xBF name");
        row("too long a form", "\xC0\x80\xF8\x88\x80\x80\x80");
        QByteArray all;
        for (int byte = 1; byte < 256; ++byte) // a zero ends a name
            all += char(byte);
        row("every byte of a name", all);
        std::reverse(all.begin(), all.end());
        row("every byte of a name, downwards", all);
    }
    void anyBytesComeBackFromText()
    {
        QFETCH(QByteArray, bytes);
        QCOMPARE(bytesOf(textOf(bytes)), bytes);
        const QString text = QString::fromUtf8(bytes);
        if (text.toUtf8() == bytes)
            QCOMPARE(textOf(bytes), text);
    }
};

VIREO_TEST_MAIN(WordsTest)
#include "tst_words.moc"
