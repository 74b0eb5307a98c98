#include "tests/support/panelmain.h"

#include <QDirIterator>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>

#include <algorithm>
#include <cstdlib>

// The two bundles of compiled-in images, named by their .qrc files.
int qInitResources_resource();
int qCleanupResources_resource();
int qInitResources_menuRc();
int qCleanupResources_menuRc();

namespace {

enum Trait { Plain = 0, Opaque = 1, ClearEdge = 2, Tile = 4 };

/** One image of the panel: where a screen finds it, its drawing below resources/art, its size in pixels. */
struct PanelImage {
    const char* path;
    const char* drawing;
    int width;
    int height;
    int traits;
};

// clang-format off
constexpr PanelImage kImages[] = {
    {":/Tessaro/image/init/background.png",             "image/init/background",             320, 240, Opaque},
    {":/Tessaro/image/init/orvane_logo.png",            "image/init/orvane_logo",            320, 240, Opaque},
    {":/Tessaro/image/sys_up.png",                      "image/sys_up",                      246,  24, ClearEdge},
    {":/Tessaro/image/sys_up_bot.png",                  "image/sys_up_bot",                  269,  26, ClearEdge},
    {":/Tessaro/image/input/front_usb.png",             "image/input/front_usb",              40,  19, ClearEdge},
    {":/Tessaro/image/input/back_usb.png",              "image/input/back_usb",               40,  19, ClearEdge},
    {":/Tessaro/image/input/usb.png",                   "image/input/usb",                    55,  20, ClearEdge},
    {":/Tessaro/image/input/AOE.png",                   "image/input/AOE",                    55,  20, ClearEdge},
    {":/Tessaro/image/input/IRADIO.png",                "image/input/IRADIO",                 55,  20, ClearEdge},
    {":/Tessaro/image/play_state/play.png",             "image/play_state/play",              17,  16, ClearEdge},
    {":/Tessaro/image/play_state/pause.png",            "image/play_state/pause",             17,  16, ClearEdge},
    {":/Tessaro/image/play_state/stop.png",             "image/play_state/stop",              17,  16, ClearEdge},
    {":/Tessaro/image/play_state/next.png",             "image/play_state/next",              17,  16, ClearEdge},
    {":/Tessaro/image/play_state/prev.png",             "image/play_state/prev",              17,  16, ClearEdge},
    {":/Tessaro/image/special_state/all.png",           "image/special_state/all",            33,  31, ClearEdge},
    {":/Tessaro/image/special_state/all_repeat.png",    "image/special_state/all_repeat",     33,  31, ClearEdge},
    {":/Tessaro/image/special_state/folder.png",        "image/special_state/folder",         33,  31, ClearEdge},
    {":/Tessaro/image/special_state/folder_repeat.png", "image/special_state/folder_repeat",  33,  31, ClearEdge},
    {":/Tessaro/image/special_state/one.png",           "image/special_state/one",            33,  31, ClearEdge},
    {":/Tessaro/image/special_state/one_repeat.png",    "image/special_state/one_repeat",     33,  31, ClearEdge},
    {":/Tessaro/image/special_state/shuffle.png",       "image/special_state/shuffle",        30,  20, ClearEdge},
    {":/Tessaro/image/level_meter/LV1_6 ON.png",        "image/level_meter/LV1_6 ON",         32,  14, Plain},
    {":/Tessaro/image/level_meter/LV1_6 OFF.png",       "image/level_meter/LV1_6 OFF",        32,  14, Plain},
    {":/Tessaro/image/level_meter/LV7 ON.png",          "image/level_meter/LV7 ON",           32,  14, Plain},
    {":/Tessaro/image/level_meter/LV7 OFF.png",         "image/level_meter/LV7 OFF",          32,  14, Plain},
    {":/Tessaro/image/level_meter/LV8 ON.png",          "image/level_meter/LV8 ON",           32,  14, Plain},
    {":/Tessaro/image/level_meter/LV8 OFF.png",         "image/level_meter/LV8 OFF",          32,  14, Plain},
    {":/Tessaro/image/album_art/album_back.png",        "image/album_art/album_back",        100, 100, Plain},
    {":/Tessaro/image/album_art/no_cd_image.png",       "image/album_art/no_cd_image",       113, 100, ClearEdge},
    {":/Tessaro/image/memory/folder.png",               "image/memory/folder",                19,  14, Plain},
    {":/Tessaro/image/setup/dhcp_yes.png",              "image/setup/dhcp_yes",              153, 106, Plain},
    {":/Tessaro/image/setup/dhcp_no.png",               "image/setup/dhcp_no",               153, 106, Plain},
    {":/Tessaro/image/setup/wait_msg.png",              "image/setup/wait_msg",               90,  23, Plain},
    {":/Tessaro/font/IP ADDRESS.png",                   "font/IP ADDRESS",                   200,  20, ClearEdge},
    {":/Tessaro/font/SAMPLE RATE.png",                  "font/SAMPLE RATE",                  200,  20, ClearEdge},
    {":/Tessaro/font/title.png",                        "font/title",                        200,  20, ClearEdge},
    {":/Tessaro/font/URL.png",                          "font/URL",                          200,  20, ClearEdge},
    {":/Tessaro/font/SYSINFO.png",                      "font/SYSINFO",                      271,  25, ClearEdge},
};
// clang-format on
const QString kResources = QStringLiteral(VIREO_SOURCE_DIR "/resources/");
const QString kArt = kResources + QStringLiteral("art/");

/** The slides of the menu, as their bundle names them. */
QList<PanelImage> slides()
{
    static QList<QByteArray> names; // what the rows point into
    static const QRegularExpression entry(QStringLiteral("alias=\"image/(\\w+)\\.png\">menu/\\1\\.png<"));
    QFile bundle(kResources + QStringLiteral("menuRc.qrc"));
    if (!bundle.open(QIODevice::ReadOnly))
        qFatal("no bundle of the menu");
    QList<PanelImage> found;
    for (auto matches = entry.globalMatch(QString::fromUtf8(bundle.readAll())); matches.hasNext();) {
        const QByteArray name = matches.next().captured(1).toLatin1();
        names << ":/menuicon/image/" + name + ".png"
              << "menu/" + name;
        found << PanelImage{names.at(names.size() - 2).constData(), names.last().constData(), 100, 100, Tile};
    }
    return found;
}

/** Every image of the panel. */
const QList<PanelImage>& images()
{
    static const QList<PanelImage> all = QList<PanelImage>(std::begin(kImages), std::end(kImages)) + slides();
    return all;
}

QString latin(const char* text)
{
    return QString::fromLatin1(text);
}

QImage load(const char* path)
{
    return QImage(latin(path)).convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

/** The files of a suffix below a folder, without folder and suffix, sorted. */
QStringList namesBelow(const QString& folder, const QString& suffix)
{
    QStringList names;
    QDirIterator walk(folder, {QLatin1Char('*') + suffix}, QDir::Files, QDirIterator::Subdirectories);
    while (walk.hasNext())
        names << walk.next().mid(folder.size()).chopped(suffix.size());
    names.sort();
    return names;
}

/** The largest difference of two pixels in any channel. */
int distance(QRgb a, QRgb b)
{
    return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                     std::abs(qBlue(a) - qBlue(b)), std::abs(qAlpha(a) - qAlpha(b))});
}

