#pragma once

#include <QList>
#include <QStringList>
#include <QWidget>

class QAbstractButton;

/** The unit's own controls: the encoder, the seven keys and the source switches. */
class FrontPanel : public QWidget {
    Q_OBJECT

public:
    explicit FrontPanel(QWidget* parent = nullptr);

    bool hasSource(const QString& source) const;
    void switchSource(const QString& source, bool on);

    /** The `device` words of the sources that are switched on. */
    QStringList deviceWords() const;

signals:
    /** What the panel must hear of what was done here. */
    void said(const QStringList& words);
    void keyPressed(const QString& key, bool isLong);
    void sourcesChanged();

private:
    void sayKey(const QString& key, bool isLong);
    void sayTurn(int steps);
    void saySources();
    QWidget* createKnob();
    QWidget* createKeys();
    QWidget* createSources();
    QAbstractButton* switchOf(const QString& source) const;

    QList<QAbstractButton*> m_sources; // in the order of the table of sources
};
