#include "tools/supervisor/frontpanel.h"

#include "tools/supervisor/encoderknob.h"
#include "tools/supervisor/keybutton.h"
#include "tools/supervisor/lampswitch.h"
#include "tools/supervisor/look.h"

#include <QGridLayout>
#include <QPainter>

namespace {

constexpr int margin = 14;
constexpr int gap = 12;
constexpr double corner = 8;

struct KeyPlace {
    const char* word;
    const char* caption;
    int row;
    int column;
    int columns;
};

constexpr KeyPlace keyPlaces[] = {
    {"select", QT_TRANSLATE_NOOP("FrontPanel", "&Select"), 0, 0, 1},
    {"esc", QT_TRANSLATE_NOOP("FrontPanel", "&Esc"), 0, 1, 1},
    {"mode", QT_TRANSLATE_NOOP("FrontPanel", "&Mode"), 0, 2, 1},
    {"stop", QT_TRANSLATE_NOOP("FrontPanel", "S&top"), 0, 3, 1},
    {"prev", QT_TRANSLATE_NOOP("FrontPanel", "Pre&v"), 1, 0, 1},
    {"play-pause", QT_TRANSLATE_NOOP("FrontPanel", "&Play/Pause"), 1, 1, 2},
    {"next", QT_TRANSLATE_NOOP("FrontPanel", "&Next"), 1, 3, 1},
};

struct Source {
    const char* word;
    const char* caption;
    const char* name; ///< where the caption is too short to be read out
};

constexpr Source sources[] = {
    {"usb", QT_TRANSLATE_NOOP("FrontPanel", "&USB"), QT_TRANSLATE_NOOP("FrontPanel", "Front USB")},
    {"stream", QT_TRANSLATE_NOOP("FrontPanel", "US&B rear"),
     QT_TRANSLATE_NOOP("FrontPanel", "Rear USB stream")},
    {"aux", QT_TRANSLATE_NOOP("FrontPanel", "AU&X"), QT_TRANSLATE_NOOP("FrontPanel", "AUX")},
    {"ir", QT_TRANSLATE_NOOP("FrontPanel", "Rad&io"), QT_TRANSLATE_NOOP("FrontPanel", "Internet radio")},
    {"aoe", QT_TRANSLATE_NOOP("FrontPanel", "&Audio/Eth"),
     QT_TRANSLATE_NOOP("FrontPanel", "Audio over Ethernet")},
};

} // namespace

