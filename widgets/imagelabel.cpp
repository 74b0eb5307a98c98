#include "widgets/imagelabel.h"

#include "widgets/resourceimage.h"

#include <utility>

ImageLabel::ImageLabel(QWidget* parent)
    : QLabel(parent)
{
}

QPixmap ImageLabel::decodedPixmap()
{
    decode();
    return pixmap(Qt::ReturnByValue);
}

void ImageLabel::showEvent(QShowEvent* event)
{
    decode();
    QLabel::showEvent(event);
}

/** A window that is drawn without being shown, as a picture of it, sends no show event. */
void ImageLabel::paintEvent(QPaintEvent* event)
{
    decode();
    QLabel::paintEvent(event);
}

void ImageLabel::decode()
{
    if (m_image.isEmpty())
        return;
    const QString path = std::exchange(m_image, QString());
    if (!pixmap(Qt::ReturnByValue).isNull())
        return;
    const QPixmap decoded = resourcePixmap(path);
    // A ground need not be painted over what lies behind it each time that something before it changes.
    setAttribute(Qt::WA_OpaquePaintEvent, !decoded.hasAlphaChannel() && decoded.size() == size());
    setPixmap(decoded);
}
