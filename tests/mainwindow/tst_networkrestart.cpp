#include "tests/mainwindow/panel.h"
#include "tests/support/ownport.h"
#include "tests/support/strings.h"

#include <optional>

namespace {

class PaintCounter : public QObject {
public:
    bool eventFilter(QObject*, QEvent* event) override
    {
        count += event->type() == QEvent::Paint;
        return false;
    }
    int count = 0;
};

} // namespace

class NetworkRestartTest : public QObject {
    Q_OBJECT

private:
    std::optional<LogCatcher> m_silence;

private slots:
    void init() { m_silence.emplace(5); }

    void networkRestart_data()
    {
        QTest::addColumn<QByteArray>("command");
        QTest::addColumn<bool>("runs");
        QTest::newRow("takes time") << QByteArray("#!/bin/sh\nsleep 0.3\necho \"$@\" > \"$0.ran\"\n") << true;
        QTest::newRow("fails") << QByteArray("#!/bin/sh\necho \"$@\" > \"$0.ran\"\nexit 3\n") << true;
        QTest::newRow("floods its output")
            << QByteArray("#!/bin/sh\nhead -c 50000000 /dev/zero\necho \"$@\" > \"$0.ran\"\n") << true;
        QTest::newRow("missing") << QByteArray() << false;
    }
    void networkRestart()
    {
        QFETCH(QByteArray, command);
        QFETCH(bool, runs);
        Panel panel;
        const QString path = panel.unit.path(QStringLiteral("/etc/rc.d/init.d/network"));
        if (runs) {
            UnitRoot::write(path, command);
            QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        }
        panel.emitParser("sgDEVICE_Set_Enter()");
        LogCatcher log(0);
        Panel::emitOf(panel.widget("wg_Setting"), "sgLoadingMode()");
        QStringList lines = log.plain();
        lines.removeAll(QStringLiteral("E XML [No such file or directory]"));
        QCOMPARE(lines,
                 strings({"void MainWindow::LoadingModeEntered()", "void SetupForm::StopTimer()",
                          "void MainWindow::LoadingModeExited()", "void SetupForm::ReloadPage()",
                          "void SetupForm::XMLParse()"}));
        QCOMPARE(UnitRoot::read(path + QStringLiteral(".ran")),
                 runs ? QByteArray("restart\n") : QByteArray());
        // The setup screen has its input back.
        log.clear();
        panel.emitParser("sgKEY_ESC()");
        QCOMPARE(log.plain(), strings({"void SetupForm::esc_action()"}));
    }

    /** Nothing is painted during the wait, so what is to show then must be painted before. */
    void pageIsPaintedBeforeTheWait()
    {
        Panel panel;
        panel.emitParser("sgDEVICE_Set_Enter()");
        QCoreApplication::processEvents();
        PaintCounter paints;
        panel.widget("wg_Setting")->installEventFilter(&paints);
        Panel::emitOf(panel.widget("wg_Setting"), "sgLoadingMode()");
        QVERIFY(paints.count > 0);
    }
};

VIREO_PORT_TEST_MAIN(NetworkRestartTest)
#include "tst_networkrestart.moc"
