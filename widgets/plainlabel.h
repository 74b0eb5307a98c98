#pragma once

#include <QLabel>

/**
 * A label for texts that come from outside: files, tags, packets. It shows them letter for letter, whatever
 * markup they look like, and cuts at its edge what is too wide; text() keeps all of it.
 */
class PlainLabel : public QLabel {
    Q_OBJECT

public:
    explicit PlainLabel(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};
