#include "widgets/ownimage.h"

#include <QImageReader>
#include <QPixmapCache>

namespace {

class OwnImageReader : public QImageReader {
public:
    explicit OwnImageReader(const QString& path)
        : QImageReader(path, "png")
    {
        setAutoDetectImageFormat(false);
    }
};

} // namespace

bool hasOwnImage(const QString& path)
{
    return OwnImageReader(path).canRead();
}

QImage ownImage(const QString& path)
{
    return OwnImageReader(path).read();
}

QPixmap ownPixmap(const QString& path)
{
    QPixmap pixmap;
    if (QPixmapCache::find(path, &pixmap))
        return pixmap;
    pixmap = QPixmap::fromImage(ownImage(path));
    if (!pixmap.isNull())
        QPixmapCache::insert(path, pixmap);
    return pixmap;
}
