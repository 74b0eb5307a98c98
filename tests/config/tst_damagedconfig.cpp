#include "tests/config/configfolder.h"
#include "tests/support/configbytes.h"
#include "tests/support/logcatcher.h"
#include "tests/support/panelmain.h"

using ConfigBytes::declaration;

/** A document of the unit with every kind of token in it. */
static QByteArray everyToken()
{
    return declaration
        + QString::fromUtf8("<!DOCTYPE config [<!ENTITY own \"own text\">]>\n"
                            "<?instruction text?><!-- comment -->\n"
                            "<config kind=\"flat\">\n    <a>서울 방송</a>\n    <b><![CDATA[<&>]]></b>\n"
                            "    <a>1 &lt; 2 &own; &#xAC00;</a>\n    <other><a>inner</a></other>\n"
                            "    <b/>\n</config>\n")
              .toUtf8();
}

class DamagedConfigTest : public QObject {
    Q_OBJECT

private:
    ConfigFolder m_folder;

private slots:
    void cleanup() { m_folder.clear(); }

    void everyCutEnds_data()
    {
        QTest::addColumn<QByteArray>("whole");
        const QString text = QString::fromUtf8(everyToken());
        QString korea = text;
        korea.replace(QStringLiteral("UTF-8"), QStringLiteral("EUC-KR"));
        QTest::newRow("UTF-8") << everyToken();
        QTest::newRow("UTF-8 with its mark") << QByteArray("\xEF\xBB\xBF") + everyToken();
        QTest::newRow("UTF-16") << encoded("UTF-16", text);
        QTest::newRow("UTF-16, big end first") << QByteArray("\xFE\xFF") + encoded("UTF-16BE", text);
        QTest::newRow("UTF-16 without its mark") << encoded("UTF-16LE", text);
        QTest::newRow("UTF-32") << encoded("UTF-32", text);
        QTest::newRow("EUC-KR") << encoded("EUC-KR", korea);
    }
    void everyCutEnds()
    {
        QFETCH(QByteArray, whole);
        LogCatcher log;
        const QStringList all = readAll(m_folder.write(whole));
        for (int length = 0; length < whole.size(); ++length) {
            const QStringList given = readAll(m_folder.write(whole.left(length)));
            QCOMPARE(given, all.mid(0, given.size()));
            readAll(m_folder.path(), abPattern(true));
        }
    }

    void everyTokenOfTheCutFileIsRead()
    {
        LogCatcher log;
        const QStringList expected{QStringLiteral("a=") + korean, QStringLiteral("b=<&>"),
                                   QStringLiteral("a=1 < 2 own text ") + QChar(0xAC00),
                                   QStringLiteral("a=inner")};
        QCOMPARE(readAll(m_folder.write(everyToken())), expected);
    }

    void everySpoiltByteEnds()
    {
        LogCatcher log;
        const QByteArray whole = everyToken();
        for (int at = 0; at < whole.size(); ++at) {
            for (const char byte : {'\0', '<', '>', '&', '"', '\xFF', '\xED'}) {
                QByteArray spoilt = whole;
                spoilt[at] = byte;
                readAll(m_folder.write(spoilt));
                readAll(m_folder.path(), abPattern(true));
            }
        }
        QVERIFY(
            log.has(QStringLiteral("E Config read [%1] ended early: end of document").arg(m_folder.path())));
    }

    void hostileFilesEnd_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QStringList>("given");
        const QStringList one(QStringLiteral("a=1"));
        const QByteArray head = "<config><a>1</a>";
        QByteArray bomb = "<!DOCTYPE c [<!ENTITY e0 \"laugh\">";
        for (int i = 1; i < 20; ++i) {
            const QByteArray inner = "&e" + QByteArray::number(i - 1) + ';';
            bomb += "<!ENTITY e" + QByteArray::number(i) + " \"" + inner.repeated(10) + "\">";
        }
        QTest::newRow("ten million opening brackets") << head + QByteArray(10000000, '<') << one;
        QTest::newRow("a million open elements") << head + QByteArray("<x>").repeated(1000000) << one;
        QTest::newRow("entities of entities") << bomb + "]>" + head + "<b>&e19;</b></config>" << one;
        QTest::newRow("an entity of itself")
            << "<!DOCTYPE c [<!ENTITY e \"&e;\">]>" + head + "<b>&e;</b></config>" << one;
        QTest::newRow("ten million zero bytes") << head + QByteArray(10000000, '\0') << one;
        QTest::newRow("ten million blanks") << head + QByteArray(10000000, ' ') << one;
        QTest::newRow("a name of ten million letters") << head + '<' + QByteArray(10000000, 'x') << one;
        QTest::newRow("a comment without end") << head + "<!--" + QByteArray(10000000, 'x') << one;
        QTest::newRow("a million references") << head + QByteArray("&lt;").repeated(1000000) << one;
    }
    void hostileFilesEnd()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QStringList, given);
        LogCatcher log;
        QCOMPARE(readAll(m_folder.write(bytes)), given);
    }

    void aFileBeyondTheBoundIsCutAndLogged()
    {
        LogCatcher log(4);
        const QByteArray start = "<config><a>1</a><b>";
        m_folder.write(start + QByteArray(4 * 1024 * 1024 - start.size(), 'x') + "</b></config>");
        QCOMPARE(readAll(m_folder.path()), QStringList(QStringLiteral("a=1")));
        QCOMPARE(log.plain().value(0),
                 QStringLiteral("E Config read [%1] is cut at 4194304 bytes").arg(m_folder.path()));
    }

    void tenThousandElements()
    {
        LogCatcher log;
        QByteArray bytes = declaration + "<config>\n";
        for (int i = 0; i < 10000; ++i)
            bytes += "    <a>" + QByteArray::number(i) + "</a>\n";
        const QStringList given = readAll(m_folder.write(bytes + "</config>\n"));
        QCOMPARE(given.size(), 10000);
        QCOMPARE(given.last(), QStringLiteral("a=9999"));
    }
};

VIREO_TEST_MAIN(DamagedConfigTest)
#include "tst_damagedconfig.moc"
