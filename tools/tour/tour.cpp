#include "tools/tour/tour.h"

#include "app/dprintf.h"
#include "mainwindow/mainwindow.h"
#include "tools/supervisor/script.h"
#include "tools/tour/panelclock.h"
#include "widgets/ticker.h"

#include <QAbstractItemView>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QLabel>

namespace {

bool showsText(const QWidget* widget)
{
    const auto* label = qobject_cast<const QLabel*>(widget);
    return (label && !label->text().isEmpty()) || qobject_cast<const Ticker*>(widget)
        || qobject_cast<const QAbstractItemView*>(widget);
}

/** The widgets that draw text, as far as they lie on the window. */
QList<QRect> textsOf(const QWidget& window)
{
    QList<QRect> texts;
    for (const QWidget* widget : window.findChildren<QWidget*>()) {
        if (widget->isVisible() && showsText(widget))
            texts << QRect(widget->mapTo(&window, QPoint(0, 0)), widget->size()).intersected(window.rect());
    }
    return texts;
}

void install(const QString& source, const QString& target)
{
    QFile::remove(target);
    if (!QFile::copy(source, target))
        DPRINTF(4, "cannot copy %s", qPrintable(source));
}

} // namespace

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
    Step step;
    const QString wrong = understand(split.words, folder, step);
    m_steps << step;
    return wrong;
}

QString Tour::understand(const QStringList& words, const QDir& folder, Step& step)
{
    if (words.first() == QStringLiteral("picture")) {
        step.picture = words.value(1);
        return words.size() == 2 ? QString() : QStringLiteral("picture takes one name");
    }
    if (words.first() == QStringLiteral("install")) {
        step.source = folder.filePath(words.value(1));
        step.target = qEnvironmentVariable("VIREO_ROOT") + words.value(2);
        const bool isDemo = qEnvironmentVariableIsSet("VIREO_ROOT");
        return words.size() == 3 && isDemo
            ? QString()
            : QStringLiteral("install takes a file and a path, and VIREO_ROOT must be set");
    }
    const ParsedWords parsed = parseWords(words, Vocabulary::Script, folder);
    step.action = parsed.action;
    return parsed.error;
}

QList<Picture> Tour::walk(MainWindow& window) const
{
    QList<Picture> pictures;
    PanelClock clock(window);
    for (const Step& step : m_steps) {
        if (!step.picture.isEmpty())
            pictures << Picture{step.picture, window.grab(), textsOf(window)};
        else if (!step.source.isEmpty())
            install(step.source, step.target);
        else if (step.action.kind == Action::Kind::Wait)
            clock.advance(step.action.value);
        else
            window.stackBuff(step.action.packet);
        clock.advance(0);
        QCoreApplication::processEvents();
    }
    return pictures;
}
