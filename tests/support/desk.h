#pragma once

#include <QProcess>
#include <QRect>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QtTest>

#include <memory>

/** Displays of a test's own, and the programs on them. */
namespace desk {

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

inline QProcessEnvironment withoutDisplay()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"QT_QPA_PLATFORM", "WAYLAND_DISPLAY", "QT_SCALE_FACTOR", "DISPLAY"})
        environment.remove(QString::fromLatin1(name));
    return environment;
}

/** A display of its own, of any size, with or without a window manager. */
struct Display {
    Display(const QString& size, bool managed)
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

    /** The number of the visible window of this title, empty until there is one. */
    QString idOf(const QString& title) const
    {
        return hand({QStringLiteral("search"), QStringLiteral("--onlyvisible"), QStringLiteral("--name"),
                     QStringLiteral("^%1$").arg(title)})
            .section(QLatin1Char('\n'), 0, 0);
    }
    /** Where the visible window of this title is, empty until there is one. */
    QRect window(const QString& title) const
    {
        const QString id = idOf(title);
        if (id.isEmpty())
            return {};
        const QString about = run(QStringLiteral("xwininfo"), {QStringLiteral("-id"), id});
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

/** Whether what this needs is installed (tools/setup.sh test). */
inline bool isPossible()
{
    for (const char* program : {"Xvfb", "openbox", "xdotool", "xwininfo"})
        if (QStandardPaths::findExecutable(QString::fromLatin1(program)).isEmpty())
            return false;
    return true;
}

} // namespace desk
