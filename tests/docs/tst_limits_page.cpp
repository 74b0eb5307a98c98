#include "tests/docs/document.h"

#include <QtTest>

namespace {

struct Unit {
    const char* ending;
    const char* symbol;
    qint64 size;
};

/** Of the units that fit a name, the largest that a value is a multiple of is the one it is written in. */
constexpr Unit units[] = {
    {"Bytes", "MiB", 1024 * 1024},
    {"Bytes", "KiB", 1024},
    {"Bytes", "bytes", 1},
    {"Ms", "s", 1000},
    {"Ms", "ms", 1},
    {"Pixels", "pixels", 1},
    {"", "", 1},
};

/** The value of a product of whole numbers. */
qint64 valueOf(const QString& product)
{
    qint64 value = 1;
    for (QString factor : product.split(QLatin1Char('*'))) {
        static const QRegularExpression digitsOnly(QStringLiteral("[^0-9]"));
        value *= factor.remove(digitsOnly).toLongLong();
    }
    return value;
}

QString written(const QString& name, qint64 value)
{
    for (const Unit& unit : units)
        if (name.endsWith(QLatin1String(unit.ending)) && value % unit.size == 0)
            return QStringLiteral("%1 %2").arg(value / unit.size).arg(QLatin1String(unit.symbol)).trimmed();
    return {};
}

QString header()
{
    return Document(QStringLiteral("app/limits.h")).text();
}

} // namespace

/** The bounds of app/limits.h against the table of docs/configuration.md. */
class LimitsPageTest : public QObject {
    Q_OBJECT

private slots:
    void valuesAreWrittenInTheLargestUnitThatFits()
    {
        QCOMPARE(written(QStringLiteral("aBytes"), 3 * 1024 * 1024), QStringLiteral("3 MiB"));
        QCOMPARE(written(QStringLiteral("aBytes"), 1025), QStringLiteral("1025 bytes"));
        QCOMPARE(written(QStringLiteral("aMs"), 2000), QStringLiteral("2 s"));
        QCOMPARE(written(QStringLiteral("aMs"), 100), QStringLiteral("100 ms"));
        QCOMPARE(written(QStringLiteral("many"), 512), QStringLiteral("512"));
        QCOMPARE(valueOf(QStringLiteral("4LL * 1'024 * 2")), 8192);
    }

    void everyBoundGivesItsReason()
    {
        static const QRegularExpression bound(QStringLiteral("^constexpr .*$"),
                                              QRegularExpression::MultilineOption);
        static const QRegularExpression reasoned(
            QStringLiteral("^/\\*\\* .+ \\*/\nconstexpr .* = [0-9LU' *]+;$"),
            QRegularExpression::MultilineOption);
        const QString text = header();
        QVERIFY(text.count(bound) > 0);
        QCOMPARE(text.count(reasoned), text.count(bound));
    }

    void pageListsEveryBound()
    {
        static const QRegularExpression row(
            QStringLiteral("^/\\*\\* (.+) \\*/\nconstexpr \\S+(?: \\S+)* (\\w+) = (.*);$"),
            QRegularExpression::MultilineOption);
        const QString text = header();
        QStringList held;
        for (auto matches = row.globalMatch(text); matches.hasNext();) {
            const auto match = matches.next();
            const QString name = match.captured(2);
            held << QStringLiteral("| `%1` | %2 | %3 |")
                        .arg(name, written(name, valueOf(match.captured(3))), match.captured(1));
        }
        QStringList listed;
        for (const QString& line :
             Document(QStringLiteral("docs/configuration.md")).section(QStringLiteral("Bounds")))
            if (line.startsWith(QLatin1String("| `")))
                listed << line;
        for (int i = 0; i < qMax(held.size(), listed.size()); ++i)
            QCOMPARE(listed.value(i), held.value(i));
    }
};

QTEST_GUILESS_MAIN(LimitsPageTest)
#include "tst_limits_page.moc"
