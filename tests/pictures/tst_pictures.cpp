#include "tests/pictures/face.h"
#include "tests/support/ownport.h"
#include "tests/support/unitroot.h"

#include <QDir>
#include <QImage>
#include <QProcess>

#include <map>

namespace {

/** How far texts may differ: the mean of a cell, of 255 a channel. Toolkits differ a little. */
struct TextTolerance {
    const char* pictures; ///< what their names begin with
    double cell;
};

constexpr double anyText = 256; // these texts come from the machine that runs the test
constexpr TextTolerance textTolerances[] = {
    {"setup-waiting", anyText},
    {"setup-live", anyText},
    {"station-list", 64}, // Qt 5 has these rows a pixel higher than Qt 6
    {"", 24},
};
constexpr int cellSize = 4;

double textTolerance(const QString& name)
{
    const auto found =
        std::find_if(std::begin(textTolerances), std::end(textTolerances),
                     [&](const auto& row) { return name.startsWith(QLatin1String(row.pictures)); });
    return found->cell;
}

QImage load(const QString& path)
{
    return QImage(path).convertToFormat(QImage::Format_RGB32);
}

QStringList namesIn(const QString& folder)
{
    QStringList names;
    for (const QFileInfo& file : QDir(folder).entryInfoList({QStringLiteral("*.png")}))
        names << file.completeBaseName();
    names.removeAll(QStringLiteral("contact-sheet"));
    names.sort();
    return names;
}

/** The folders of the pictures whose letters each known version of the face draws in its own way. */
QStringList facesIn(const QString& folder)
{
    return QDir(folder).entryList({QStringLiteral("unifont-*")}, QDir::Dirs);
}

/** The places of the texts of each picture, as the tour writes them. */
std::map<QString, QList<QRect>> textsIn(const QString& folder)
{
    std::map<QString, QList<QRect>> texts;
    QFile file(folder + QStringLiteral("/texts.txt"));
    if (!file.open(QIODevice::ReadOnly))
        return texts;
    for (const QByteArray& line : file.readAll().split('\n')) {
        const QList<QByteArray> words = line.split(' ');
        if (words.size() == 5)
            texts[QString::fromUtf8(words[0])]
                << QRect(words[1].toInt(), words[2].toInt(), words[3].toInt(), words[4].toInt());
    }
    return texts;
}

/** The pixels that differ, in white, with those in texts left out. */
QImage differenceBesideTexts(const QImage& expected, const QImage& actual, const QList<QRect>& texts)
{
    QImage difference(expected.size(), QImage::Format_RGB32);
    for (int y = 0; y < expected.height(); ++y)
        for (int x = 0; x < expected.width(); ++x) {
            const bool inText = std::any_of(texts.begin(), texts.end(),
                                            [&](const QRect& text) { return text.contains(x, y); });
            const bool same = inText || expected.pixel(x, y) == actual.pixel(x, y);
            difference.setPixel(x, y, same ? qRgb(0, 0, 0) : qRgb(255, 255, 255));
        }
    return difference;
}

bool isBlack(const QImage& image)
{
    QImage black(image.size(), image.format());
    black.fill(Qt::black);
    return image == black;
}

double brightness(const QImage& image, const QRect& cell)
{
    double sum = 0;
    for (int y = cell.top(); y <= cell.bottom(); ++y)
        for (int x = cell.left(); x <= cell.right(); ++x)
            sum += qRed(image.pixel(x, y)) + qGreen(image.pixel(x, y)) + qBlue(image.pixel(x, y));
    return sum / (3.0 * cell.width() * cell.height());
}

/** Paints the cells of a text that differ too much into `difference`; whether there are any. */
bool markCells(const QImage& expected, const QImage& actual, const QRect& text, double tolerance,
               QImage& difference)
{
    bool any = false;
    for (int y = text.top(); y <= text.bottom(); y += cellSize)
        for (int x = text.left(); x <= text.right(); x += cellSize) {
            const QRect cell = QRect(x, y, cellSize, cellSize).intersected(text);
            if (std::abs(brightness(expected, cell) - brightness(actual, cell)) <= tolerance)
                continue;
            any = true;
            for (int i = 0; i < cell.width() * cell.height(); ++i)
                difference.setPixel(cell.left() + i % cell.width(), cell.top() + i / cell.width(),
                                    qRgb(255, 200, 87));
        }
    return any;
}

} // namespace

/**
 * Every picture of the tour against the accepted one in `expected`: to the pixel where no text is, and as
 * much as toolkits differ where there is. A picture with letters that versions of the face draw differently
 * is there once a version, in the version's folder. `accept.sh` beside this file accepts new ones.
 */
class PicturesTest : public QObject {
    Q_OBJECT

private:
    const QString m_expected = QStringLiteral(VIREO_SOURCE_DIR "/tests/pictures/expected");
    const QString m_actual = QStringLiteral(PICTURES_FOLDER);
    const QString m_failed = QStringLiteral(PICTURES_FOLDER "/failed");
    const QString m_face = QStringLiteral("unifont-") + faceVersion();

