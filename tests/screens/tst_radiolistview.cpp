#include "tests/screens/radiounit.h"
#include "tests/support/logcatcher.h"
#include "tests/support/panelmain.h"
#include "widgets/ticker.h"

#include <QStyledItemDelegate>

using namespace Radio;

class RadioListViewTest : public QObject {
    Q_OBJECT

private:
    std::optional<Unit> m_unit;

private slots:
    void init() { m_unit.emplace(); }

    void lookOfTheList()
    {
        const ListScreen form;
        const QListView* view = form.view();
        QVERIFY(form.windowFlags() & Qt::FramelessWindowHint);
        QCOMPARE(view->font().family(), QStringLiteral("Unifont"));
        QCOMPARE(view->font().pointSize(), 10);
        QCOMPARE(view->gridSize(), QSize(270, 14));
        QVERIFY(view->uniformItemSizes());
        QCOMPARE(view->editTriggers(), QAbstractItemView::NoEditTriggers);
        QCOMPARE(view->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
        const char style[] =
            "QScrollBar:vertical {    border: 1px solid #999999;    background:white;    width:10px;        "
            "margin: 0px 0px 0px 0px;}QScrollBar::handle:vertical {    background: qlineargradient(x1:0, "
            "y1:0, "
            "x2:1, y2:0,    stop: 0  rgb(60, 60, 60), stop: 0.5 rgb(60, 60, 60),  stop:1 rgbrgb(60, 60, 60) "
            "); "
            "   min-height: 0px;}QScrollBar::add-line:vertical {    background: qlineargradient(x1:0, y1:0, "
            "x2:1, y2:0,    stop: 0  rgb(32, 47, 130), stop: 0.5 rgb(32, 47, 130),  stop:1 rgb(32, 47, "
            "130)); "
            "   height: px;    subcontrol-position: bottom;    subcontrol-origin: margin;}"
            "QScrollBar::sub-line:vertical {    background: qlineargradient(x1:0, y1:0, x2:1, y2:0,    "
            "stop: 0  rgb(32, 47, 130), stop: 0.5 rgb(32, 47, 130),  stop:1 rgb(32, 47, 130));    "
            "height: 0px;    subcontrol-position: top;    subcontrol-origin: margin;}";
        QCOMPARE(view->styleSheet(), QString::fromLatin1(style));
    }

    void theScrollBarStyleIsUnderstood()
    {
        m_unit->writeStations(100, 0);
        LogCatcher log(4);
        ListScreen form;
        form.enter();
        form.grab();
        QVERIFY(log.lines().filter(QStringLiteral("parse")).isEmpty());
    }

    void theCurrentRowIsInViewAndMarkedWithoutFocus()
    {
        m_unit->writeStations(60, 40);
        ListScreen form;
        form.enter();
        for (int turn = 0; turn < 130; ++turn) {
            form.down_action();
            const QRect viewport = form.view()->viewport()->rect();
            const QRect row = form.view()->visualRect(form.view()->currentIndex());
            QCOMPARE(form.row(), (turn + 1) % 100);
            QVERIFY(row.top() >= viewport.top() && row.bottom() <= viewport.bottom());
            QCOMPARE(row.left(), viewport.left());
            const QImage image = form.view()->grab().toImage();
            const QColor mark(146, 226, 255);
            QCOMPARE(image.pixelColor(viewport.right() - 2, row.center().y()), mark);
            QVERIFY(image.pixelColor(viewport.right() - 2, (row.center().y() + 28) % 112) != mark);
        }
    }

    void aLongTitleIsElidedAndDoesNotMoveTheList()
    {
        m_unit->writeRadio(station(0, 0));
        m_unit->writePresets(channels(entry(QString(5000, QLatin1Char('W')), QStringLiteral("u"))
                                      + entry(QString(5000, QLatin1Char('W')), QStringLiteral("u"))));
        ListScreen form;
        const QRect lastColumns(217, 14, 3, 14);
        form.enter();
        const QImage drawn = form.view()->grab(lastColumns).toImage();
        form.down_action();
        QCOMPARE(form.view()->visualRect(form.view()->currentIndex()).topLeft(), QPoint(0, 14));
        m_unit->writePresets(QByteArray());
        form.enter();
        QCOMPARE(drawn, form.view()->grab(lastColumns).toImage());
    }

    /** Such as the leftovers of a list that was once in another encoding. */
    void controlCharactersOfATitleDrawNothing()
    {
        const QString controls = QStringLiteral("Se\u0090oul\u009F");
        const QString url = QStringLiteral("u");
        m_unit->writeRadio(station(0, 2));
        m_unit->writePresets(channels(entry(QStringLiteral("Seoul"), url) + entry(controls, url)
                                      + entry(QStringLiteral("Busan"), url)));
        ListScreen form;
        form.enter();
        QCOMPARE(form.title(1), controls);
        const auto row = [&form](int at) { return form.view()->grab(QRect(0, at * 14, 220, 14)).toImage(); };
        QCOMPARE(row(1), row(0));
        form.setRow(0);
        QVERIFY2(row(2) != row(1), "another title looks different");
    }

    /** Only what a row can show is laid out; the title itself is kept whole. */
    void aTitleAsLongAsAFileAllowsIsDrawnNoFurtherThanItsRow()
    {
        const QString title(60000, QLatin1Char('x'));
        m_unit->writeRadio(station(0, 0));
        m_unit->writePresets(channels(entry(title, QStringLiteral("u"))));
        ListScreen form;
        form.enter();
        QCOMPARE(form.title(0), title);
        const auto* const delegate = qobject_cast<QStyledItemDelegate*>(form.view()->itemDelegate());
        QCOMPARE(delegate->displayText(title, QLocale()), title.left(form.view()->gridSize().width()));
    }

    void theRowThatDoesNotFitIsNotDrawn()
    {
        m_unit->writeStations(20, 0);
        ListScreen form;
        const QRect belowTheRows(0, 9 * 14, 200, 130 - 9 * 14);
        form.enter();
        const QImage drawn = form.view()->grab(belowTheRows).toImage();
        m_unit->writePresets(QByteArray());
        form.enter();
        QCOMPARE(drawn, form.view()->grab(belowTheRows).toImage());
    }

    void aTickerCoversTheCurrentRow()
    {
        m_unit->writeStations(3, 0);
        ListScreen form;
        form.enter();
        const QModelIndex first = form.model()->index(0, 0);
        const QModelIndex second = form.model()->index(1, 0);
        LogCatcher log;
        form.SetTickerEffect(first, QModelIndex());
        auto* ticker = qobject_cast<Ticker*>(form.view()->indexWidget(first));
        QVERIFY(ticker != nullptr);
        QCOMPARE(ticker->font().family(), QStringLiteral("Unifont"));
        QCOMPARE(ticker->font().pointSize(), 10);
        QVERIFY(ticker->autoFillBackground());
        for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
            QCOMPARE(ticker->palette().color(group, QPalette::Base), QColor(Qt::white));
            QCOMPARE(ticker->palette().color(group, QPalette::Text), QColor(Qt::black));
        }
        form.SetTickerEffect(second, first);
        QVERIFY(form.view()->indexWidget(first) == nullptr);
        QVERIFY(qobject_cast<Ticker*>(form.view()->indexWidget(second)) != nullptr);
        form.SetTickerEffect(QModelIndex(), second);
        QVERIFY(form.view()->indexWidget(second) == nullptr);
        QCOMPARE(log.lines(), QStringList());
    }
};

VIREO_TEST_MAIN(RadioListViewTest)
#include "tst_radiolistview.moc"
