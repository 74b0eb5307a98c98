#include "tests/support/panelmain.h"
#include "widgets/ownimage.h"

#include <QDirIterator>
#include <QFile>
#include <QTemporaryFile>

namespace {

QStringList ownImages()
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
class OwnImageTest : public QObject {
    Q_OBJECT

private slots:
    /** First of all: what reads another image in this process loads them. */
    void noPluginIsAskedForThem()
    {
        const QStringList paths = ownImages();
        QVERIFY(!paths.isEmpty());
        for (const QString& path : paths) {
            QVERIFY2(hasOwnImage(path), qPrintable(path));
            QVERIFY2(!ownImage(path).isNull(), qPrintable(path));
            QVERIFY2(!ownPixmap(path).isNull(), qPrintable(path));
        }
        QVERIFY(!anyPluginIsLoaded());
    }

    void theirPixelsAreThoseOfTheirFiles()
    {
        for (const QString& path : ownImages()) {
            const QImage expected(path);
            QCOMPARE(ownImage(path), expected);
            QCOMPARE(ownPixmap(path), QPixmap(path));
        }
    }

    void thoseWhoShowOneShareIt()
    {
        const QString ground = QStringLiteral(":/Tessaro/image/init/background.png");
        QCOMPARE(ownPixmap(ground).cacheKey(), ownPixmap(ground).cacheKey());
    }

    void whatIsNotThereIsNull()
    {
        const QString path = QStringLiteral(":/no/such/image.png");
        QVERIFY(!hasOwnImage(path));
        QVERIFY(ownImage(path).isNull());
        QVERIFY(ownPixmap(path).isNull());
    }

    void whatIsOfAnotherFormatIsNull()
    {
        QTemporaryFile file;
        QVERIFY(file.open());
        QVERIFY(QImage(4, 4, QImage::Format_RGB32).save(&file, "BMP"));
        QVERIFY(file.flush());
        QVERIFY(!QImage(file.fileName()).isNull());
        QVERIFY(!hasOwnImage(file.fileName()));
        QVERIFY(ownImage(file.fileName()).isNull());
    }
};

VIREO_TEST_MAIN(OwnImageTest)
#include "tst_ownimage.moc"
