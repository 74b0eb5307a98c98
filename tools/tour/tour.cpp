#include "tools/tour/tour.h"

#include "mainwindow/mainwindow.h"
#include "tools/supervisor/script.h"
#include "tools/tour/panelclock.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

Tour::Tour(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        m_error = path + QStringLiteral(": ") + file.errorString();
        return;
    }
    const QDir folder = QFileInfo(path).dir();
    int number = 0;
    while (!file.atEnd() && m_error.isEmpty()) {
        ++number;
        const QString wrong = addLine(QString::fromUtf8(file.readLine()), folder);
        if (!wrong.isEmpty())
            m_error = QStringLiteral("%1:%2: %3").arg(path).arg(number).arg(wrong);
    }
}

QString Tour::addLine(const QString& line, const QDir& folder)
{
    const SplitLine split = splitLine(line.trimmed());
    if (!split.error.isEmpty() || split.words.isEmpty())
        return split.error;
    if (split.words.first() == QStringLiteral("picture")) {
        m_steps << Step{{}, split.words.value(1)};
        return split.words.size() == 2 ? QString() : QStringLiteral("picture takes one name");
    }
    const ParsedWords parsed = parseWords(split.words, Vocabulary::Script, folder);
    m_steps << Step{parsed.action, {}};
    return parsed.error;
}

QList<Picture> Tour::walk(MainWindow& window) const
{
    QList<Picture> pictures;
    PanelClock clock(window);
    for (const Step& step : m_steps) {
        if (!step.picture.isEmpty())
            pictures << Picture(step.picture, window.grab());
        else if (step.action.kind == Action::Kind::Wait)
            clock.advance(step.action.value);
        else
            window.stackBuff(step.action.packet);
        clock.advance(0);
        QCoreApplication::processEvents();
    }
    return pictures;
}
