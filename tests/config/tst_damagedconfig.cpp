#include "app/limits.h"
#include "config/xmlbounds.h"
#include "tests/config/configfolder.h"
#include "tests/support/configbytes.h"
#include "tests/support/logcatcher.h"
#include "tests/support/panelmain.h"
#include "tests/support/strings.h"

using ConfigBytes::declaration;

/** A document of the unit with every kind of token in it. */
static QByteArray everyToken()
{
    return declaration
        + QString::fromUtf8("<?instruction text?><!-- comment -->\n"
                            "<config kind=\"flat\">\n    <a>서울 방송</a>\n    <b><![CDATA[<&>]]></b>\n"
                            "    <a>1 &lt; 2 &#xAC00;</a>\n    <other><a>inner</a></other>\n"
                            "    <b/>\n</config>\n")
              .toUtf8();
}

/** So many attributes, each of another name. */
static QByteArray attributes(int count)
{
    QByteArray bytes;
    for (int i = 0; i < count; ++i)
        bytes += " a" + QByteArray::number(i) + "=''";
    return bytes;
}

/** So many name spaces, each of an element of its own inside the one before. */
static QByteArray nameSpaces(int count)
{
    QByteArray bytes;
    for (int i = 0; i < count; ++i)
        bytes += "<x xmlns:n" + QByteArray::number(i) + "='u'>";
    return bytes;
}

static QStringList repeated(const QString& text, int count)
{
    QStringList texts;
    for (int i = 0; i < count; ++i)
        texts << text;
    return texts;
}

