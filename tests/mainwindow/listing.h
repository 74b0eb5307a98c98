#pragma once

#include <QFile>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

/**
 * The accepted listing of the mode machine (tests/mainwindow/modes.txt): states, transitions, and of each
 * mode what shows, is reported, written, logged and connected. Tests take from it where an event leads.
 */
class Listing {
public:
    struct Mode {
        QString screen; ///< empty where only the logo shows
        int code = -1;
        int menuEntry = -1;
    };

    static QString path() { return QStringLiteral(VIREO_SOURCE_DIR "/tests/mainwindow/modes.txt"); }

    static const Listing& accepted()
    {
        static const Listing listing;
        return listing;
    }

    const QMap<QString, Mode>& modes() const { return m_modes; }

    /** The innermost state after an event in one; the same where nothing is listed. */
    QString after(const QString& state, const QString& event) const
    {
        for (QString from = state; m_parents.contains(from); from = m_parents[from]) {
            const QString target = m_transitions.value(from + QLatin1Char(' ') + event);
            if (!target.isEmpty())
                return m_initial.value(target, target);
        }
        return state;
    }

private:
    Listing()
    {
        QFile file(path());
        if (!file.open(QIODevice::ReadOnly))
            qFatal("cannot read %s", qPrintable(path()));
        for (const QByteArray& line : file.readAll().split('\n'))
            take(QString::fromUtf8(line).split(QLatin1Char(' '), Qt::SkipEmptyParts));
    }

    void take(const QStringList& words)
    {
        const QString what = words.value(0);
        if (what == QLatin1String("state"))
            m_parents[words.value(1)] = words.value(3);
        if (what == QLatin1String("state") && words.value(4) == QLatin1String("begins"))
            m_initial[words.value(1)] = words.last();
        if (what == QLatin1String("transition"))
            m_transitions[words.value(1) + QLatin1Char(' ') + words.value(3)] = words.last();
        if (what == QLatin1String("mode"))
            m_mode = words.value(1);
        if (what == QLatin1String("shows"))
            m_modes[m_mode].screen = words.value(1);
        if (what == QLatin1String("reports"))
            m_modes[m_mode].code = words.value(1).toInt();
        if (what == QLatin1String("stands"))
            m_modes[m_mode].menuEntry = words.last().toInt();
    }

    QString m_mode;
    QMap<QString, QString> m_parents;
    QMap<QString, QString> m_initial;
    QMap<QString, QString> m_transitions;
    QMap<QString, Mode> m_modes;
};
