#pragma once

#include <QLabel>

/**
 * A label for texts that come from outside: files, tags, packets. It shows them letter for letter, whatever
 * markup they look like; control characters other than line breaks and tabs stay in text() and draw nothing.
 * Of more lines than it has room for it shows the first, where a single line would stand.
 */
class PlainLabel : public QLabel {
    Q_OBJECT

public:
    explicit PlainLabel(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void drawAs(const QString& text);
};
