#pragma once

#include <QFile>
#include <QList>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

/** The cells of one table row, as they are written. */
using TableRow = QStringList;
using Table = QList<TableRow>;

/** A Markdown page of the project, as far as tests read it: sections, tables, code. */
class Document {
public:
    /** `path` is relative to the project's root. */
    explicit Document(const QString& path)
    {
        QFile file(QStringLiteral(VIREO_SOURCE_DIR "/") + path);
        if (!file.open(QIODevice::ReadOnly))
            qFatal("cannot read %s", qPrintable(path));
        m_lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    }

    /** The lines below a heading up to the next heading of any level. */
    QStringList section(const QString& heading) const
    {
        QStringList found;
        bool inside = false;
        bool fenced = false;
        for (const QString& line : m_lines) {
            if (line.startsWith(QLatin1String("```")))
                fenced = !fenced;
            if (!fenced && line.startsWith(QLatin1Char('#')))
                inside = titleOf(line) == heading;
            else if (inside)
                found << line;
        }
        if (found.isEmpty())
            qFatal("no section %s", qPrintable(heading));
        return found;
    }

    /** The rows of a section's table, without the heading row; the section's first table is number 0. */
    Table table(const QString& heading, int number = 0) const
    {
        QList<Table> tables;
        bool inTable = false;
        for (const QString& line : section(heading)) {
            const bool isRow = line.startsWith(QLatin1Char('|'));
            if (isRow && !inTable)
                tables << Table();
            if (isRow)
                tables.last() << cells(line);
            inTable = isRow;
        }
        return tables.value(number).mid(2);
    }

    /** The text of a section's only fenced block. */
    QByteArray block(const QString& heading) const
    {
        const QString text = section(heading).join(QLatin1Char('\n'));
        static const QRegularExpression fence(QStringLiteral("```[a-z]+\n(.*?)```"),
                                              QRegularExpression::DotMatchesEverythingOption);
        return fence.match(text).captured(1).toUtf8();
    }

    QStringList headings() const
    {
        QStringList titles;
        for (const QString& line : m_lines)
            if (line.startsWith(QLatin1Char('#')))
                titles << titleOf(line);
        return titles;
    }

    /** The heading of this page that a cell links to; empty where there is none. */
    QString headingOf(const QString& cell) const
    {
        for (const QString& heading : headings())
            if (cell.contains(QStringLiteral("(#%1)").arg(anchorOf(heading))))
                return heading;
        return {};
    }

    /** The name by which a heading is linked to. */
    static QString anchorOf(const QString& heading)
    {
        QString anchor = heading.toLower();
        anchor.remove(QRegularExpression(QStringLiteral("[^\\w\\- ]")));
        return anchor.replace(QLatin1Char(' '), QLatin1Char('-'));
    }

    QString text() const { return m_lines.join(QLatin1Char('\n')); }

    /** What stands between backquotes. */
    static QStringList code(const QString& text)
    {
        static const QRegularExpression span(QStringLiteral("`([^`\n]+)`"));
        QStringList found;
        for (auto matches = span.globalMatch(text); matches.hasNext();)
            found << matches.next().captured(1);
        return found;
    }

    /** The one piece of code in a cell; empty where there is none. */
    static QString word(const QString& cell) { return code(cell).value(0); }

    /** A number as it is written, in decimal or with 0x. */
    static int number(const QString& cell)
    {
        bool ok = false;
        const int value = cell.toInt(&ok, 0);
        return ok ? value : -1;
    }

private:
    static QString titleOf(const QString& line)
    {
        return QString(line).remove(QRegularExpression(QStringLiteral("^#+\\s*"))).trimmed();
    }
    static TableRow cells(const QString& line)
    {
        TableRow row;
        const QStringList pieces =
            line.mid(1, line.lastIndexOf(QLatin1Char('|')) - 1).split(QLatin1Char('|'));
        for (const QString& piece : pieces)
            row << piece.trimmed();
        return row;
    }

    QStringList m_lines;
};
