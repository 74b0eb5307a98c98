#pragma once

#include "app/dprintf.h"
#include "tests/support/strings.h"

#include <QImage>
#include <QLabel>
#include <QPixmap>
#include <QStringList>
#include <QtTest>

/** What the tests of the screens ask of a form, by the names of its widgets. */
namespace Screen {

constexpr const char* grey = "color: rgb(174, 174, 174);";
constexpr const char* cyan = "color: rgb(146, 226, 255);";
constexpr const char* band = "background-color: rgba(0, 0, 0, 150);";
constexpr const char* veil = "background-color: rgba(45, 45, 45, 200);";

/** One row of a screen's layout: place in pixels, style sheet, image resource, whether it fills its box. */
struct Row {
    const char* name;
    QRect place;
    const char* style = "";
    const char* image = "";
    bool scaled = false;
};

inline QWidget* widget(const QWidget& screen, const QString& name)
{
    auto* found = screen.findChild<QWidget*>(name);
    if (!found)
        qFatal("no widget %s", qPrintable(name));
    return found;
}
inline QLabel* label(const QWidget& screen, const QString& name)
{
    return qobject_cast<QLabel*>(widget(screen, name));
}
inline QLabel* label(const QWidget& screen, const char* name)
{
    return label(screen, QString::fromLatin1(name));
}
inline QString text(const QWidget& screen, const char* name)
{
    return label(screen, name)->text();
}
inline bool shown(const QWidget& screen, const char* name)
{
    return !widget(screen, QString::fromLatin1(name))->isHidden();
}
inline QImage image(const QWidget& screen, const char* name)
{
    return label(screen, name)->property("pixmap").value<QPixmap>().toImage();
}
/** The image of a resource; never a null one, which would equal any other missing image. */
inline QImage resource(const char* path)
{
    const QPixmap pixmap(QString::fromLatin1(path));
    if (pixmap.isNull())
        qFatal("no image %s", path);
    return pixmap.toImage();
}

inline bool hasPanelFont(const QWidget& screen, const char* name)
{
    const QFont font = widget(screen, QString::fromLatin1(name))->font();
    return font.family() == QLatin1String("Unifont") && font.pointSize() == 12
        && font.weight() == QFont::Normal && !font.italic();
}

/** Whether `upper` is drawn over `lower`. */
inline bool lies(const QWidget& screen, const char* upper, const char* lower)
{
    const auto& order = screen.children();
    return order.indexOf(widget(screen, QString::fromLatin1(upper)))
        > order.indexOf(widget(screen, QString::fromLatin1(lower)));
}

/** What a widget and its children draw, without the ground of the window. */
inline QImage drawn(QWidget& widget)
{
    QImage image(widget.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    widget.render(&image, {}, {}, QWidget::DrawChildren);
    return image;
}

inline void addRows(const QVector<Row>& rows)
{
    QTest::addColumn<QRect>("place");
    QTest::addColumn<QString>("style");
    QTest::addColumn<QByteArray>("image");
    QTest::addColumn<bool>("scaled");
    for (const Row& row : rows)
        QTest::newRow(row.name) << row.place << QString::fromLatin1(row.style) << QByteArray(row.image)
                                << row.scaled;
}

inline void compareRow(const QWidget& screen)
{
    QFETCH(QRect, place);
    QFETCH(QString, style);
    QFETCH(QByteArray, image);
    QFETCH(bool, scaled);
    const QString name = QString::fromLatin1(QTest::currentDataTag());
    QCOMPARE(widget(screen, name)->geometry(), place);
    QCOMPARE(widget(screen, name)->styleSheet(), style);
    if (const QLabel* const found = label(screen, name))
        QCOMPARE(found->hasScaledContents(), scaled);
    if (!image.isEmpty())
        QCOMPARE(Screen::image(screen, QTest::currentDataTag()), resource(image.constData()));
}

/** The sixteen rows of a level meter whose segments begin at the given columns. */
inline QVector<Row> meterRows(const std::array<int, 8>& columns)
{
    static const std::array<const char*, 16> names = {"lbLevel1",   "lbLevel2",   "lbLevel3",   "lbLevel4",
                                                      "lbLevel5",   "lbLevel6",   "lbLevel7",   "lbLevel8",
                                                      "lbLevel1_2", "lbLevel2_2", "lbLevel3_2", "lbLevel4_2",
                                                      "lbLevel5_2", "lbLevel6_2", "lbLevel7_2", "lbLevel8_2"};
    static const std::array<const char*, 6> images = {
        ":/Tessaro/image/level_meter/LV1_6 OFF.png", ":/Tessaro/image/level_meter/LV7 OFF.png",
        ":/Tessaro/image/level_meter/LV8 OFF.png",   ":/Tessaro/image/level_meter/LV1_6 ON.png",
        ":/Tessaro/image/level_meter/LV7 ON.png",    ":/Tessaro/image/level_meter/LV8 ON.png"};
    QVector<Row> rows;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const std::size_t segment = i % 8;
        const std::size_t colour = segment < 6 ? 0 : segment - 5;
        rows << Row{names[i], QRect(columns[segment], 75, 32, 14), "", images[i / 8 * 3 + colour], true};
    }
    return rows;
}

} // namespace Screen
