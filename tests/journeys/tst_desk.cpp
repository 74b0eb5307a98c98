#include "tests/support/panelmain.h"
#include "tests/support/unitroot.h"

#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>

#include <memory>

namespace {

constexpr int patienceMs = 30000;

/** A program that ends with its object. */
struct Program {
    Program(const QString& name, const QStringList& arguments, const QProcessEnvironment& environment)
    {
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(name, arguments);
        if (!process.waitForStarted())
            qFatal("%s does not start", qPrintable(name));
    }
    ~Program()
    {
        process.terminate();
        process.waitForFinished();
    }
    QProcess process;
};

QProcessEnvironment withoutDisplay()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"QT_QPA_PLATFORM", "WAYLAND_DISPLAY", "QT_SCALE_FACTOR", "DISPLAY"})
        environment.remove(QString::fromLatin1(name));
    return environment;
}

/** A display of its own, of any size, with or without a window manager. */
struct Desk {
    Desk(const QString& size, bool managed)
        : environment(withoutDisplay())
        , server(QStringLiteral("Xvfb"),
                 {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                  QStringLiteral("0"), size + QStringLiteral("x24"), QStringLiteral("-noreset"),
                  QStringLiteral("-nolisten"), QStringLiteral("tcp")},
                 environment)
    {
        if (!server.process.waitForReadyRead())
            qFatal("the display does not start");
        const QString number = QString::fromLatin1(server.process.readLine().trimmed());
        environment.insert(QStringLiteral("DISPLAY"), QLatin1Char(':') + number);
        if (!managed)
            return;
        manager = std::make_unique<Program>(QStringLiteral("openbox"), QStringList(), environment);
        if (!QTest::qWaitFor([this] { return managerListens(); }, patienceMs))
            qFatal("the window manager does not start");
    }

    /** Whether the window manager does as it is told. Before that it lets events lie that came while it
     * started, a window's wish to be shown among them, until another one comes. */
    bool managerListens() const
    {
        const QString desktops = QStringLiteral("2");
        hand({QStringLiteral("set_num_desktops"), desktops});
        return hand({QStringLiteral("get_num_desktops")}) == desktops;
    }

    /** Runs a program on the display to its end; its output. */
    QString run(const QString& name, const QStringList& arguments) const
    {
        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(name, arguments);
        process.waitForFinished();
        return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
    }
    QString hand(const QStringList& arguments) const { return run(QStringLiteral("xdotool"), arguments); }

    /** The visible window of this title, empty until there is one. */
    QRect window(const QString& title) const
    {
        const QString id = hand({QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                                 QStringLiteral("--name"), QStringLiteral("^%1$").arg(title)});
        if (id.isEmpty())
            return {};
        const QString about =
            run(QStringLiteral("xwininfo"), {QStringLiteral("-id"), id.section(QLatin1Char('\n'), 0, 0)});
        const auto value = [&](const char* name) {
            const QRegularExpression line(QLatin1String(name) + QStringLiteral(":\\s+(-?\\d+)"));
            return line.match(about).captured(1).toInt();
        };
        return {value("Absolute upper-left X"), value("Absolute upper-left Y"), value("Width"),
                value("Height")};
    }

    QProcessEnvironment environment;
    Program server;
    std::unique_ptr<Program> manager;
};

} // namespace

/** Real windows on real displays. */
class DeskTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        for (const char* program : {"Xvfb", "openbox", "xdotool", "xwininfo"})
            if (QStandardPaths::findExecutable(QString::fromLatin1(program)).isEmpty())
                QSKIP("Xvfb, openbox, xdotool or xwininfo is not installed (tools/setup.sh test)");
    }

    void panelAndWindowStandSideBySide_data()
    {
        QTest::addColumn<QString>("size");
        QTest::addColumn<QString>("scale");
        QTest::addColumn<QString>("fontDpi");
        QTest::addColumn<bool>("managed");
        for (const bool managed : {false, true})
            for (const char* size : {"640x480", "800x480", "1280x800", "3840x2160"})
                for (const char* scale : {"1", "2"}) {
                    const bool fits = qstrcmp(scale, "1") == 0 || QByteArray(size).startsWith("1280")
                        || QByteArray(size).startsWith("3840");
                    const QByteArray name = QByteArray(size) + " at " + scale + (managed ? ", managed" : "");
                    if (fits)
                        QTest::newRow(name.constData()) << size << scale << "96" << managed;
                }
        QTest::newRow("large fonts") << "1280x800"
                                     << "1"
                                     << "192" << true;
    }
    void panelAndWindowStandSideBySide()
    {
        QFETCH(QString, size);
        QFETCH(QString, scale);
        QFETCH(QString, fontDpi);
        QFETCH(bool, managed);
        const UnitRoot unit;
        Desk display(size, managed);
        display.environment.insert(QStringLiteral("QT_SCALE_FACTOR"), scale);
        display.environment.insert(QStringLiteral("QT_FONT_DPI"), fontDpi);
        const QString place =
            display.run(QStringLiteral(SUPERVISOR_PROGRAM), {QStringLiteral("--panel-place")});
        const Program panel(QStringLiteral(VIREO_PROGRAM),
                            {QStringLiteral("5"), QStringLiteral("-qwindowgeometry"), place},
                            display.environment);
        const Program window(QStringLiteral(SUPERVISOR_PROGRAM), {}, display.environment);
        QRect shown[2];
        QTRY_VERIFY_WITH_TIMEOUT(
            !(shown[0] = display.window(QStringLiteral("MainWindow"))).isEmpty()
                && !(shown[1] = display.window(QStringLiteral("Vireo supervisor"))).isEmpty(),
            patienceMs);
        const QRect screen(0, 0, size.section(QLatin1Char('x'), 0, 0).toInt(),
                           size.section(QLatin1Char('x'), 1).toInt());
        QCOMPARE(shown[0], QRect(0, 0, 320 * scale.toInt(), 240 * scale.toInt()));
        QVERIFY(screen.contains(shown[1]));
        QVERIFY2(!shown[0].intersects(shown[1]), qPrintable(QString::number(shown[1].left())));
        QVERIFY(shown[1].width() >= 280 * scale.toInt() && shown[1].height() >= 340 * scale.toInt());
    }
};

VIREO_TEST_MAIN(DeskTest)
#include "tst_desk.moc"