class DamagedConfigTest : public QObject {
    Q_OBJECT

private:
    ConfigFolder m_folder;

private slots:
    void cleanup()
    {
        mend(m_folder);
        m_folder.clear();
    }

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
                                   QStringLiteral("a=1 < 2 ") + QChar(0xAC00), QStringLiteral("a=inner")};
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
        QVERIFY(!log.lines().isEmpty());
        const QString early = QStringLiteral("E Config read [%1] ended early: ").arg(m_folder.path());
        for (const QString& line : log.plain())
            QVERIFY2(line.startsWith(early), qPrintable(line));
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
        QTest::newRow("entities of entities")
            << bomb + "]>" + head + "<b>&e19;</b></config>" << QStringList();
        QTest::newRow("an entity of itself")
            << "<!DOCTYPE c [<!ENTITY e \"&e;\">]>" + head + "<b>&e;</b></config>" << QStringList();
        QTest::newRow("one long entity used often") << "<!DOCTYPE c [<!ENTITY e \"" + QByteArray(4000, 'x')
                + "\">]>" + head + "<b>" + QByteArray("&e;").repeated(30000)
                + "</b></config>" << QStringList();
        QTest::newRow("a hundred thousand attributes")
            << head + "<b" + attributes(100000) + ">2</b></config>" << one;
        QTest::newRow("as many in many elements") << head + ("<b" + attributes(50) + ">2</b>").repeated(500)
                + "</config>" << one + repeated(QStringLiteral("b=2"), 500);
        QTest::newRow("a hundred thousand name spaces")
            << head + nameSpaces(100000) + "<b>2</b></config>" << one;
        QTest::newRow("a text of four megabytes")
            << head + "<b>" + QByteArray(4000000, 'x') + "</b></config>" << one;
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
        const QByteArray start = "<config><a>1</a>";
        m_folder.write(start + QByteArray("\n").repeated(limits::configFileBytes - start.size())
                       + "<b>2</b></config>");
        QCOMPARE(readAll(m_folder.path()), QStringList(QStringLiteral("a=1")));
        QCOMPARE(log.plain().value(0),
                 QStringLiteral("E Config read [%1] is cut at %2 bytes")
                     .arg(m_folder.path())
                     .arg(limits::configFileBytes));
    }

    void boundsAreReachedAndNotPassed_data()
    {
        QTest::addColumn<QByteArray>("document");
        QTest::addColumn<QByteArray>("part");
        QTest::addColumn<QString>("reason");
        const QByteArray text(limits::xmlTextUnits, 'x');
        const QByteArray tag = "<b c='" + QByteArray(limits::xmlTagUnits - 8, 'x') + "'>";
        const auto whole = [](const char* name, const QByteArray& document) {
            QTest::newRow(name) << document << document << QString();
        };
        const auto cut = [](const char* name, const QByteArray& part, const QByteArray& rest,
                            const char* reason) {
            QTest::newRow(name) << part + rest << part << QString::fromLatin1(reason);
        };
        whole("longest text", "<a>" + text + "</a>");
        cut("one more", "<a>", text + "x</a>", "text too long");
        whole("longest text at the end", "<a>" + text);
        cut("a longer one there", "<a>", text + 'x', "text too long");
        whole("longest tag", "<a>" + tag + "</b></a>");
        cut("a longer one", "<a>", QByteArray(tag).insert(6, 'x') + "</b></a>", "tag too long");
        cut("one without end", "<a>", "<b" + text, "tag too long");
        whole("brackets in values", "<a b='>' c=\">'<!DOCTYPE>\"/>");
        whole("longest comment", "<!--" + text + "--><a/>");
        cut("a longer one of comments", "", "<!--" + text + "x--><a/>", "tag too long");
        whole("longest marked text", "<a><![CDATA[" + text + "]]></a>");
        cut("a longer marked text", "<a>", "<![CDATA[" + text + "x]]></a>", "text too long");
        cut("a longer instruction", "<a/>", "<?" + text + "x?>", "tag too long");
        whole("a type declaration in a text", "<a><![CDATA[<!DOCTYPE c>]]></a>");
        whole("one in an instruction", "<?a <!DOCTYPE c>?><a/>");
        cut("a type declaration", "<?xml version='1.0'?>\n", "<!DOCTYPE c []><a/>",
            "document type declaration");
        whole("most attributes", "<a" + attributes(limits::xmlTagAttributes) + "/>");
        cut("one attribute more", "", "<a" + attributes(limits::xmlTagAttributes + 1) + "/>",
            "too many attributes");
        whole("most name spaces", nameSpaces(limits::xmlNameSpaces));
        cut("one name space more", nameSpaces(limits::xmlNameSpaces), "<x xmlns='u'>",
            "too many name spaces");
        whole("nothing", "");
    }
    void boundsAreReachedAndNotPassed()
    {
        QFETCH(QByteArray, document);
        QFETCH(QByteArray, part);
        QFETCH(QString, reason);
        const XmlPart bytes = boundedPart(document);
        QCOMPARE(document.left(bytes.length), part);
        QCOMPARE(QString::fromLatin1(bytes.reason), reason);
        const XmlPart units = boundedPart(QString::fromLatin1(document));
        QCOMPARE(units.length, bytes.length);
        QCOMPARE(QString::fromLatin1(units.reason), reason);
    }

    void theBoundIsTheReasonOfTheEarlyEnd_data()
    {
        QTest::addColumn<QByteArray>("codec");
        for (const char* codec : {"UTF-8", "UTF-16", "UTF-16LE", "UTF-16BE", "UTF-32", "EUC-KR"})
            QTest::newRow(codec) << QByteArray(codec);
    }
    void theBoundIsTheReasonOfTheEarlyEnd()
    {
        QFETCH(QByteArray, codec);
        LogCatcher log(4);
        const QString document =
            QStringLiteral("<?xml version='1.0' encoding='%1'?><config><a>%2</a><!DOCTYPE c></config>")
                .arg(QLatin1String(codec.startsWith("UTF-16") ? "UTF-16" : codec), korean);
        QCOMPARE(readAll(m_folder.write(encoded(codec.constData(), document))),
                 QStringList(QStringLiteral("a=") + korean));
        QCOMPARE(log.plain(),
                 QStringList(QStringLiteral("E Config read [%1] ended early: document type declaration")
                                 .arg(m_folder.path())));
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
