#include "tools/supervisor/shorttext.h"

#include <QPainter>
#include <QTextLayout>

ShortText::ShortText(int mostLines, QWidget* parent)
    : QLabel(parent)
    , m_mostLines(mostLines)
{
    setTextFormat(Qt::PlainText);
    setWordWrap(true); // or the label says that its height does not depend on its width
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

void ShortText::say(const QString& text)
{
    setText(text);
    setToolTip(text);
}

int ShortText::heightForWidth(int width) const
{
    return int(linesIn(width).size()) * fontMetrics().lineSpacing();
}

void ShortText::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.drawText(rect(), Qt::AlignLeft | Qt::AlignVCenter, linesIn(width()).join(QLatin1Char('\n')));
}

QStringList ShortText::linesIn(int width) const
{
    QTextLayout layout(text(), font());
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    QStringList lines;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        if (lines.size() + 1 == m_mostLines) {
            lines << fontMetrics().elidedText(text().mid(line.textStart()), Qt::ElideRight, width);
            break;
        }
        lines << text().mid(line.textStart(), line.textLength());
    }
    layout.endLayout();
    return lines;
}
