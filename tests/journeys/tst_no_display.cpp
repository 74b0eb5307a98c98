#include "tests/support/panelmain.h"

#include <QProcess>

/** Both programs where no display can be had: one line that says what is missing, no abort. */
class NoDisplayTest : public QObject {
    Q_OBJECT

private slots:
    void oneLineAndStatusOne_data()
    {
        QTest::addColumn<QString>("program");
        QTest::addColumn<QString>("platform");
        QTest::addColumn<QString>("reason"); // a part of it
        for (const char* program : {VIREO_PROGRAM, SUPERVISOR_PROGRAM}) {
            const QString name = QString::fromUtf8(program);
            const auto row = [&](const char* platform, const char* reason) {
                QTest::addRow("%s on %s", qPrintable(name.section(QLatin1Char('/'), -1)), platform)
                    << name << QString::fromUtf8(platform) << QString::fromUtf8(reason);
            };
            row("xcb", "could not connect to display :32767");
            row("linuxfb:fb=/no/such/device", "/no/such/device");
            row("nosuch", "\"nosuch\"");
            row("", "could not connect to display :32767");
        }
    }
    void oneLineAndStatusOne()
    {
        QFETCH(QString, program);
        QFETCH(QString, platform);
        QFETCH(QString, reason);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), platform);
        environment.insert(QStringLiteral("DISPLAY"), QStringLiteral(":32767"));
        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(program, QStringList());
        QVERIFY(process.waitForFinished(30000));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 1);
        const QString printed = QString::fromUtf8(process.readAllStandardError());
        QVERIFY2(printed.contains(reason), qPrintable(printed));
        QVERIFY2(printed.startsWith(program.section(QLatin1Char('/'), -1) + QStringLiteral(": no display: ")),
                 qPrintable(printed));
        QCOMPARE(printed.count(QLatin1Char('\n')), 1);
        QCOMPARE(printed.endsWith(QStringLiteral("; send and script work without one\n")),
                 program == QStringLiteral(SUPERVISOR_PROGRAM));
    }

    void tourExplainsItself()
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
            environment.remove(QString::fromLatin1(name));
        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(TOUR_PROGRAM), {QStringLiteral("--help")});
        QVERIFY(process.waitForFinished(30000));
        QCOMPARE(process.exitCode(), 0);
        QVERIFY(process.readAllStandardOutput().startsWith("Usage: vireo-tour TOUR FOLDER\n"));
        QCOMPARE(process.readAllStandardError(), QByteArray());
    }
};

VIREO_TEST_MAIN(NoDisplayTest)
#include "tst_no_display.moc"
