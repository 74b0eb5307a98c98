#pragma once

#include <QLabel>

/**
 * A label for texts that come from outside: files, tags, packets. It shows them letter for letter, whatever
 * markup they look like; control characters other than line breaks and tabs stay in text() and draw nothing.
 * Of more lines than it has room for it shows the first, where a single line would stand; a single line that
 * is too wide ends in an ellipsis.
 */
class PlainLabel : public QLabel {
    Q_OBJECT

public:
    explicit PlainLabel(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void drawFitted(const QString& line);
    void drawAs(const QString& text, const QFont& font);
};
