#pragma once

#include <QList>
#include <QMap>
#include <QModelIndex>
#include <QString>
#include <QStringList>
#include <QWidget>

#include <memory>

class QStandardItemModel;
class QXmlStreamReader;

namespace Ui {
class RadioListForm;
}

/** The chosen internet-radio station, as radio.xml holds it. */
struct RADIOINFO {
    qint32 category = 0; ///< 0: the station is in the preset list, 1: in the user's own
    qint32 channels = 0; ///< position of the station in its list, from 0
    QString url;
    QString name;
    QString enable; ///< "yes" once a station was chosen here
    QString prefix; ///< names the preset list
};

/**
 * The internet-radio station list: the preset stations and behind them the user's own, one a row. The encoder
 * moves the cursor, select records the station in radio.xml and asks for the playing screen. A file that is
 * missing or damaged gives the stations that could be read of it.
 */
class RadioListForm : public QWidget {
    Q_OBJECT

public:
    explicit RadioListForm(QWidget* parent = nullptr);
    ~RadioListForm() override;

    /** Appends the stations of a channel file to the list; returns how many entries it has, usable or not. */
    int RadioListFromXML(QString path);
    /** Title and url of the entry that the reader stands on; what is empty in the file is not in the map. */
    QMap<QString, QString> parseData(QXmlStreamReader& xml);
    /** Puts the text of the element that the reader stands on into the map, under the element's name. */
    void addElementDataToMap(QXmlStreamReader& xml, QMap<QString, QString>& map) const;
    /** Reads the chosen station; what the file does not tell stays as it was. */
    void RadioInfoFromXML(QString path);
    /** Puts the cursor on the chosen station, or on none when its row does not exist. */
    void SetCurrentIndexFromXML();
    void XMLwriteInfo();
    /** Covers the current row with a turning ticker and uncovers the previous one. */
    void SetTickerEffect(QModelIndex current, QModelIndex previous);

signals:
    void sgSelectedUrl(QString);
    void sgSelectedTitle(QString);
    void sgSetMain();

public slots:
    void XMLParse();
    void InitList();
    void up_action();
    void down_action();
    void select_action();

private:
    void takeInfoElement(const QString& name, const QString& text);
    int currentRow() const;
    void moveTo(int row);

    std::unique_ptr<Ui::RadioListForm> ui;
    std::unique_ptr<QStandardItemModel> m_model;
    QList<QMap<QString, QString>> m_stations;
    qint8 m_prefixCount = 0;
    RADIOINFO m_station;
    qint8 m_parsedCategory = 0;
    qint8 m_parsedChannels = 0;
};
