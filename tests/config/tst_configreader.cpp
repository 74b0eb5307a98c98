#include "tests/config/configfolder.h"
#include "tests/config/privileges.h"
#include "tests/support/configbytes.h"
#include "tests/support/logcatcher.h"
#include "tests/support/panelmain.h"
#include "tests/support/strings.h"

using ConfigBytes::declaration;

class ConfigReaderTest : public QObject {
    Q_OBJECT

private:
    ConfigFolder m_folder;

private slots:
    void cleanup()
    {
        mend(m_folder);
        m_folder.clear();
    }

    void textsOfStartTags_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QStringList>("given");
        const auto row = [](const char* name, const QByteArray& bytes, const QStringList& given) {
            QTest::newRow(name) << bytes << given;
        };
        row("as written by the unit", declaration + "<config>\n    <a>1</a>\n    <b>2</b>\n</config>\n",
            strings({"a=1", "b=2"}));
        row("all in one line, no declaration", "<config><a>1</a><b>2</b></config>", strings({"a=1", "b=2"}));
        row("the file's order counts", "<config><b>2</b><a>1</a></config>", strings({"b=2", "a=1"}));
        row("an element twice is given twice", "<config><a>1</a><a>2</a></config>", strings({"a=1", "a=2"}));
        row("Windows line ends", "<config>\r\n    <a>1</a>\r\n    <b>2\r\n3</b>\r\n</config>\r\n",
            strings({"a=1", "b=2 3"}));
        row("white space is simplified", "<config><a> \t1\n  2 </a></config>", strings({"a=1 2"}));
        row("white space alone is an empty text", "<config><a> \n </a></config>", strings({"a="}));
        row("an empty element has no text", "<config><a></a><b/></config>", {});
        row("unknown elements are passed by", "<config><x>0</x><a>1</a><y><z/></y></config>",
            strings({"a=1"}));
        row("attributes are passed by", "<config v='1'><a b=\"2\">1</a></config>", strings({"a=1"}));
        row("elements of other elements count", "<config><x><a>1</a></x></config>", strings({"a=1"}));
        row("text behind an inner element does not", "<config><a><x/>1</a></config>", {});
        row("text behind a comment does not", "<config><a><!-- c -->1</a></config>", {});
        row("a comment cuts the text", "<config><a>1<!-- c -->2</a></config>", strings({"a=1"}));
        row("comments between elements", "<config><!-- <a>0</a> --><a>1</a></config>", strings({"a=1"}));
        row("instructions between elements", "<config><?a 0?><a>1</a></config>", strings({"a=1"}));
        row("marked-up text as CDATA", "<config><a><![CDATA[<b>1</b>]]></a></config>",
            strings({"a=<b>1</b>"}));
        row("the five entities", "<config><a>&lt;&amp;&gt;&quot;&apos;</a></config>", strings({"a=<&>\"'"}));
        row("character references", "<config><a>&#xAC00;&#45208;</a></config>", strings({"a=가나"}));
        row("a document type ends the file", "<!DOCTYPE c><config><a>1</a></config>", {});
        row("one in a comment does not", "<!-- <!DOCTYPE c> --><config><a>1</a></config>", strings({"a=1"}));
        row("an unknown entity ends the file", "<config><a>1</a><b>2 &none; 3</b><a>4</a></config>",
            strings({"a=1", "b=2"}));
        row("text behind an end tag does not count", "<config><a>1</a>2</config>", strings({"a=1"}));
        row("an end tag \"entry\" ends the list", "<config><entry><a>1</a></entry><b>2</b></config>",
            strings({"a=1"}));
        row("an end tag of another name does not", "<config><x><a>1</a></x><b>2</b></config>",
            strings({"a=1", "b=2"}));
        row("behind the list another is looked for",
            "<r><config><entry><a>1</a></entry><b>2</b></config><config><a>3</a></config></r>",
            strings({"a=1", "a=3"}));
        row("elements outside \"config\" do not count before it", "<r><a>1</a><config><b>2</b></config></r>",
            strings({"b=2"}));
        row("a list that is not closed goes on behind \"config\"", "<r><config><a>1</a></config><b>2</b></r>",
            strings({"a=1", "b=2"}));
        row("another root is searched through", "<r><x><config><a>1</a></config></x></r>", strings({"a=1"}));
        row("no \"config\"", "<conf><a>1</a></conf>", {});
        row("names are case-sensitive", "<config><A>1</A></config>", {});
        row("prefixes are not part of the name", "<p:config xmlns:p=\"u\"><p:a>1</p:a></p:config>",
            strings({"a=1"}));
        row("no closing tag", "<config><a>1</a><b>2</b>", strings({"a=1", "b=2"}));
        row("closing tags in another order end the file", "<config><a>1</b><b>2</b></config>",
            strings({"a=1"}));
        row("text behind the document ends it", "<config><a>1</a></config>junk", strings({"a=1"}));
        row("text before the document", "junk<config><a>1</a></config>", {});
        row("a line before the declaration", "\n" + declaration + "<config><a>1</a></config>", {});
        row("an empty file", "", {});
        row("blanks alone", " \n ", {});
        row("zero bytes", QByteArray(100, '\0'), {});
        row("a zero byte inside", QByteArray("<config><a>1</a><b>2\0</b></config>", 34),
            strings({"a=1", "b=2"}));
        row("bytes that are not UTF-8", "<config><a>1</a><b>\xFF\xFE</b></config>", {});
    }
    void textsOfStartTags()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QStringList, given);
        LogCatcher log;
        QCOMPARE(readAll(m_folder.write(bytes)), given);
    }

    void encodings_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("text");
        const QString body = QStringLiteral("<config><a>%1</a></config>").arg(korean);
        const auto declared = [&](const char* attributes) {
            return QStringLiteral("<?xml version=\"1.0\" %1?>").arg(QLatin1String(attributes)) + body;
        };
        const QByteArray latin = "<?xml version='1.0' encoding='ISO-8859-1'?><config><a>\xE9</a></config>";
        const QByteArray mark = "\xEF\xBB\xBF";
        QTest::newRow("UTF-8") << declared("encoding=\"UTF-8\"").toUtf8() << korean;
        QTest::newRow("utf8") << declared("encoding=\"utf8\"").toUtf8() << korean;
        QTest::newRow("UTF-8 with its mark") << mark + declared("encoding=\"UTF-8\"").toUtf8() << korean;
        QTest::newRow("UTF-8 by default") << body.toUtf8() << korean;
        QTest::newRow("EUC-KR") << encoded("EUC-KR", declared("encoding=\"EUC-KR\"")) << korean;
        QTest::newRow("euc-kr") << encoded("EUC-KR", declared("encoding = 'euc-kr'")) << korean;
        QTest::newRow("EUC-KR and mixed quotes")
            << encoded("EUC-KR", declared("encoding='EUC-KR' standalone=\"yes\"")) << korean;
        QTest::newRow("UTF-16 with its mark") << encoded("UTF-16", declared("encoding=\"UTF-16\"")) << korean;
        QTest::newRow("Latin-1") << latin << QString::fromUtf8("é");
        QTest::newRow("an unknown one is not read")
            << declared("encoding=\"none-such\"").toUtf8() << QString();
        QTest::newRow("an empty one is not read") << declared("encoding=\"\"").toUtf8() << QString();
        QTest::newRow("without a version there is no declaration")
            << encoded("EUC-KR", QStringLiteral("<?xml encoding='EUC-KR'?>") + body) << QString();
        QTest::newRow("one behind the declaration does not count")
            << declared("").toUtf8() + "<!-- encoding=\"EUC-KR\" -->" << korean;
    }
    void encodings()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, text);
        LogCatcher log;
        const QStringList given = readAll(m_folder.write(bytes));
        QCOMPARE(given, text.isEmpty() ? QStringList() : QStringList(QStringLiteral("a=") + text));
    }

    void textsByNameAlone_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QStringList>("given");
        const auto list = [](const char* text) { return QString::fromUtf8(text).split(QLatin1Char('|')); };
        QTest::newRow("the blanks behind an end tag are an empty text")
            << QByteArray("<config>\n <a>1</a>\n <b>2</b>\n</config>") << list("a=1|a=|b=2|b=");
        QTest::newRow("no blanks, no text")
            << QByteArray("<config><a>1</a><b>2</b></config>") << list("a=1|b=2");
        QTest::newRow("text behind an end tag is the element's too")
            << QByteArray("<config><a>1</a>2<b>3</b></config>") << list("a=1|a=2|b=3");
        QTest::newRow("behind an empty element as well")
            << QByteArray("<config><a></a>2<b/>3</config>") << list("a=2|b=3");
    }
    void textsByNameAlone()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QStringList, given);
        LogCatcher log;
        QCOMPARE(readAll(m_folder.write(bytes), abPattern(true)), given);
    }

    void theConsumerEndsTheList()
    {
        LogCatcher log;
        m_folder.write("<r><config><a>1</a><b>2</b><a>3</a></config><config><a>4</a></config></r>");
        const QStringList expected{QStringLiteral("a=1"), QStringLiteral("b=2"), QStringLiteral("a=4")};
        QCOMPARE(readAll(m_folder.path(), abPattern(), QStringLiteral("b")), expected);
    }

    void theListEndsAtTheNamedTag()
    {
        LogCatcher log;
        FlatPattern flat = abPattern();
        flat.endName = QStringLiteral("config");
        m_folder.write("<r><config><a>1</a></config><b>2</b></r>");
        QCOMPARE(readAll(m_folder.path(), flat), QStringList(QStringLiteral("a=1")));
        QVERIFY(log.lines().isEmpty());
        m_folder.write("<config><a>1</a></config>");
        QCOMPARE(readAll(m_folder.path(), flat), QStringList(QStringLiteral("a=1")));
        QVERIFY(log.lines().isEmpty());
    }

    void anEarlyEndIsLogged_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("reason");
        QTest::newRow("nothing ends the list")
            << QByteArray("<config><a>1</a></config>") << "end of document";
        QTest::newRow("cut in the list") << QByteArray("<config><a>1</a>") << "Premature end of document.";
        QTest::newRow("an empty list") << QByteArray("<config/>") << "end of document";
    }
    void anEarlyEndIsLogged()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, reason);
        LogCatcher log(4);
        readAll(m_folder.write(bytes));
        QCOMPARE(
            log.plain(),
            QStringList(QStringLiteral("E Config read [%1] ended early: %2").arg(m_folder.path(), reason)));
    }

    void anEarlyEndIsLoggedOnce()
    {
        LogCatcher log(4);
        const QStringList line(
            QStringLiteral("E Config read [%1] ended early: end of document").arg(m_folder.path()));
        readAll(m_folder.write("<config><a>1</a></config>"));
        readAll(m_folder.path());
        QCOMPARE(log.plain(), line);
        readAll(m_folder.write("<config><a>1</a>"));
        QVERIFY2(log.plain() == line, "another damage of a file that was not whole in between");
        mend(m_folder);
        readAll(m_folder.write("<config><a>1</a></config>"));
        QCOMPARE(log.plain(), line + line);
    }

    void aFileThatWasAwayWasNotWhole()
    {
        LogCatcher log(4);
        readAll(m_folder.write("<config/>"));
        QVERIFY(QFile::remove(m_folder.path()));
        readAll(m_folder.path());
        readAll(m_folder.write("<config/>"));
        QCOMPARE(log.plain().size(), 1);
    }

    void oneReaderOfAFileDoesNotAnswerForAnother()
    {
        LogCatcher log(4);
        FlatPattern other = abPattern();
        other.names = strings({"c"});
        other.endName = QStringLiteral("config");
        m_folder.write("<config><a>1</a></config>");
        for (int i = 0; i < 3; ++i) {
            readAll(m_folder.path());
            readAll(m_folder.path(), other);
        }
        QCOMPARE(log.plain().size(), 1);
    }

    void aProperEndIsNotLogged()
    {
        LogCatcher log;
        readAll(m_folder.write("<config><a>1</a><b>2</b></config>"), abPattern(), QStringLiteral("b"));
        readAll(m_folder.write("<config><entry></entry></config>"));
        readAll(m_folder.write("<other/>"));
        QCOMPARE(log.lines(), QStringList());
    }

    void whatCannotBeReadIsSaid_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<QString>("reason");
        QTest::newRow("missing") << m_folder.path(QStringLiteral("none.xml")) << "No such file or directory";
        QTest::newRow("folder missing")
            << m_folder.path(QStringLiteral("none/x.xml")) << "No such file or directory";
        QTest::newRow("below a file") << QStringLiteral("/dev/null/x.xml") << "Not a directory";
        QTest::newRow("a device") << QStringLiteral("/dev/zero") << "Not a regular file";
    }
    void whatCannotBeReadIsSaid()
    {
        QFETCH(QString, target);
        QFETCH(QString, reason);
        LogCatcher log;
        const ConfigReader reader(target);
        QVERIFY(!reader.isOpen());
        QCOMPARE(reader.errorString(), reason);
        QCOMPARE(readAll(target), QStringList());
        QCOMPARE(log.lines(), QStringList());
    }

    void aFolderIsRefusedWithTheToolkitsReason()
    {
        QFile plain(m_folder.folder());
        QVERIFY(!plain.open(QIODevice::ReadOnly));
        const ConfigReader reader(m_folder.folder());
        QVERIFY(!reader.isOpen());
        QCOMPARE(reader.errorString(), plain.errorString());
    }

    void anUnreadableFileIsRefused()
    {
        m_folder.write("<config/>");
        QFile::setPermissions(m_folder.path(), QFileDevice::WriteOwner);
        const AsNobody nobody(m_folder.folder());
        const ConfigReader reader(m_folder.path());
        QCOMPARE(reader.errorString(), QStringLiteral("Permission denied"));
    }
};

VIREO_TEST_MAIN(ConfigReaderTest)
#include "tst_configreader.moc"