    QString expectedPath(const QString& name) const
    {
        const QString path = QStringLiteral("%1/%2.png");
        const QString ofTheFace = path.arg(m_expected + QLatin1Char('/') + m_face, name);
        return QFile::exists(ofTheFace) ? ofTheFace : path.arg(m_expected, name);
    }

    /** The pictures of any version of the face. */
    QStringList namesWithFaces() const
    {
        QStringList names;
        for (const QString& face : facesIn(m_expected))
            names << namesIn(m_expected + QLatin1Char('/') + face);
        names.removeDuplicates();
        names.sort();
        return names;
    }

    QStringList expectedNames() const
    {
        QStringList names = namesIn(m_expected) + namesWithFaces();
        names.sort();
        return names;
    }

    /** Those that can be compared: all but the ones that a new version of the face draws in its own way. */
    QStringList comparedNames() const
    {
        QStringList names = namesIn(m_expected) + namesIn(m_expected + QLatin1Char('/') + m_face);
        names.sort();
        return names;
    }

    void save(const QString& name, const char* what, const QImage& image)
    {
        image.save(QStringLiteral("%1/%2.%3.png").arg(m_failed, name, QLatin1String(what)));
    }

private slots:
    void initTestCase()
    {
        QDir(m_actual).removeRecursively();
        QVERIFY(QDir().mkpath(m_failed));
        QTemporaryDir root;
        QCOMPARE(QProcess::execute(QStringLiteral("cp"),
                                   {QStringLiteral("-r"),
                                    QStringLiteral(VIREO_SOURCE_DIR "/tools/demo-unit/root/."), root.path()}),
                 0);
        QProcess tour;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("VIREO_ROOT"), root.path());
        tour.setProcessEnvironment(environment);
        tour.start(QStringLiteral(TOUR_PROGRAM),
                   {QStringLiteral(VIREO_SOURCE_DIR "/tools/demo-unit/tour.txt"), m_actual});
        QVERIFY(tour.waitForFinished(120000));
        QVERIFY2(tour.exitCode() == 0, tour.readAllStandardError().constData());
        QFile face(m_actual + QStringLiteral("/face.txt"));
        QVERIFY(face.open(QIODevice::WriteOnly));
        face.write(m_face.toUtf8());
    }

    void theSamePicturesAreMade() { QCOMPARE(namesIn(m_actual), expectedNames()); }

    void theFaceIsOfAKnownVersion()
    {
        const QString hint = QStringLiteral("%1 is new here: look at the letters in %2/{%3}.png; "
                                            "tests/pictures/accept.sh accepts them");
        QVERIFY2(facesIn(m_expected).contains(m_face),
                 qPrintable(hint.arg(m_face, m_actual, namesWithFaces().join(QLatin1Char(',')))));
    }

    void everyVersionOfTheFaceHasTheSamePictures()
    {
        for (const QString& face : facesIn(m_expected))
            QCOMPARE(namesIn(m_expected + QLatin1Char('/') + face), namesWithFaces());
    }

    void textsAreInTheSamePlaces()
    {
        const auto expected = textsIn(m_expected);
        const auto actual = textsIn(m_actual);
        QVERIFY(!expected.empty());
        for (const QString& name : expectedNames()) {
            const bool same = expected.count(name) == actual.count(name)
                && (expected.count(name) == 0 || expected.at(name) == actual.at(name));
            QVERIFY2(same, qPrintable(name));
        }
    }

    void pictures_data()
    {
        QTest::addColumn<QString>("name");
        for (const QString& name : comparedNames())
            QTest::newRow(qPrintable(name)) << name;
    }
    void pictures()
    {
        QFETCH(QString, name);
        const QImage expected = load(expectedPath(name));
        const QImage actual = load(m_actual + QLatin1Char('/') + name + QStringLiteral(".png"));
        QCOMPARE(actual.size(), QSize(320, 240));
        QCOMPARE(expected.size(), actual.size());

        const auto all = textsIn(m_expected);
        const QList<QRect> texts = all.count(name) ? all.at(name) : QList<QRect>();
        QImage difference = differenceBesideTexts(expected, actual, texts);
        bool differs = !isBlack(difference);
        for (const QRect& text : texts)
            differs |= markCells(expected, actual, text, textTolerance(name), difference);
        if (differs) {
            save(name, "expected", expected);
            save(name, "actual", actual);
            save(name, "difference", difference);
        }
        QVERIFY2(!differs,
                 qPrintable(
                     QStringLiteral("look at %1/%2.*.png; tests/pictures/accept.sh accepts the new pictures")
                         .arg(m_failed, name)));
    }
};

VIREO_PORT_TEST_MAIN(PicturesTest)
#include "tst_pictures.moc"
