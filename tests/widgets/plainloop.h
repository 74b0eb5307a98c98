#pragma once

#include <QFontMetrics>
#include <QString>
#include <QStringList>

/** The cutting of a ticker's text written down plainly: every length is measured, from the longest down. */
inline QStringList plainLoop(const QString& text, int limit, const QFontMetrics& metrics)
{
    QStringList pieces;
    QString w = text;
    int n = int(w.size());
    while (n >= 1) {
        if (metrics.horizontalAdvance(w.left(n)) <= limit) {
            pieces << w.left(n);
            w.remove(0, n);
            n = int(w.size());
        }
        --n;
    }
    return pieces;
}
