#include "tags/mediafile.h"
#include "tests/support/panelmain.h"
#include "tests/tags/mediafolder.h"

#include <atomic>
#include <fcntl.h>
#include <sys/stat.h>
#include <thread>

class MediaFileTest : public QObject {
    Q_OBJECT

private slots:
    /** What stands under the name changes between any two looks at it: only an opened file is sure to stay.
     */
    void fileExchangedForAPipeWhileItIsOpenedHoldsNobodyUp()
    {
        const MediaFolder folder;
        const QByteArray name = QFile::encodeName(folder.write(QStringLiteral("song.mp3"), "ID3"));
        const QByteArray pipe = QFile::encodeName(folder.path(QStringLiteral("pipe")));
        QCOMPARE(mkfifo(pipe.constData(), 0600), 0);

        const auto exchange = [&] {
            return renameat2(AT_FDCWD, name.constData(), AT_FDCWD, pipe.constData(), RENAME_EXCHANGE) == 0;
        };
        if (!exchange())
            QSKIP("this file system does not exchange two names at once");
        std::atomic_bool isDone = false;
        std::thread exchanger([&] {
            while (!isDone)
                exchange();
        });
        int opened = 0;
        int refused = 0;
        while (opened < 500 || refused < 500) {
            MediaFile file;
            if (file.openForReading(QFile::decodeName(name)))
                opened += file.readAtMost(10) == "ID3" ? 1 : 0;
            else
                refused += file.errorString() == QLatin1String("Not a regular file") ? 1 : 0;
        }
        isDone = true;
        exchanger.join();
        QVERIFY(opened >= 500 && refused >= 500);
    }
};

VIREO_TEST_MAIN(MediaFileTest)
#include "tst_mediafile.moc"