/** The largest difference between the pixels of two images of one size. */
int distance(const QImage& a, const QImage& b)
{
    int most = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            most = std::max(most, distance(a.pixel(x, y), b.pixel(x, y)));
    return most;
}

/** How many pixels are farther from each other than `near`. */
int differingPixels(const QImage& a, const QImage& b, int near)
{
    int count = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            count += distance(a.pixel(x, y), b.pixel(x, y)) > near ? 1 : 0;
    return count;
}

/** Renderers round where a stroke ends a little differently: a few pixels, by a few shades. */
bool isSameDrawing(const QImage& a, const QImage& b)
{
    constexpr int shade = 4;
    constexpr int mostShades = 16;
    constexpr int fewPixels = 8;
    return a.size() == b.size() && distance(a, b) <= mostShades && differingPixels(a, b, shade) <= fewPixels;
}

/** The values of an attribute wherever a drawing has it. */
QList<int> numbersOf(const QString& attribute, const QString& drawing)
{
    QList<int> numbers;
    auto found = QRegularExpression(attribute + QStringLiteral("=\"(\\d+)\"")).globalMatch(drawing);
    while (found.hasNext())
        numbers << found.next().captured(1).toInt();
    return numbers;
}

QImage rendered(const QByteArray& drawing)
{
    QProcess renderer;
    renderer.start(QStringLiteral("rsvg-convert"), QStringList());
    renderer.write(drawing);
    renderer.closeWriteChannel();
    if (!renderer.waitForFinished() || renderer.exitCode() != 0)
        qWarning("%s %s", qPrintable(renderer.errorString()), renderer.readAllStandardError().constData());
    return QImage::fromData(renderer.readAllStandardOutput(), "PNG")
        .convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

QByteArray drawingOf(const PanelImage& image)
{
    QFile file(kArt + latin(image.drawing) + QStringLiteral(".svg"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/** The drawing as often as it names strokes, each time with those of one place moved by half a pixel. */
QList<QByteArray> withMovedStrokes(const QByteArray& drawing)
{
    QList<QByteArray> moved;
    auto found = QRegularExpression(QStringLiteral("<\\w+(?=[^>]* stroke=\"(?:#|url))"))
                     .globalMatch(QString::fromLatin1(drawing));
    while (found.hasNext())
        moved << QByteArray(drawing).insert(found.next().capturedEnd(), " transform=\"translate(.5 .5)\"");
    return moved;
}

} // namespace

class ResourcesTest : public QObject {
    Q_OBJECT

    static void imageRows(int traits = Plain)
    {
        QTest::addColumn<int>("row");
        for (int row = 0; row < images().size(); ++row)
            if ((images()[row].traits & traits) == traits)
                QTest::newRow(images()[row].path) << row;
    }

private slots:
    void everyImageLoadsInItsLayoutSize_data() { imageRows(); }
    void everyImageLoadsInItsLayoutSize()
    {
        QFETCH(int, row);
        const PanelImage& image = images()[row];
        QCOMPARE(QImage(latin(image.path)).size(), QSize(image.width, image.height));
    }

    void nothingElseIsCompiledIn()
    {
        QStringList found = namesBelow(QStringLiteral(":/Tessaro"), QString())
            + namesBelow(QStringLiteral(":/menuicon"), QString());
        QCOMPARE(found.size(), images().size());
    }

    void eachBundleRegistersUnderItsName()
    {
        const QString general = QStringLiteral(":/Tessaro/image/sys_up.png");
        const QString menu = QStringLiteral(":/menuicon/image/usb_icon.png");
        qCleanupResources_resource();
        QVERIFY(!QFile::exists(general));
        QVERIFY(QFile::exists(menu));
        qInitResources_resource();
        QVERIFY(QFile::exists(general));
        qCleanupResources_menuRc();
        QVERIFY(!QFile::exists(menu));
        qInitResources_menuRc();
        QVERIFY(QFile::exists(menu));
    }

    void everyImageHasItsDrawingAndTheReverse()
    {
        QStringList drawings;
        for (const PanelImage& image : images())
            drawings << latin(image.drawing);
        drawings.sort();
        QCOMPARE(namesBelow(kArt, QStringLiteral(".svg")), drawings);
        QCOMPARE(namesBelow(kResources, QStringLiteral(".png")), drawings);
    }

    void drawingsNeedNoFontAndNoOtherFile_data() { imageRows(); }
    void drawingsNeedNoFontAndNoOtherFile()
    {
        QFETCH(int, row);
        const QByteArray text = drawingOf(images()[row]);
        QVERIFY(!text.isEmpty());
        for (const char* foreign : {"<text", "<tspan", "<image", "<style", "font-", "http://", "https://"})
            QVERIFY2(!text.mid(text.indexOf('>')).contains(foreign), foreign);
    }

    void imageIsTheRenderingOfItsDrawing_data() { imageRows(); }
    void imageIsTheRenderingOfItsDrawing()
    {
        QFETCH(int, row);
        const PanelImage& image = images()[row];
        QVERIFY(isSameDrawing(rendered(drawingOf(image)), load(image.path)));
    }

    void movedStrokesAreAnotherDrawing_data()
    {
        QTest::addColumn<int>("row");
        for (int row = 0; row < images().size(); ++row)
            if (!withMovedStrokes(drawingOf(images()[row])).isEmpty())
                QTest::newRow(images()[row].path) << row;
    }
    void movedStrokesAreAnotherDrawing()
    {
        QFETCH(int, row);
        const PanelImage& image = images()[row];
        for (const QByteArray& moved : withMovedStrokes(drawingOf(image)))
            QVERIFY2(!isSameDrawing(rendered(moved), load(image.path)), moved.constData());
    }

    void wordsOfTheDrawingsAreLaidFromTheirText()
    {
        QStringList arguments{kArt + QStringLiteral("letters.py"), QStringLiteral("--check")};
        for (const PanelImage& image : images())
            arguments << kArt + latin(image.drawing) + QStringLiteral(".svg");
        QCOMPARE(QProcess::execute(QStringLiteral("python3"), arguments), 0);
    }

    void groundsAreOpaque_data() { imageRows(Opaque); }
    void groundsAreOpaque()
    {
        QFETCH(int, row);
        const PanelImage& image = images()[row];
        const QImage pixels = load(image.path);
        for (int y = 0; y < pixels.height(); ++y)
            for (int x = 0; x < pixels.width(); ++x)
                QCOMPARE(qAlpha(pixels.pixel(x, y)), 255);
    }

    void slidesAreOpaqueTilesWithClearCorners_data() { imageRows(Tile); }
    void slidesAreOpaqueTilesWithClearCorners()
    {
        QFETCH(int, row);
        const QImage pixels(latin(images()[row].path));
        constexpr int radius = 9;
        const QRect wide = pixels.rect().adjusted(0, radius, 0, -radius);
        const QRect high = pixels.rect().adjusted(radius, 0, -radius, 0);
        constexpr int darkest = 0x12; // the foot of the tile
        constexpr int rounding = 4;
        for (int y = 0; y < pixels.height(); ++y)
            for (int x = 0; x < pixels.width(); ++x) {
                const QRgb pixel = pixels.pixel(x, y);
                if (wide.contains(x, y) || high.contains(x, y))
                    QCOMPARE(qAlpha(pixel), 255);
                else if (qAlpha(pixel) > 64) // of less, the colour is rounded away
                    QVERIFY(qRed(pixel) >= darkest - rounding);
            }
        for (const QPoint& corner : {pixels.rect().topLeft(), pixels.rect().topRight(),
                                     pixels.rect().bottomLeft(), pixels.rect().bottomRight()})
            QCOMPARE(qAlpha(pixels.pixel(corner)), 0);
    }

    void lettersOfTheSlidesStandTwoStrokesApart_data() { imageRows(Tile); }
    void lettersOfTheSlidesStandTwoStrokesApart()
    {
        QFETCH(int, row);
        const QString text = QString::fromLatin1(drawingOf(images()[row]));
        const QString words = text.mid(text.lastIndexOf(QLatin1String("<g ")));
        const QList<int> pens = numbersOf(QStringLiteral("stroke-width"), words);
        const QList<int> gaps = numbersOf(QStringLiteral("data-gap"), words);
        QCOMPARE(int(pens.size()), 1);
        QVERIFY(!gaps.isEmpty());
        for (const int gap : gaps)
            QVERIFY(gap >= 2 * pens.first());
    }

    void iconsAndCaptionsKeepOffTheEdge_data() { imageRows(ClearEdge); }
    void iconsAndCaptionsKeepOffTheEdge()
    {
        QFETCH(int, row);
        const PanelImage& image = images()[row];
        const QImage pixels = load(image.path);
        const QRect inside = pixels.rect().adjusted(1, 1, -1, -1);
        bool drawn = false;
        for (int y = 0; y < pixels.height(); ++y) {
            for (int x = 0; x < pixels.width(); ++x) {
                if (inside.contains(x, y))
                    drawn = drawn || qAlpha(pixels.pixel(x, y)) == 255;
                else
                    QCOMPARE(qAlpha(pixels.pixel(x, y)), 0);
            }
        }
        QVERIFY(drawn);
    }

    void bandOfTheLogoIsEmptyForTheNotice()
    {
        const QImage logo = load(":/Tessaro/image/init/orvane_logo.png");
        const QRgb ground = logo.pixel(160, 110);
        for (int y = 95; y <= 125; ++y) {
            for (int x = 1; x < logo.width(); ++x) {
                QVERIFY(distance(logo.pixel(x, y), ground) <= 8);
                QVERIFY(distance(logo.pixel(x, y), logo.pixel(x - 1, y)) <= 1);
                QVERIFY(distance(logo.pixel(x, y), logo.pixel(x, y - 1)) <= 1);
            }
        }
    }

    void playModesAreToldApart()
    {
        const QStringList modes{
            QStringLiteral("one"),        QStringLiteral("all"),        QStringLiteral("folder"),
            QStringLiteral("one_repeat"), QStringLiteral("all_repeat"), QStringLiteral("folder_repeat"),
        };
        const QString path = QStringLiteral(":/Tessaro/image/special_state/%1.png");
        for (const QString& mode : modes)
            for (const QString& other : modes)
                if (mode != other)
                    QVERIFY2(differingPixels(QImage(path.arg(mode)), QImage(path.arg(other)), 64) > 60,
                             qPrintable(mode + QLatin1Char(' ') + other));
    }

    void chosenAnswerIsLit()
    {
        const QImage yes(QStringLiteral(":/Tessaro/image/setup/dhcp_yes.png"));
        const QImage no(QStringLiteral(":/Tessaro/image/setup/dhcp_no.png"));
        const QPoint left(18, 50);
        const QPoint right(134, 50);
        QVERIFY(qGray(yes.pixel(left)) > qGray(yes.pixel(right)) + 100);
        QVERIFY(qGray(no.pixel(right)) > qGray(no.pixel(left)) + 100);
    }

    void segmentKeepsItsShapeWhenItLights_data()
    {
        QTest::addColumn<QString>("segment");
        for (const char* segment : {"LV1_6", "LV7", "LV8"})
            QTest::newRow(segment) << latin(segment);
    }
    void segmentKeepsItsShapeWhenItLights()
    {
        QFETCH(QString, segment);
        const QString path = QStringLiteral(":/Tessaro/image/level_meter/%1 %2.png");
        const QImage lit(path.arg(segment, QStringLiteral("ON")));
        const QImage unlit(path.arg(segment, QStringLiteral("OFF")));
        QCOMPARE(lit.convertToFormat(QImage::Format_Alpha8), unlit.convertToFormat(QImage::Format_Alpha8));
        QVERIFY(distance(lit, unlit) > 64);
    }
};

VIREO_TEST_MAIN(ResourcesTest)
#include "tst_resources.moc"
