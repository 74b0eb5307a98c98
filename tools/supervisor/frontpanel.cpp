#include "tools/supervisor/frontpanel.h"

#include "tools/supervisor/encoderknob.h"
#include "tools/supervisor/keybutton.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>

namespace {

struct KeyPlace {
    const char* word;
    const char* caption;
    int row;
    int column;
};

constexpr KeyPlace keyPlaces[] = {
    {"select", QT_TRANSLATE_NOOP("FrontPanel", "&Select"), 0, 0},
    {"esc", QT_TRANSLATE_NOOP("FrontPanel", "&Esc"), 0, 1},
    {"mode", QT_TRANSLATE_NOOP("FrontPanel", "&Mode"), 0, 2},
    {"stop", QT_TRANSLATE_NOOP("FrontPanel", "S&top"), 0, 3},
    {"prev", QT_TRANSLATE_NOOP("FrontPanel", "Pre&v"), 1, 0},
    {"play-pause", QT_TRANSLATE_NOOP("FrontPanel", "&Play/Pause"), 1, 1},
    {"next", QT_TRANSLATE_NOOP("FrontPanel", "&Next"), 1, 3},
};

struct Source {
    const char* word;
    const char* caption;
};

constexpr Source sources[] = {
    {"usb", QT_TRANSLATE_NOOP("FrontPanel", "&USB")},
    {"stream", QT_TRANSLATE_NOOP("FrontPanel", "Rear US&B stream")},
    {"aux", QT_TRANSLATE_NOOP("FrontPanel", "AU&X")},
    {"ir", QT_TRANSLATE_NOOP("FrontPanel", "Internet rad&io")},
    {"aoe", QT_TRANSLATE_NOOP("FrontPanel", "&Audio over Ethernet")},
};

} // namespace

FrontPanel::FrontPanel(QWidget* parent)
    : QWidget(parent)
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(createKnob(), 1);
    layout->addWidget(createKeys());
    layout->addWidget(createSources());
}

QWidget* FrontPanel::createKnob()
{
    auto* knob = new EncoderKnob;
    setFocusProxy(knob);
    connect(knob, &EncoderKnob::turned, this, &FrontPanel::sayTurn);
    connect(knob, &EncoderKnob::pressedShort, this, [this] { sayKey(QStringLiteral("select"), false); });
    connect(knob, &EncoderKnob::pressedLong, this, [this] { sayKey(QStringLiteral("select"), true); });
    return knob;
}

QWidget* FrontPanel::createKeys()
{
    auto* box = new QGroupBox(tr("Keys"));
    auto* layout = new QGridLayout(box);
    for (const KeyPlace& place : keyPlaces) {
        const QString word = QString::fromLatin1(place.word);
        auto* key = new KeyButton(word, tr(place.caption));
        connect(key, &KeyButton::keyPressed, this, &FrontPanel::sayKey);
        layout->addWidget(key, place.row, place.column, 1, word == QLatin1String("play-pause") ? 2 : 1);
    }
    return box;
}

QWidget* FrontPanel::createSources()
{
    auto* box = new QGroupBox(tr("Active sources"));
    auto* layout = new QGridLayout(box);
    constexpr int columns = 2;
    for (const Source& source : sources) {
        auto* button = new QCheckBox(tr(source.caption));
        button->setObjectName(QString::fromLatin1(source.word));
        connect(button, &QAbstractButton::toggled, this, &FrontPanel::saySources);
        layout->addWidget(button, int(m_sources.size()) / columns, int(m_sources.size()) % columns);
        m_sources << button;
    }
    return box;
}

void FrontPanel::sayTurn(int steps)
{
    emit said({QStringLiteral("enc"), QString::number(steps)});
}

void FrontPanel::sayKey(const QString& key, bool isLong)
{
    emit said({QStringLiteral("key"), isLong ? QStringLiteral("long-") + key : key});
    emit keyPressed(key, isLong);
}

void FrontPanel::saySources()
{
    emit said(deviceWords());
    emit sourcesChanged();
}

QStringList FrontPanel::deviceWords() const
{
    QStringList words{QStringLiteral("device")};
    for (const QAbstractButton* source : m_sources)
        if (source->isChecked())
            words << source->objectName();
    return words.size() > 1 ? words : words << QStringLiteral("none");
}

bool FrontPanel::hasSource(const QString& source) const
{
    return switchOf(source)->isChecked();
}

void FrontPanel::switchSource(const QString& source, bool on)
{
    switchOf(source)->setChecked(on);
}

QAbstractButton* FrontPanel::switchOf(const QString& source) const
{
    for (QAbstractButton* button : m_sources)
        if (button->objectName() == source)
            return button;
    qFatal("no source is called %s", qPrintable(source));
}
