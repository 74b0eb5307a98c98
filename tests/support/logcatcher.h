#pragma once

#include "app/dprintf.h"

#include <QStringList>
#include <QtGlobal>

/**
 * Collects every message of the debug stream while it lives, with the print threshold at `level`. The colour
 * escapes stay in the lines; plain() gives them without the prefix.
 */
class LogCatcher {
public:
    explicit LogCatcher(int level = 0)
        : m_oldLevel(debugLevel)
        , m_oldHandler(qInstallMessageHandler(&LogCatcher::take))
    {
        debugLevel = level;
        lines().clear();
    }
    ~LogCatcher()
    {
        qInstallMessageHandler(m_oldHandler);
        debugLevel = m_oldLevel;
    }
    LogCatcher(const LogCatcher&) = delete;
    LogCatcher& operator=(const LogCatcher&) = delete;

    /** Each message as it was printed. */
    static QStringList& lines()
    {
        static QStringList collected;
        return collected;
    }

    /** Each message with the coloured prefix of levels 2 to 4 replaced by "I ", "W " or "E ". */
    static QStringList plain()
    {
        QStringList result;
        for (const QString& line : lines())
            result << withoutPrefix(line);
        return result;
    }

    static bool has(const QString& line) { return plain().contains(line); }
    static void clear() { lines().clear(); }

private:
    static QString withoutPrefix(const QString& line)
    {
        const QString end = QStringLiteral("@vireo\x1B[0m ] ");
        const auto at = line.indexOf(end);
        if (!line.startsWith(QStringLiteral("[ \x1B[")) || at < 5)
            return line;
        return line.mid(at - 5, 1) + QLatin1Char(' ') + line.mid(at + end.size());
    }
    static void take(QtMsgType, const QMessageLogContext&, const QString& text) { lines() << text; }

    int m_oldLevel;
    QtMessageHandler m_oldHandler;
};
