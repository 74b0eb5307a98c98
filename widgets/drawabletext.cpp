#include "widgets/drawabletext.h"

#include <algorithm>

namespace {

bool breaksLine(QChar c)
{
    return c == QLatin1Char('\n') || c == QChar::LineSeparator;
}

bool isBox(QChar c)
{
    return c.category() == QChar::Other_Control && c != QLatin1Char('\n') && c != QLatin1Char('\t');
}

} // namespace

QString drawableText(const QString& text, int most)
{
    QString drawn = text.left(most);
    drawn.truncate(int(std::remove_if(drawn.begin(), drawn.end(), isBox) - drawn.begin()));
    return drawn;
}

Qt::Alignment placeOf(const QString& text, Qt::Alignment alignment)
{
    if (std::none_of(text.begin(), text.end(), breaksLine))
        return alignment;
    return (alignment & Qt::AlignHorizontal_Mask) | Qt::AlignTop;
}
