#include "app/version.h"
#include "tests/docs/document.h"
#include "tests/support/panelmain.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

namespace {

const QString root = QStringLiteral(VIREO_SOURCE_DIR "/");

/** Files of the project with one of the endings, build folders and hidden ones left out. */
QStringList projectFiles(const QStringList& endings)
{
    QStringList found;
    for (QDirIterator it(root, endings, QDir::Files, QDirIterator::Subdirectories); it.hasNext();) {
        const QString path = it.next().mid(root.size());
        if (!path.startsWith(QLatin1String("build")) && !path.contains(QLatin1String("/.")))
            found << path;
    }
    found.sort();
    return found;
}

QStringList anchors(const QString& page)
{
    QStringList found;
    for (const QString& heading : Document(page).headings())
        found << Document::anchorOf(heading);
    return found;
}

/** Where the links of a page lead within the project. */
QStringList links(const QString& text)
{
    static const QRegularExpression link(QStringLiteral("\\]\\(([^)\\s]+)\\)|(?:src|href)=\"([^\"]+)\""));
    QStringList found;
    for (auto matches = link.globalMatch(text); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        found << match.captured(1) + match.captured(2);
    }
    return found.filter(QRegularExpression(QStringLiteral("^(?!.*://)")));
}

void addPages()
{
    QTest::addColumn<QString>("page");
    for (const QString& page : projectFiles({QStringLiteral("*.md")}))
        QTest::newRow(qPrintable(page)) << page;
}

} // namespace

/** What holds for every page: its links lead somewhere and what it names is there. */
class DocumentsTest : public QObject {
    Q_OBJECT

private slots:
    void thePagesAreThere()
    {
        const QStringList pages = projectFiles({QStringLiteral("*.md")});
        for (const char* page : {"README.md", "CONTRIBUTING.md", "CHANGELOG.md", "docs/architecture.md",
                                 "docs/protocol.md", "docs/configuration.md", "docs/unit.md"})
            QVERIFY2(pages.contains(QLatin1String(page)), page);
    }

    void newestChangesAreOfThisVersion()
    {
        const QString newest = Document(QStringLiteral("CHANGELOG.md")).headings().value(1);
        QCOMPARE(newest.section(QLatin1Char(','), 0, 0), QLatin1String(vireoVersion));
    }

    void linksLeadSomewhere_data() { addPages(); }
    void linksLeadSomewhere()
    {
        QFETCH(QString, page);
        for (const QString& target : links(Document(page).text())) {
            const QString file = target.section(QLatin1Char('#'), 0, 0);
            const QString anchor = target.section(QLatin1Char('#'), 1);
            const QString path =
                file.isEmpty() ? page : QDir::cleanPath(QFileInfo(page).path() + QLatin1Char('/') + file);
            QVERIFY2(QFileInfo::exists(root + path), qPrintable(target));
            if (!anchor.isEmpty())
                QVERIFY2(anchors(path).contains(anchor), qPrintable(target));
        }
    }

    void installedPagesLeadSomewhereToo_data()
    {
        QTest::addColumn<QString>("component");
        QTest::newRow("for units") << QStringLiteral("panel");
        QTest::newRow("for desks") << QStringLiteral("desk");
    }
    void installedPagesLeadSomewhereToo()
    {
        QFETCH(QString, component);
        const QTemporaryDir prefix;
        QProcess install;
        install.start(QStringLiteral(CMAKE_PROGRAM),
                      {QStringLiteral("--install"), QStringLiteral(BUILD_FOLDER),
                       QStringLiteral("--component"), component, QStringLiteral("--prefix"), prefix.path()});
        QVERIFY(install.waitForFinished());
        QCOMPARE(install.exitCode(), 0);
        int checked = 0;
        for (QDirIterator it(prefix.path(), {QStringLiteral("*.md")}, QDir::Files,
                             QDirIterator::Subdirectories);
             it.hasNext();) {
            QFile page(it.next());
            QVERIFY(page.open(QIODevice::ReadOnly));
            for (const QString& target : links(QString::fromUtf8(page.readAll()))) {
                const QString file = target.section(QLatin1Char('#'), 0, 0);
                QVERIFY2(QFileInfo(page).dir().exists(file.isEmpty() ? page.fileName() : file),
                         qPrintable(it.fileName() + QStringLiteral(": ") + target));
                ++checked;
            }
        }
        QVERIFY(checked > 10);
    }

    /** A code span that looks like a path of the tree is one; NAME stands for any name. */
    void namedFilesAreThere_data() { addPages(); }
    void namedFilesAreThere()
    {
        QFETCH(QString, page);
        static const QRegularExpression path(QStringLiteral(
            "^(?:\\.\\./)?[a-z][\\w-]*(?:/[\\w.-]+)*\\.(?:cpp|h|ui|qrc|md|sh|py|txt|svg|cmake|json)$"));
        for (const QString& span : Document(page).code(Document(page).text())) {
            if (!path.match(span).hasMatch() || span.contains(QLatin1String("NAME")))
                continue;
            const bool fromRoot = QFileInfo::exists(root + span);
            const bool fromPage = QFileInfo::exists(root + QFileInfo(page).path() + QLatin1Char('/') + span);
            QVERIFY2(fromRoot || fromPage, qPrintable(span));
        }
    }

    /** Functions and members written Class::name are declared in a header that knows the class. */
    void namedFunctionsAreThere()
    {
        QString headers;
        for (const QString& path : projectFiles({QStringLiteral("*.h")}))
            headers += Document(path).text();
        static const QRegularExpression member(QStringLiteral("^(\\w+)::(\\w+)(\\(.*\\))?$"));
        int checked = 0;
        for (const QString& page : projectFiles({QStringLiteral("*.md")})) {
            for (const QString& span : Document::code(Document(page).text())) {
                const QRegularExpressionMatch match = member.match(span);
                if (!match.hasMatch() || match.captured(1) == QLatin1String("Qt"))
                    continue;
                ++checked;
                for (const QString& name : {match.captured(1), match.captured(2)})
                    QVERIFY2(headers.contains(QRegularExpression(QStringLiteral("\\b%1\\b").arg(name))),
                             qPrintable(span));
            }
        }
        QVERIFY(checked > 10);
    }
};

VIREO_TEST_MAIN(DocumentsTest)
#include "tst_documents.moc"
