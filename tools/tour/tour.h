#pragma once

#include "tools/supervisor/words.h"

#include <QDir>
#include <QList>
#include <QPair>
#include <QPixmap>
#include <QString>

class MainWindow;

/** One picture of the panel, 320x240 pixels, and its name. */
using Picture = QPair<QString, QPixmap>;

/**
 * A walk through the panel's screens, written as a file of the supervisor's words, one line each, and lines
 * `picture NAME` where a picture is taken.
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
    };

    QString addLine(const QString& line, const QDir& folder);

    QList<Step> m_steps;
    QString m_error;
};
