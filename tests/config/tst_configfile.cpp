#include "config/configfile.h"
#include "tests/config/privileges.h"
#include "tests/support/logcatcher.h"
#include "tests/support/panelmain.h"
#include "tests/support/unitroot.h"

#include <QTextCodec>

#include <sys/stat.h>
#include <sys/wait.h>

namespace {

const QByteArray declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
const QString korean = QString::fromUtf8("서울 방송");

FlatPattern pattern(const QStringList& names, bool byNameAlone = false)
{
    FlatPattern result;
    result.names = names;
    result.byNameAlone = byNameAlone;
    return result;
}

const QStringList abNames{QStringLiteral("a"), QStringLiteral("b")};

/** Each text that the reader gives, as "name=text"; ends at the element `last` where one is named. */
QStringList readAll(const QString& path, const FlatPattern& flat, const QString& last = QString())
{
    QStringList given;
    ConfigReader reader(path);
    reader.readFlat(flat, [&](const QString& name, const QString& text) {
        given << name + QLatin1Char('=') + text;
        return name == last ? Flat::Done : Flat::More;
    });
    return given;
}

QByteArray encoded(const char* codec, const QString& text)
{
    return QTextCodec::codecForName(codec)->fromUnicode(text);
}

/** A document of the unit with every kind of token in it. */
QByteArray everyToken()
{
    return declaration
        + QString::fromUtf8("<!DOCTYPE config [<!ENTITY own \"own text\">]>\n"
                            "<?instruction text?><!-- comment -->\n"
                            "<config kind=\"flat\">\n    <a>서울 방송</a>\n    <b><![CDATA[<&>]]></b>\n"
                            "    <a>1 &lt; 2 &own; &#xAC00;</a>\n    <other><a>inner</a></other>\n"
                            "    <b/>\n</config>\n")
              .toUtf8();
}

/** In memory where there is such a folder: thousands of files are written here. */
QString folderTemplate()
{
    const QString memory = QStringLiteral("/dev/shm");
    const QString folder = QFileInfo(memory).isWritable() ? memory : QDir::tempPath();
    return folder + QStringLiteral("/tst_configfile-XXXXXX");
}

QStringList namesIn(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

/** A process that writes a short and a long configuration file in turn until it is killed. */
class LoopingWriter {
public:
    explicit LoopingWriter(const QString& path)
    {
        if (::pipe(m_progress) != 0)
            qFatal("no pipe");
        m_pid = ::fork();
        if (m_pid == 0)
            writeForEver(path);
        ::close(m_progress[1]);
    }
    ~LoopingWriter() { ::close(m_progress[0]); }
    LoopingWriter(const LoopingWriter&) = delete;
    LoopingWriter& operator=(const LoopingWriter&) = delete;

    /** Waits until it has written `files` files. */
    bool hasWritten(int files) const
    {
        char dot = 0;
        while (files > 0 && ::read(m_progress[0], &dot, 1) == 1)
            --files;
        return files == 0;
    }
    void kill() const
    {
        ::kill(m_pid, SIGKILL);
        ::waitpid(m_pid, nullptr, 0);
    }
    static QByteArray file(int i)
    {
        return declaration + "<config>\n    <a>" + text(i) + "</a>\n</config>\n";
    }

private:
    static QByteArray text(int i) { return i == 0 ? QByteArray(10, 'x') : QByteArray(60000, 'y'); }
    [[noreturn]] void writeForEver(const QString& path) const
    {
        for (int i = 0;; i = 1 - i) {
            const ConfigElements elements{{QStringLiteral("a"), QString::fromLatin1(text(i))}};
            if (writeConfig(path, elements) != ConfigWrite::Written || ::write(m_progress[1], ".", 1) != 1)
                ::_exit(1);
        }
    }

    int m_progress[2] = {-1, -1};
    pid_t m_pid = -1;
};

} // namespace

class ConfigFileTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_dir{folderTemplate()};
    QString path(const QString& name = QStringLiteral("file.xml")) const { return m_dir.filePath(name); }
    QString write(const QByteArray& bytes) const
    {
        UnitRoot::write(path(), bytes);
        return path();
    }

private slots:
    void cleanup()
    {
        for (const QString& name : namesIn(m_dir.path()))
            QFile::remove(path(name)) || QDir(path(name)).removeRecursively();
    }

