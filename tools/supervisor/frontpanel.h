#pragma once

#include <QList>
#include <QStringList>
#include <QWidget>

class EncoderKnob;
class QAbstractButton;

/**
 * The unit's front: the encoder between the source lights and the seven keys, on a plate. Where it is narrow
 * the keys stand below.
 */
class FrontPanel : public QWidget {
    Q_OBJECT

public:
    explicit FrontPanel(QWidget* parent = nullptr);

    /** Shows which sources are active; says nothing. */
    void showSources(const QStringList& active);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

signals:
    /** The encoder was turned; to the right, or by negative steps to the left. */
    void turned(int steps);
    void keyPressed(const QString& key, bool isLong);
    void sourceSwitched(const QString& source, bool on);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void createKnob();
    void createKeys();
    void createSources();
    bool isWide(int width) const;
    int headHeight() const;
    int knobSide() const;
    QRect inside() const;
    void placeWide(const QRect& room);
    void placeNarrow(const QRect& room);
    void placeKnobAndSources(const QRect& room);

    EncoderKnob* m_knob = nullptr;
    QWidget* m_keys = nullptr;
    QWidget* m_sources = nullptr;
    QList<QAbstractButton*> m_lights;
};
