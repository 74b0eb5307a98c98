#pragma once

#include <QLabel>
#include <QPixmap>
#include <QString>

/**
 * A label with an image of the program's own, which is decoded when the label is first seen: of a screen that
 * is never entered no image costs time or memory. A pixmap that is set before then takes the image's place.
 */
class ImageLabel : public QLabel {
    Q_OBJECT
    Q_PROPERTY(QString image READ image WRITE setImage)
    Q_PROPERTY(QPixmap pixmap READ decodedPixmap WRITE setPixmap)

public:
    explicit ImageLabel(QWidget* parent = nullptr);

    /** The path of an image that is still to be decoded, or nothing. */
    QString image() const { return m_image; }
    void setImage(const QString& path) { m_image = path; }
    /** What the label shows; decodes its image. */
    QPixmap decodedPixmap();

protected:
    void showEvent(QShowEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void decode();

    QString m_image;
};
