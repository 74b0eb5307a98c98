#include "tests/mainwindow/panel.h"
#include "tests/support/ownport.h"
#include "tests/support/strings.h"

#include <QLabel>

#include <optional>

namespace {

/** The names of what the program tells to hide or, with the other event, to show, in that order. */
class EventOrder : public QObject {
public:
    explicit EventOrder(QEvent::Type type)
        : m_type(type)
    {
        qApp->installEventFilter(this);
    }
    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (event->type() == m_type)
            names << object->objectName();
        return false;
    }
    QStringList names;

private:
    QEvent::Type m_type;
};

} // namespace

class MainWindowTest : public QObject {
    Q_OBJECT

private:
    std::optional<LogCatcher> m_silence;

private slots:
    void init() { m_silence.emplace(5); }

    void startsWithTheLogoAlone()
    {
        Panel panel;
        QCOMPARE(panel.mode(), QStringLiteral("StartState"));
        QCOMPARE(panel.screens(), QStringList());
        QCOMPARE(panel.window.size(), QSize(320, 240));
        QVERIFY(panel.window.windowFlags().testFlag(Qt::FramelessWindowHint));
        QVERIFY(!panel.widget("lb_MainOrvane")->isHidden());
        for (const char* overlay : {"lbl_background_alpha", "lb_sysup", "lb_sysup_bot", "lb_sysup_msg"})
            QVERIFY(panel.window.centralWidget()
                        ->findChild<QWidget*>(QString::fromLatin1(overlay), Qt::FindDirectChildrenOnly)
                        ->isHidden());
        QVERIFY(panel.unit.readConf(QStringLiteral("oper_mode.xml")).isEmpty());
    }

    void hidesOverlayAndScreensInTheirOrder()
    {
        const QStringList order = {
            QStringLiteral("lbl_background_alpha"),
            QStringLiteral("lb_sysup"),
            QStringLiteral("lb_sysup_bot"),
            QStringLiteral("lb_sysup_msg"),
            QStringLiteral("wg_AOE"),
            QStringLiteral("wg_NetBGM"),
            QStringLiteral("wg_IR"),
            QStringLiteral("wg_IRList"),
            QStringLiteral("wg_Menu"),
            QStringLiteral("wg_Setting"),
            QStringLiteral("wg_USB"),
        };
        const UnitRoot unit;
        const EventOrder hidden(QEvent::HideToParent);
        const MainWindow window;
        QCOMPARE(hidden.names.mid(hidden.names.lastIndexOf(order.first()), order.size()), order);
    }

    void layout_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QRect>("box");
        QTest::addColumn<QString>("style");
        for (const char* screen :
             {"wg_USB", "wg_IR", "wg_AOE", "wg_Setting", "wg_Menu", "wg_NetBGM", "wg_IRList"})
            QTest::newRow(screen) << screen << QRect(0, 0, 320, 240) << QString();
        QTest::newRow("veil") << "lbl_background_alpha" << QRect(0, 0, 320, 240)
                              << "background-color: rgba(45, 45, 45, 200);";
        QTest::newRow("upgrade head") << "lb_sysup" << QRect(30, 50, 246, 24) << QString();
        QTest::newRow("upgrade foot") << "lb_sysup_bot" << QRect(25, 150, 269, 26) << QString();
        QTest::newRow("upgrade text")
            << "lb_sysup_msg" << QRect(30, 102, 260, 20) << "color: rgb(175, 227, 255);";
        QTest::newRow("logo") << "lb_MainOrvane" << QRect(0, 0, 320, 240) << QString();
    }
    void layout()
    {
        QFETCH(QString, name);
        QFETCH(QRect, box);
        QFETCH(QString, style);
        Panel panel;
        const auto* widget =
            panel.window.centralWidget()->findChild<QWidget*>(name, Qt::FindDirectChildrenOnly);
        QVERIFY(widget);
        QCOMPARE(widget->geometry(), box);
        QCOMPARE(widget->styleSheet(), style);
    }

    void upgradeOverlay()
    {
        Panel panel;
        auto* central = panel.window.centralWidget();
        const auto hidden = [central] {
            QList<bool> result;
            for (const char* name : {"lbl_background_alpha", "lb_sysup", "lb_sysup_bot", "lb_sysup_msg"})
                result << central->findChild<QWidget*>(QString::fromLatin1(name), Qt::FindDirectChildrenOnly)
                              ->isHidden();
            return result;
        };
        panel.window.stackBuff(QByteArray::fromHex("0f00010001"));
        QCOMPARE(hidden(), QList<bool>({false, false, false, false}));
        panel.window.stackBuff(QByteArray::fromHex("10000400") + "<b>x");
        auto* text = panel.window.findChild<QLabel*>(QStringLiteral("lb_sysup_msg"));
        QCOMPARE(text->text(), QStringLiteral("<b>x"));
        QCOMPARE(text->textFormat(), Qt::PlainText);
        QCOMPARE(text->font().pointSize(), 14);
        QCOMPARE(text->font().family(), QStringLiteral("Unifont"));
        // Modes change beneath it.
        panel.emitParser("sgDEVICE_USB_FRONT_Enter()");
        QCOMPARE(hidden(), QList<bool>({false, false, false, false}));
        panel.window.stackBuff(QByteArray::fromHex("0f00010002"));
        QCOMPARE(hidden(), QList<bool>({true, true, true, true}));
    }

    void controlCharactersOfTheUpgradeMessageDrawNothing()
    {
        Panel panel;
        auto* text = panel.window.findChild<QLabel*>(QStringLiteral("lb_sysup_msg"));
        panel.window.stackBuff(QByteArray::fromHex("10000300") + "50%");
        const QImage plain = text->grab().toImage();
        panel.window.stackBuff(QByteArray::fromHex("10000500") + "5\r0%\x07");
        QCOMPARE(text->text(), QStringLiteral("5\r0%\x07"));
        QCOMPARE(text->grab().toImage(), plain);
        text->clear();
        QVERIFY(text->grab().toImage() != plain);
    }

    void stationSlotsOfThePastKeepTheirTexts()
    {
        Panel panel;
        LogCatcher log(0);
        panel.window.setIRTitle(QStringLiteral("t"));
        panel.window.setIRUrl(QStringLiteral("u"));
        QCOMPARE(log.lines(),
                 strings({"void MainWindow::setIRTitle(QString)", "void MainWindow::setIRUrl(QString)"}));
    }
};

VIREO_PORT_TEST_MAIN(MainWindowTest)
#include "tst_mainwindow.moc"
