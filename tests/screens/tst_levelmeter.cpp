#include "screens/aoeform.h"
#include "screens/irform.h"
#include "screens/mp3_lcd.h"
#include "tests/screens/screenrows.h"
#include "tests/support/logcatcher.h"
#include "tests/support/panelmain.h"

#include <memory>

namespace {

QString unlit(int segment)
{
    return QStringLiteral("lbLevel%1").arg(segment);
}

QString lit(int segment)
{
    return QStringLiteral("lbLevel%1_2").arg(segment);
}

/** One character a segment, from the left: '#' lit, '-' unlit, '.' neither. */
QString look(const QWidget& screen)
{
    QString result;
    for (int segment = 1; segment <= 8; ++segment) {
        const bool on = !Screen::label(screen, lit(segment))->isHidden();
        const bool off = !Screen::label(screen, unlit(segment))->isHidden();
        result += QLatin1Char(on ? '#' : off ? '-' : '.');
    }
    return result;
}

void setLevel(QWidget& screen, int level)
{
    QMetaObject::invokeMethod(&screen, "showLevel", Q_ARG(unsigned char, static_cast<unsigned char>(level)));
}

/** Notes which labels are shown and hidden, in order. */
class ChangeWatcher : public QObject {
public:
    explicit ChangeWatcher(QWidget& screen)
    {
        for (QLabel* label : screen.findChildren<QLabel*>())
            label->installEventFilter(this);
    }
    QStringList changes;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Show)
            changes << QStringLiteral("show ") + watched->objectName();
        if (event->type() == QEvent::Hide)
            changes << QStringLiteral("hide ") + watched->objectName();
        return false;
    }
};

template <typename Form> std::shared_ptr<QWidget> made()
{
    return std::make_shared<Form>();
}

using Maker = std::shared_ptr<QWidget> (*)();
struct Kind {
    const char* name;
    Maker make;
};
constexpr Kind kinds[] = {
    {"player", &made<mp3_lcd>},
    {"audio over Ethernet", &made<AOEForm>},
    {"internet radio", &made<IRForm>},
};

} // namespace

Q_DECLARE_METATYPE(std::shared_ptr<QWidget>)

class LevelMeterTest : public QObject {
    Q_OBJECT

private slots:
    void look_data()
    {
        QTest::addColumn<std::shared_ptr<QWidget>>("screen");
        QTest::addColumn<QList<int>>("levels");
        QTest::addColumn<QString>("expected");
        for (const Kind& kind : kinds) {
            const auto add = [&kind](const char* name, const QList<int>& levels, const char* expected) {
                QTest::addRow("%s: %s", kind.name, name)
                    << kind.make() << levels << QString::fromLatin1(expected);
            };
            add("unlit before anything is shown", {}, "--------");
            add("0 lights none", {8, 0}, "--------");
            add("1", {1}, "#-------");
            add("2", {2}, "##------");
            add("3", {3}, "###-----");
            add("4", {4}, "####----");
            add("5", {5}, "#####---");
            add("6", {6}, "######--");
            add("7", {7}, "#######-");
            add("8", {8}, "########");
            add("3 after 8 hides 4 to 8", {8, 3}, "###-----");
            add("8 after 3 lights the rest", {3, 8}, "########");
            add("9 changes nothing", {5, 9}, "#####---");
            add("255 changes nothing", {5, 255}, "#####---");
            add("9 at the start changes nothing", {9}, "--------");
        }
    }
    void look()
    {
        QFETCH(std::shared_ptr<QWidget>, screen);
        QFETCH(QList<int>, levels);
        QFETCH(QString, expected);
        for (int level : levels)
            setLevel(*screen, level);
        QCOMPARE(::look(*screen), expected);
    }

    void initLooksLikeLevelZero()
    {
        for (const Kind& kind : kinds) {
            const auto screen = kind.make();
            setLevel(*screen, 6);
            Screen::label(*screen, unlit(2))->hide();
            QMetaObject::invokeMethod(screen.get(), "initLevel");
            QCOMPARE(::look(*screen), QStringLiteral("--------"));
            setLevel(*screen, 6);
            Screen::label(*screen, unlit(2))->hide();
            setLevel(*screen, 0);
            QCOMPARE(::look(*screen), QStringLiteral("--------"));
        }
    }

    void aLevelLeavesTheUnlitLabelsAlone()
    {
        for (const Kind& kind : kinds) {
            const auto screen = kind.make();
            Screen::label(*screen, unlit(7))->hide();
            setLevel(*screen, 3);
            QCOMPARE(::look(*screen), QStringLiteral("###---.-"));
        }
    }

    void onlyWhatChangesIsTouchedFromTheFirstSegmentUp()
    {
        for (const Kind& kind : kinds) {
            const auto screen = kind.make();
            screen->show();
            setLevel(*screen, 2);
            ChangeWatcher watcher(*screen);
            setLevel(*screen, 5);
            setLevel(*screen, 5);
            setLevel(*screen, 3);
            QCOMPARE(watcher.changes,
                     strings({"show lbLevel3_2", "show lbLevel4_2", "show lbLevel5_2", "hide lbLevel4_2",
                              "hide lbLevel5_2"}));
        }
    }

    void logsItsSignatureAndThatOfTheStartLook()
    {
        mp3_lcd screen;
        LogCatcher log;
        screen.showLevel(0);
        screen.showLevel(8);
        screen.showLevel(9);
        QCOMPARE(
            log.lines(),
            strings({"void mp3_lcd::showLevel(unsigned char)", "void mp3_lcd::initLevel()",
                     "void mp3_lcd::showLevel(unsigned char)", "void mp3_lcd::showLevel(unsigned char)"}));
    }
};

VIREO_TEST_MAIN(LevelMeterTest)
#include "tst_levelmeter.moc"
