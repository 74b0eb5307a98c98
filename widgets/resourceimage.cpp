#include "widgets/resourceimage.h"

#include <QImageReader>
#include <QPixmapCache>

namespace {

class PngReader : public QImageReader {
public:
    explicit PngReader(const QString& path)
        : QImageReader(path, "png")
    {
        setAutoDetectImageFormat(false);
    }
};

} // namespace

QImage resourceImage(const QString& path)
{
    return PngReader(path).read();
}

QPixmap resourcePixmap(const QString& path)
{
    QPixmap pixmap;
    if (QPixmapCache::find(path, &pixmap))
        return pixmap;
    pixmap = QPixmap::fromImage(resourceImage(path));
    if (!pixmap.isNull())
        QPixmapCache::insert(path, pixmap);
    return pixmap;
}
