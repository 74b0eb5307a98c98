#pragma once

#include "tools/supervisor/words.h"

#include <QDir>
#include <QList>
#include <QPixmap>
#include <QRect>
#include <QString>

class MainWindow;

/** One picture of the panel, 320x240 pixels. */
struct Picture {
    QString name;
    QPixmap pixmap;
    QList<QRect> texts; ///< where text is drawn in it, the part of a picture that depends on fonts
};

/**
 * A walk through the panel's screens, written as a file of the supervisor's words, one line each. Two words
 * more are the tour's own: `picture NAME` takes a picture, and `install FILE PATH` copies a file from beside
 * the tour to a path of the unit, which is a demo unit: VIREO_ROOT must be set.
 */
class Tour {
public:
    /** Reads the whole file before anything of it is done; error() is one line, empty when it was understood.
     */
    explicit Tour(const QString& path);
    QString error() const { return m_error; }

    /** Does every line with the window and returns the pictures in their order. */
    QList<Picture> walk(MainWindow& window) const;

private:
    struct Step {
        Action action;
        QString picture; ///< name of the picture to take instead
        QString source; ///< file to install instead
        QString target;
    };

    QString addLine(const QString& line, const QDir& folder);
    static QString understand(const QStringList& words, const QDir& folder, Step& step);

    QList<Step> m_steps;
    QString m_error;
};
