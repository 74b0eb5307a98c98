#include "screens/levelmeter.h"

void LevelMeter::clear() const
{
    for (const Segment& segment : m_segments)
        segment.unlit->show();
    for (const Segment& segment : m_segments)
        segment.lit->hide();
}

void LevelMeter::light(int level) const
{
    if (level > segments)
        return;
    for (int i = 0; i < segments; ++i)
        m_segments[std::size_t(i)].lit->setVisible(i < level);
}
