#pragma once

#include "widgets/textpieces.h"

#include <QString>
#include <QWidget>

/**
 * A label for texts longer than it is wide.
 *
 * The text is cut into pieces that each fit the width and the font that the label has when it is set; while
 * the label is visible it shows them one after the other, turning every 3000 ms. Where not even one character
 * fits, nothing is shown.
 */
class Ticker : public QWidget {
    Q_OBJECT

public:
    explicit Ticker(QWidget* parent = nullptr);

    /** Sets the text and cuts it. An empty text leaves the old pieces turning. */
    void setText(const QString& text, bool run);
    /** Keeps the flag; the turning of pieces does not depend on it. */
    void setRun(bool run);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    QString m_text;
    QString m_shown;
    TextPieces m_pieces;
    qint32 m_index = 0;
    qint32 m_timerId = 0;
    bool m_run = false;
    bool m_severalPieces = false;
};
