#pragma once

#include <QLabel>

/**
 * Plain text over the width that there is, in at most so many lines: of a longer one the end is left out,
 * with an ellipsis, and the tool tip has all of it.
 */
class ShortText : public QLabel {
    Q_OBJECT

public:
    explicit ShortText(int mostLines, QWidget* parent = nullptr);

    void say(const QString& text);

    int heightForWidth(int width) const override;
    QSize sizeHint() const override { return minimumSizeHint(); }
    QSize minimumSizeHint() const override { return {0, fontMetrics().lineSpacing()}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QStringList linesIn(int width) const;

    int m_mostLines;
};
