#include "widgets/drawabletext.h"

#include <algorithm>

namespace {

bool isDrawnAsBox(QChar c)
{
    return c.category() == QChar::Other_Control && c != QLatin1Char('\n') && c != QLatin1Char('\t');
}

} // namespace

QString drawableText(const QString& text)
{
    QString drawn = text;
    drawn.erase(std::remove_if(drawn.begin(), drawn.end(), isDrawnAsBox), drawn.end());
    return drawn;
}
