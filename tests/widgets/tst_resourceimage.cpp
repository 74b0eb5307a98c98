#include "tests/support/panelmain.h"
#include "widgets/resourceimage.h"

#include <QDirIterator>
#include <QFile>
#include <QTemporaryFile>

namespace {

QStringList resourceImages()
{
    QStringList paths;
    for (const char* root : {":/Tessaro", ":/menuicon"}) {
        QDirIterator walk(QString::fromLatin1(root), QDir::Files, QDirIterator::Subdirectories);
        while (walk.hasNext())
            paths << walk.next();
    }
    return paths;
}

bool anyPluginIsLoaded()
{
    QFile loaded(QStringLiteral("/proc/self/maps"));
    return !loaded.open(QIODevice::ReadOnly) || loaded.readAll().contains("/imageformats/");
}

} // namespace

/** The images that are compiled into the program. */
class ResourceImageTest : public QObject {
    Q_OBJECT

private slots:
    /** First of all: what reads another image in this process loads them. */
    void noPluginIsAskedForThem()
    {
        const QStringList paths = resourceImages();
        QVERIFY(!paths.isEmpty());
        for (const QString& path : paths) {
            QVERIFY2(!resourceImage(path).isNull(), qPrintable(path));
            QVERIFY2(!resourcePixmap(path).isNull(), qPrintable(path));
        }
        QVERIFY(!anyPluginIsLoaded());
    }

    void theirPixelsAreThoseOfTheirFiles()
    {
        for (const QString& path : resourceImages()) {
            const QImage expected(path);
            QCOMPARE(resourceImage(path), expected);
            QCOMPARE(resourcePixmap(path), QPixmap(path));
        }
    }

    void thoseWhoShowOneShareIt()
    {
        const QString ground = QStringLiteral(":/Tessaro/image/init/background.png");
        QCOMPARE(resourcePixmap(ground).cacheKey(), resourcePixmap(ground).cacheKey());
    }

    void whatIsNotThereIsNull()
    {
        const QString path = QStringLiteral(":/no/such/image.png");
        QVERIFY(resourceImage(path).isNull());
        QVERIFY(resourcePixmap(path).isNull());
    }

    void whatIsOfAnotherFormatIsNull()
    {
        QTemporaryFile file;
        QVERIFY(file.open());
        QVERIFY(QImage(4, 4, QImage::Format_RGB32).save(&file, "BMP"));
        QVERIFY(file.flush());
        QVERIFY(!QImage(file.fileName()).isNull());
        QVERIFY(resourceImage(file.fileName()).isNull());
    }
};

VIREO_TEST_MAIN(ResourceImageTest)
#include "tst_resourceimage.moc"
