#include "widgets/drawabletext.h"

#include <algorithm>

namespace {

template <typename Predicate> QString without(QString text, Predicate dropped)
{
    text.truncate(int(std::remove_if(text.begin(), text.end(), dropped) - text.begin()));
    return text;
}

bool isBox(QChar c)
{
    return c.category() == QChar::Other_Control && c != QLatin1Char('\n') && c != QLatin1Char('\t');
}

bool isBoxOrBreak(QChar c)
{
    return isBox(c) || c == QLatin1Char('\n') || c == QChar::LineSeparator || c == QChar::ParagraphSeparator;
}

} // namespace

QString drawableText(const QString& text)
{
    return without(text, isBox);
}

QString drawableLine(const QString& text)
{
    return without(text, isBoxOrBreak);
}
