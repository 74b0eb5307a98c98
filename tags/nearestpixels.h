#pragma once

#include <QImage>

#include <vector>

/**
 * The pixels of a picture that the toolkit takes when it scales the picture's pixmap without smoothing. They
 * are taken from one row after the other, so that the picture need never be in memory as a whole.
 */
class NearestPixels {
public:
    /** Of a row that holds some columns of a picture: the first of them, and how far apart they are. */
    struct Columns {
        int first = 0;
        int step = 1;
    };

    /** None is taken yet, so all of them are transparent, or black where `format` knows no transparency. */
    NearestPixels(QSize picture, QSize scaled, QImage::Format format);

    /** Takes what it needs of the picture's row `y`, which is row `at` of an image in the same format. */
    void take(int y, const QImage& from, int at = 0);
    void take(int y, const QImage& from, int at, Columns columns);

    /** Which columns and rows of the picture are needed, in ascending order, some of them several times. */
    const std::vector<int>& columns() const { return m_columns; }
    const std::vector<int>& rows() const { return m_rows; }

    const QImage& image() const { return m_image; }

private:
    std::vector<int> m_columns;
    std::vector<int> m_rows;
    QImage m_image;
};

/** All of them taken, in the image's own format; null where the image is. */
QImage nearestPixels(const QImage& image, QSize size);