    void textsOfStartTags_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QStringList>("given");
        const auto row = [](const char* name, const QByteArray& bytes, const QStringList& given) {
            QTest::newRow(name) << bytes << given;
        };
        const auto strings = [](std::initializer_list<const char*> list) {
            QStringList result;
            for (const char* text : list)
                result << QString::fromUtf8(text);
            return result;
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
        row("an entity of the file", "<!DOCTYPE c [<!ENTITY e \"text\">]><config><a>1 &e;</a></config>",
            strings({"a=1 text"}));
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
        QCOMPARE(readAll(write(bytes), pattern(abNames)), given);
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
        const QStringList given = readAll(write(bytes), pattern({QStringLiteral("a")}));
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
        QTest::newRow("behind an unresolved reference of the name")
            << QByteArray("<!DOCTYPE c SYSTEM 'x'><config>0&a;1</config>") << list("a=1");
    }
    void textsByNameAlone()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QStringList, given);
        LogCatcher log;
        QCOMPARE(readAll(write(bytes), pattern(abNames, true)), given);
    }

    void theConsumerEndsTheList()
    {
        LogCatcher log;
        write("<r><config><a>1</a><b>2</b><a>3</a></config><config><a>4</a></config></r>");
        const QStringList expected{QStringLiteral("a=1"), QStringLiteral("b=2"), QStringLiteral("a=4")};
        QCOMPARE(readAll(path(), pattern(abNames), QStringLiteral("b")), expected);
    }

    void theListEndsAtTheNamedTag()
    {
        LogCatcher log;
        FlatPattern flat = pattern(abNames);
        flat.endName = QStringLiteral("config");
        write("<r><config><a>1</a></config><b>2</b></r>");
        QCOMPARE(readAll(path(), flat), QStringList(QStringLiteral("a=1")));
        QVERIFY(log.lines().isEmpty());
        write("<config><a>1</a></config>");
        QCOMPARE(readAll(path(), flat), QStringList(QStringLiteral("a=1")));
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
        readAll(write(bytes), pattern(abNames));
        QCOMPARE(log.plain(),
                 QStringList(QStringLiteral("E Config read [%1] ended early: %2").arg(path(), reason)));
    }

    void aProperEndIsNotLogged()
    {
        LogCatcher log;
        readAll(write("<config><a>1</a><b>2</b></config>"), pattern(abNames), QStringLiteral("b"));
        readAll(write("<config><entry></entry></config>"), pattern(abNames));
        readAll(write("<other/>"), pattern(abNames));
        QCOMPARE(log.lines(), QStringList());
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
        const QStringList all = readAll(write(whole), pattern(abNames));
        for (int length = 0; length < whole.size(); ++length) {
            const QStringList given = readAll(write(whole.left(length)), pattern(abNames));
            QCOMPARE(given, all.mid(0, given.size()));
            readAll(path(), pattern(abNames, true));
        }
    }

    void everyTokenOfTheCutFileIsRead()
    {
        LogCatcher log;
        const QStringList expected{QStringLiteral("a=") + korean, QStringLiteral("b=<&>"),
                                   QStringLiteral("a=1 < 2 own text ") + QChar(0xAC00),
                                   QStringLiteral("a=inner")};
        QCOMPARE(readAll(write(everyToken()), pattern(abNames)), expected);
    }

    void everySpoiltByteEnds()
    {
        LogCatcher log;
        const QByteArray whole = everyToken();
        for (int at = 0; at < whole.size(); ++at) {
            for (const char byte : {'\0', '<', '>', '&', '"', '\xFF', '\xED'}) {
                QByteArray spoilt = whole;
                spoilt[at] = byte;
                readAll(write(spoilt), pattern(abNames));
                readAll(path(), pattern(abNames, true));
            }
        }
        QVERIFY(log.has(QStringLiteral("E Config read [%1] ended early: end of document").arg(path())));
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
        QCOMPARE(readAll(write(bytes), pattern(abNames)), given);
    }

    void aFileBeyondTheBoundIsCutAndLogged()
    {
        LogCatcher log(4);
        const QByteArray start = "<config><a>1</a><b>";
        write(start + QByteArray(4 * 1024 * 1024 - start.size(), 'x') + "</b></config>");
        QCOMPARE(readAll(path(), pattern(abNames)), QStringList(QStringLiteral("a=1")));
        QCOMPARE(log.plain().value(0),
                 QStringLiteral("E Config read [%1] is cut at 4194304 bytes").arg(path()));
    }

    void tenThousandElements()
    {
        LogCatcher log;
        QByteArray bytes = declaration + "<config>\n";
        for (int i = 0; i < 10000; ++i)
            bytes += "    <a>" + QByteArray::number(i) + "</a>\n";
        const QStringList given = readAll(write(bytes + "</config>\n"), pattern(abNames));
        QCOMPARE(given.size(), 10000);
        QCOMPARE(given.last(), QStringLiteral("a=9999"));
    }

    void whatCannotBeReadIsSaid_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<QString>("reason");
        QTest::newRow("missing") << path(QStringLiteral("none.xml")) << "No such file or directory";
        QTest::newRow("folder missing") << path(QStringLiteral("none/x.xml")) << "No such file or directory";
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
        QCOMPARE(readAll(target, pattern(abNames)), QStringList());
        QCOMPARE(log.lines(), QStringList());
    }

    void aFolderIsRefusedWithTheToolkitsReason()
    {
        QFile plain(m_dir.path());
        QVERIFY(!plain.open(QIODevice::ReadOnly));
        const ConfigReader reader(m_dir.path());
        QVERIFY(!reader.isOpen());
        QCOMPARE(reader.errorString(), plain.errorString());
    }

    void anUnreadableFileIsRefused()
    {
        write("<config/>");
        QFile::setPermissions(path(), QFileDevice::WriteOwner);
        const AsNobody nobody(m_dir.path());
        const ConfigReader reader(path());
        QCOMPARE(reader.errorString(), QStringLiteral("Permission denied"));
    }

    void aFifoIsNeitherReadNorWritten()
    {
        QCOMPARE(::mkfifo(path().toUtf8().constData(), 0600), 0);
        const ConfigReader reader(path());
        QCOMPARE(reader.errorString(), QStringLiteral("Not a regular file"));
        QString error;
        QCOMPARE(writeConfig(path(), {}, &error), ConfigWrite::NotOpened);
        QCOMPARE(error, QStringLiteral("Not a regular file"));
        QCOMPARE(namesIn(m_dir.path()), QStringList(QStringLiteral("file.xml")));
        struct stat status = {};
        QCOMPARE(::stat(path().toUtf8().constData(), &status), 0);
        QVERIFY(S_ISFIFO(status.st_mode));
    }

    void aLinkToAPipeLeavesThePipe()
    {
        const QString pipe = m_dir.filePath(QStringLiteral("pipe"));
        QCOMPARE(::mkfifo(pipe.toUtf8().constData(), 0600), 0);
        QVERIFY(QFile::link(pipe, path()));
        QCOMPARE(writeConfig(path(), {}), ConfigWrite::NotOpened);
        QVERIFY(QFileInfo(path()).isSymLink());
        struct stat status = {};
        QCOMPARE(::stat(pipe.toUtf8().constData(), &status), 0);
        QVERIFY(S_ISFIFO(status.st_mode));
        QVERIFY(QFile::remove(pipe));
    }

    void writtenBytes_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QByteArray>("line");
        QTest::newRow("a word") << "usb" << QByteArray("<type>usb</type>");
        QTest::newRow("Korean") << korean << QByteArray("<type>") + korean.toUtf8() + "</type>";
        QTest::newRow("empty") << "" << QByteArray("<type></type>");
        QTest::newRow("markup") << "<a> & b" << QByteArray("<type>&lt;a&gt; &amp; b</type>");
        QTest::newRow("quotes") << "\"a\" 'b'" << QByteArray("<type>&quot;a&quot; 'b'</type>");
        QTest::newRow("an address") << "http://a/?b=1&c=2"
                                    << QByteArray("<type>http://a/?b=1&amp;c=2</type>");
    }
    void writtenBytes()
    {
        QFETCH(QString, text);
        QFETCH(QByteArray, line);
        QCOMPARE(writeConfig(path(), {{QStringLiteral("type"), text}}), ConfigWrite::Written);
        QCOMPARE(UnitRoot::read(path()), declaration + "<config>\n    " + line + "\n</config>\n");
    }

    void whatIsWrittenReadsTheSame()
    {
        const QStringList texts{QStringLiteral("<&>\"']]>&amp;"), korean, QStringLiteral("a b"),
                                QString::fromUtf8("é 😀"), QStringLiteral("%1 %s \\n")};
        ConfigElements elements;
        QStringList expected;
        for (const QString& text : texts) {
            elements << qMakePair(QStringLiteral("a"), text);
            expected << QStringLiteral("a=") + text;
        }
        QCOMPARE(writeConfig(path(), elements), ConfigWrite::Written);
        LogCatcher log;
        QCOMPARE(readAll(path(), pattern(abNames)), expected);
    }

    void oldContentIsDiscarded()
    {
        write(QByteArray(100000, 'x'));
        QFile::setPermissions(path(), QFileDevice::ReadOwner | QFileDevice::WriteOwner);
        const auto permissions = QFile::permissions(path());
        QCOMPARE(writeConfig(path(), {}), ConfigWrite::Written);
        QCOMPARE(UnitRoot::read(path()), declaration + "<config/>\n");
        QCOMPARE(QFile::permissions(path()), permissions);
        QCOMPARE(namesIn(m_dir.path()), QStringList(QStringLiteral("file.xml")));
    }

    void aLinkStaysAndItsTargetIsReplaced_data()
    {
        QTest::addColumn<bool>("relative");
        QTest::addColumn<bool>("targetExists");
        QTest::newRow("absolute") << false << true;
        QTest::newRow("relative") << true << true;
        QTest::newRow("dangling") << false << false;
    }
    void aLinkStaysAndItsTargetIsReplaced()
    {
        QFETCH(bool, relative);
        QFETCH(bool, targetExists);
        const QString target = path(QStringLiteral("sub/target.xml"));
        QDir(m_dir.path()).mkpath(QStringLiteral("sub"));
        if (targetExists)
            UnitRoot::write(target, "old");
        const QByteArray named = relative ? QByteArray("sub/target.xml") : target.toUtf8();
        QCOMPARE(::symlink(named.constData(), path().toUtf8().constData()), 0);
        QCOMPARE(writeConfig(path(), {}), ConfigWrite::Written);
        QVERIFY(QFileInfo(path()).isSymLink());
        QVERIFY(!QFileInfo(target).isSymLink());
        QCOMPARE(UnitRoot::read(target), declaration + "<config/>\n");
    }

    void whatCannotBeOpenedForWritingIsSaid_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<QString>("reason");
        QTest::newRow("folder missing") << path(QStringLiteral("none/x.xml")) << "No such file or directory";
        QTest::newRow("below a file") << QStringLiteral("/dev/null/x.xml") << "Not a directory";
        QTest::newRow("a folder") << m_dir.path() << QString();
    }
    void whatCannotBeOpenedForWritingIsSaid()
    {
        QFETCH(QString, target);
        QFETCH(QString, reason);
        QFile plain(target);
        QVERIFY(!plain.open(QIODevice::WriteOnly | QIODevice::Truncate));
        LogCatcher log;
        QString error;
        QCOMPARE(writeConfig(target, {}, &error), ConfigWrite::NotOpened);
        QCOMPARE(error, reason.isEmpty() ? plain.errorString() : reason);
        QCOMPARE(error, plain.errorString());
        QCOMPARE(log.lines(), QStringList());
    }

    void aWriteProtectedFileStays()
    {
        write("old");
        QFile::setPermissions(path(), QFileDevice::ReadOwner);
        const AsNobody nobody(m_dir.path());
        QString error;
        QCOMPARE(writeConfig(path(), {}, &error), ConfigWrite::NotOpened);
        QCOMPARE(error, QStringLiteral("Permission denied"));
        QCOMPARE(UnitRoot::read(path()), QByteArray("old"));
    }

    void aFolderWithoutRoomForFilesIsWrittenInPlace()
    {
        write("old content that is longer than the new one, so that what is left of it would show");
        QFile::setPermissions(path(), QFileDevice::Permissions(0x6666));
        const AsNobody nobody(m_dir.path());
        QFile::setPermissions(m_dir.path(), QFileDevice::ReadOwner | QFileDevice::ExeOwner);
        const ConfigWrite result = writeConfig(path(), {});
        QFile::setPermissions(m_dir.path(),
                              QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
        QCOMPARE(result, ConfigWrite::Written);
        QCOMPARE(UnitRoot::read(path()), declaration + "<config/>\n");
    }

    void aFileThatCannotBeRenamedOverIsWrittenInPlace()
    {
        const OwnMounts mounts;
        const QString source = path(QStringLiteral("source.xml"));
        UnitRoot::write(source, "old");
        write("hidden");
        if (!mounts.bind(source, path()))
            QSKIP("mounting needs the superuser");
        QCOMPARE(writeConfig(path(), {}), ConfigWrite::Written);
        QCOMPARE(UnitRoot::read(source), declaration + "<config/>\n");
        ::umount(path().toUtf8().constData());
        QCOMPARE(UnitRoot::read(path()), QByteArray("hidden"));
        QCOMPARE(namesIn(m_dir.path()).size(), 2);
    }

    void aFullDiskLeavesTheOldFile_data()
    {
        QTest::addColumn<int>("textBytes");
        QTest::newRow("found at the flush, the text being buffered") << 8000;
        QTest::newRow("found at once, the text being long") << 100000;
    }
    void aFullDiskLeavesTheOldFile()
    {
        QFETCH(int, textBytes);
        const OwnMounts mounts;
        if (!mounts.smallDisk(m_dir.path(), 16384))
            QSKIP("mounting needs the superuser");
        write("old");
        UnitRoot::write(path(QStringLiteral("filler")), QByteArray(3 * 4096, 'x'));
        LogCatcher log(4);
        const ConfigElements elements{{QStringLiteral("a"), QString(textBytes, QLatin1Char('x'))}};
        const ConfigWrite result = writeConfig(path(), elements);
        const QByteArray left = UnitRoot::read(path());
        const QStringList names = namesIn(m_dir.path());
        ::umount(m_dir.path().toUtf8().constData());
        QCOMPARE(result, ConfigWrite::Failed);
        QCOMPARE(left, QByteArray("old"));
        QCOMPARE(names, QStringList({QStringLiteral("file.xml"), QStringLiteral("filler")}));
        QCOMPARE(log.plain(),
                 QStringList(QStringLiteral("E Config write [%1] No space left on device").arg(path())));
    }

    void aRefusedFlushLeavesTheOldFile()
    {
        write("old");
        const FileSizeLimit limit(0);
        LogCatcher log(4);
        const ConfigElements elements{{QStringLiteral("a"), QString(8000, QLatin1Char('x'))}};
        QCOMPARE(writeConfig(path(), elements), ConfigWrite::Failed);
        QCOMPARE(UnitRoot::read(path()), QByteArray("old"));
        QCOMPARE(namesIn(m_dir.path()), QStringList(QStringLiteral("file.xml")));
        QCOMPARE(log.plain(), QStringList(QStringLiteral("E Config write [%1] File too large").arg(path())));
    }

    /** A power cut as near as a program can have it: the writer is killed somewhere in its writing. */
    void aKilledWriterLeavesAWholeFile()
    {
        QSet<QByteArray> seen;
        for (int round = 0; round < 500; ++round) {
            const LoopingWriter writer(path());
            QVERIFY(writer.hasWritten(1 + round % 16));
            writer.kill();
            const QByteArray left = UnitRoot::read(path());
            QVERIFY2(left == LoopingWriter::file(0) || left == LoopingWriter::file(1),
                     left.left(100).constData());
            seen << left;
        }
        QCOMPARE(seen.size(), 2);
    }
};

VIREO_TEST_MAIN(ConfigFileTest)
#include "tst_configfile.moc"
