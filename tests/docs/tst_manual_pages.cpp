#include "tests/support/panelmain.h"
#include "tests/support/unitroot.h"
#include "tools/supervisor/commandline.h"

#include <QRegularExpression>

namespace {

/** The rows of one part of the stand-in's help: what is said, and its meaning. */
QList<QStringList> helpRows(const QString& part)
{
    static const QRegularExpression row(QStringLiteral("^  (\\S.*)\n        (.*)$"),
                                        QRegularExpression::MultilineOption);
    const QString rows =
        helpText().section(part + QStringLiteral(":\n"), 1).section(QStringLiteral("\n\n"), 0, 0);
    QList<QStringList> found;
    for (auto matches = row.globalMatch(rows); matches.hasNext();)
        found << matches.next().capturedTexts().mid(1);
    return found;
}

/** The tagged paragraphs of one section of the manual page, as a reader sees them. */
QList<QStringList> pageRows(const QString& section)
{
    static const QRegularExpression row(QStringLiteral("^\\.TP\n\\.B (.*)\n(.*)$"),
                                        QRegularExpression::MultilineOption);
    QString text = QString::fromUtf8(UnitRoot::read(QStringLiteral(SUPERVISOR_PAGE)))
                       .section(QStringLiteral(".SH ") + section, 1);
    text = text.section(QStringLiteral("\n.SH "), 0, 0).remove(QLatin1Char('\\'));
    QList<QStringList> found;
    for (auto matches = row.globalMatch(text); matches.hasNext();)
        found << matches.next().capturedTexts().mid(1);
    return found;
}

} // namespace

/** The stand-in's manual page, as it is made, against the tables that the program itself speaks from. */
class ManualPagesTest : public QObject {
    Q_OBJECT

private slots:
    void supervisorsPageSaysWhatItsHelpSays_data()
    {
        QTest::addColumn<QString>("section");
        QTest::newRow("Options") << QStringLiteral("OPTIONS");
        QTest::newRow("Words") << QStringLiteral("WORDS");
        QTest::newRow("Exit status") << QStringLiteral("EXIT STATUS");
    }
    void supervisorsPageSaysWhatItsHelpSays()
    {
        QFETCH(QString, section);
        const auto said = helpRows(QString::fromLatin1(QTest::currentDataTag()));
        QVERIFY(said.size() > 3);
        QCOMPARE(pageRows(section), said);
    }
};

VIREO_TEST_MAIN(ManualPagesTest)
#include "tst_manual_pages.moc"