FrontPanel::FrontPanel(QWidget* parent)
    : QWidget(parent)
{
    createKnob();
    createSources();
    createKeys();
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void FrontPanel::createKnob()
{
    m_knob = new EncoderKnob(this);
    setFocusProxy(m_knob);
    connect(m_knob, &EncoderKnob::turned, this, &FrontPanel::turned);
    const QString key = QStringLiteral("select");
    connect(m_knob, &EncoderKnob::pressedShort, this, [this, key] { emit keyPressed(key, false); });
    connect(m_knob, &EncoderKnob::pressedLong, this, [this, key] { emit keyPressed(key, true); });
}

void FrontPanel::createSources()
{
    m_sources = new QWidget(this);
    auto* layout = new QVBoxLayout(m_sources);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addStretch();
    for (const Source& source : sources) {
        auto* light = new LampSwitch(tr(source.caption));
        const QString word = QString::fromLatin1(source.word);
        light->setObjectName(word);
        light->setAccessibleName(tr(source.name));
        light->setToolTip(tr("%1: whether this source is active").arg(tr(source.name)));
        connect(light, &QAbstractButton::clicked, this,
                [this, word](bool on) { emit sourceSwitched(word, on); });
        layout->addWidget(light);
        m_lights << light;
    }
    layout->addStretch();
}

void FrontPanel::createKeys()
{
    m_keys = new QWidget(this);
    auto* layout = new QGridLayout(m_keys);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    for (const KeyPlace& place : keyPlaces) {
        auto* key = new KeyButton(QString::fromLatin1(place.word), tr(place.caption));
        connect(key, &KeyButton::keyPressed, this, &FrontPanel::keyPressed);
        layout->addWidget(key, place.row, place.column, 1, place.columns);
    }
    for (int column = 0; column < layout->columnCount(); ++column)
        layout->setColumnStretch(column, 1);
}

void FrontPanel::showSources(const QStringList& active)
{
    for (QAbstractButton* light : m_lights)
        light->setChecked(active.contains(light->objectName()));
}

int FrontPanel::headHeight() const
{
    return fontMetrics().height() + gap;
}

int FrontPanel::knobSide() const
{
    return qMax(m_knob->minimumSizeHint().height(), m_sources->sizeHint().height());
}

/** Whether knob, lights and keys stand side by side. */
bool FrontPanel::isWide(int width) const
{
    const int keys = m_keys->sizeHint().width() * 5 / 4;
    return width >= m_sources->sizeHint().width() + knobSide() + keys + 2 * margin + 2 * gap;
}

QSize FrontPanel::minimumSizeHint() const
{
    const int above = m_sources->sizeHint().width() + gap + m_knob->minimumSizeHint().width();
    const int width = qMax(above, m_keys->sizeHint().width()) + 2 * margin;
    return {width, headHeight() + m_knob->minimumSizeHint().height() + 2 * margin};
}

QSize FrontPanel::sizeHint() const
{
    const int width =
        m_sources->sizeHint().width() + m_knob->sizeHint().width() + 2 * m_keys->sizeHint().width();
    return {width, heightForWidth(width)};
}

/** The knob grows with a wide plate. */
int FrontPanel::heightForWidth(int width) const
{
    const int frame = headHeight() + 2 * margin;
    if (isWide(width))
        return frame + qBound(knobSide(), width * 3 / 10, 2 * knobSide());
    return frame + knobSide() + gap + m_keys->sizeHint().height();
}

QRect FrontPanel::inside() const
{
    return rect().adjusted(margin, margin + headHeight(), -margin, -margin);
}

void FrontPanel::resizeEvent(QResizeEvent*)
{
    if (isWide(width()))
        placeWide(inside());
    else
        placeNarrow(inside());
}

void FrontPanel::placeWide(const QRect& room)
{
    const int side = qMin(room.height(), room.width() / 2);
    const int lights = m_sources->sizeHint().width();
    const int rest = room.width() - side - lights - 2 * gap;
    const int height = qMin(room.height(), 2 * m_keys->sizeHint().height());
    QRect keys(0, 0, qMin(rest, 2 * m_keys->sizeHint().width()), height);
    keys.moveCenter(room.center());
    keys.moveRight(room.right());
    m_keys->setGeometry(keys);
    placeKnobAndSources(QRect(room.left(), room.top(), keys.left() - gap - room.left(), room.height()));
}

void FrontPanel::placeNarrow(const QRect& room)
{
    const int height = m_keys->sizeHint().height();
    m_keys->setGeometry(room.left(), room.bottom() + 1 - height, room.width(), height);
    placeKnobAndSources(room.adjusted(0, 0, 0, -height - gap));
}

void FrontPanel::placeKnobAndSources(const QRect& room)
{
    const int lights = m_sources->sizeHint().width();
    m_sources->setGeometry(room.left(), room.top(), lights, room.height());
    m_knob->setGeometry(room.adjusted(lights + gap, 0, 0, 0));
}

void FrontPanel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF plate = QRectF(rect()).adjusted(1, 1, -1, -1);
    QLinearGradient shade(plate.topLeft(), plate.bottomLeft());
    shade.setColorAt(0, QColor(0x23, 0x28, 0x2B));
    shade.setColorAt(0.5, QColor(Look::plate));
    shade.setColorAt(1, QColor(Look::ground));
    painter.setBrush(shade);
    painter.setPen(QColor(Look::edge));
    painter.drawRoundedRect(plate, corner, corner);
    QFont engraved = font();
    engraved.setLetterSpacing(QFont::PercentageSpacing, 160);
    painter.setFont(engraved);
    painter.setPen(QColor(Look::quiet));
    const QRectF head = plate.adjusted(margin, margin / 2.0, -margin, 0);
    painter.drawText(head, Qt::AlignLeft | Qt::AlignTop, QStringLiteral("VIREO"));
    const double line = margin / 2.0 + QFontMetricsF(engraved).height() + 4;
    painter.setPen(QPen(QColor(Look::lit).darker(220), 1));
    painter.drawLine(QPointF(margin, line), QPointF(width() - margin, line));
}
