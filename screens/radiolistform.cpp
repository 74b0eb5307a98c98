#include "screens/radiolistform.h"

#include "app/dprintf.h"
#include "config/configfile.h"
#include "config/unitpaths.h"
#include "screens/panelfont.h"
#include "ui_radiolistform.h"
#include "widgets/drawabletext.h"
#include "widgets/ticker.h"

#include <QStandardItemModel>
#include <QStyledItemDelegate>

namespace {

constexpr int rowPointSize = 10;
constexpr int rowWidth = 270;
constexpr int rowHeight = 14;

/** The scroll bar of the list. */
constexpr char listStyle[] =
    "QScrollBar:vertical {    border: 1px solid #999999;    background:white;    width:10px;        "
    "margin: 0px 0px 0px 0px;}"
    "QScrollBar::handle:vertical {    background: qlineargradient(x1:0, y1:0, x2:1, y2:0,    "
    "stop: 0  rgb(60, 60, 60), stop: 0.5 rgb(60, 60, 60),  stop:1 rgbrgb(60, 60, 60) );    "
    "min-height: 0px;}"
    "QScrollBar::add-line:vertical {    background: qlineargradient(x1:0, y1:0, x2:1, y2:0,    "
    "stop: 0  rgb(32, 47, 130), stop: 0.5 rgb(32, 47, 130),  stop:1 rgb(32, 47, 130));    "
    "height: px;    subcontrol-position: bottom;    subcontrol-origin: margin;}"
    "QScrollBar::sub-line:vertical {    background: qlineargradient(x1:0, y1:0, x2:1, y2:0,    "
    "stop: 0  rgb(32, 47, 130), stop: 0.5 rgb(32, 47, 130),  stop:1 rgb(32, 47, 130));    "
    "height: 0px;    subcontrol-position: top;    subcontrol-origin: margin;}";

struct ListColour {
    QPalette::ColorRole role;
    QRgb colour;
};
constexpr ListColour listColours[] = {
    {QPalette::Base, qRgba(0, 0, 0, 0)},
    {QPalette::Text, qRgb(174, 174, 174)},
    {QPalette::Highlight, qRgb(146, 226, 255)},
    {QPalette::HighlightedText, qRgb(14, 14, 14)},
};

/** The same colours with and without focus: the panel's cursor never has it. */
QPalette listPalette(QPalette palette)
{
    for (const ListColour& row : listColours)
        palette.setColor(row.role, QColor::fromRgba(row.colour));
    return palette;
}

/**
 * Draws of a title what a row can hold of it, and leaves a row out rather than cut it: the view is not a
 * whole number of rows high.
 */
class StationDelegate : public QStyledItemDelegate {
public:
    explicit StationDelegate(QAbstractItemView* view)
        : QStyledItemDelegate(view)
        , m_viewport(view->viewport())
    {
    }
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        if (option.rect.bottom() <= m_viewport->rect().bottom())
            QStyledItemDelegate::paint(painter, option, index);
    }
    QString displayText(const QVariant& title, const QLocale&) const override
    {
        return drawableText(title.toString(), rowWidth);
    }

private:
    const QWidget* m_viewport;
};

FlatPattern infoPattern()
{
    FlatPattern pattern;
    pattern.names =
        QStringList{QStringLiteral("category"), QStringLiteral("channels"), QStringLiteral("url"),
                    QStringLiteral("name"),     QStringLiteral("enable"),   QStringLiteral("prefix")};
    pattern.byNameAlone = true;
    return pattern;
}

struct InfoText {
    QLatin1String name;
    QString RADIOINFO::*field;
};
constexpr InfoText infoTexts[] = {
    {QLatin1String("url"), &RADIOINFO::url},
    {QLatin1String("name"), &RADIOINFO::name},
    {QLatin1String("enable"), &RADIOINFO::enable},
    {QLatin1String("prefix"), &RADIOINFO::prefix},
};

} // namespace

RadioListForm::RadioListForm(QWidget* parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::RadioListForm>())
    , m_model(std::make_unique<QStandardItemModel>())
{
    ui->setupUi(this);
    setWindowFlags(Qt::FramelessWindowHint);
    ui->listView->setFont(panelFont(rowPointSize));
    ui->listView->setGridSize(QSize(rowWidth, rowHeight));
    ui->listView->setStyleSheet(QLatin1String(listStyle));
    ui->listView->setPalette(listPalette(ui->listView->palette()));
    ui->listView->setItemDelegate(new StationDelegate(ui->listView));
}

RadioListForm::~RadioListForm() = default;

void RadioListForm::XMLParse()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    m_stations.clear();
    RadioInfoFromXML(unitPath(UnitPath::Radio));
    const QString presetPath = presetChannelsPath(m_station.prefix);
    DPRINTF(2, "%s", presetPath.toUtf8().constData());
    const int presets = RadioListFromXML(presetPath);
    RadioListFromXML(unitPath(UnitPath::UserChannels));
    m_prefixCount = qint8(presets);
}

int RadioListForm::RadioListFromXML(QString path)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ConfigReader reader(path);
    if (!reader.isOpen())
        DPRINTF(4, "RadioList_XML Error MSG [%s]", reader.errorString().toUtf8().constData());
    QXmlStreamReader& xml = reader.xml();
    int count = 0;
    while (!ConfigReader::ended(xml)) {
        xml.readNext();
        if (!xml.isStartElement() || xml.name() != QLatin1String("entry"))
            continue;
        ++count;
        const QMap<QString, QString> station = parseData(xml);
        reader.endedEarly();
        if (station.size() > 1)
            m_stations.append(station);
    }
    return count;
}

QMap<QString, QString> RadioListForm::parseData(QXmlStreamReader& xml)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    QMap<QString, QString> station;
    if (!xml.isStartElement() && xml.name() == QLatin1String("entry"))
        return station;
    xml.readNext();
    while (!ConfigReader::ended(xml) && !(xml.isEndElement() && xml.name() == QLatin1String("entry"))) {
        if (xml.isStartElement()) {
            if (xml.name() == QLatin1String("title"))
                addElementDataToMap(xml, station);
            if (xml.name() == QLatin1String("url")) // also where the reader has come to inside a title
                addElementDataToMap(xml, station);
        }
        xml.readNext();
    }
    return station;
}

void RadioListForm::addElementDataToMap(QXmlStreamReader& xml, QMap<QString, QString>& map) const
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    if (!xml.isStartElement())
        return;
    const QString key = xml.name().toString();
    xml.readNext();
    const QString value = xml.isCharacters() ? xml.text().toString().simplified() : QString();
    if (!value.isEmpty())
        map.insert(key, value);
}

void RadioListForm::RadioInfoFromXML(QString path)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ConfigReader reader(path);
    if (!reader.isOpen())
        DPRINTF(4, "RadioInfo XML [%s]", reader.errorString().toUtf8().constData());
    reader.readFlat(infoPattern(), [this](const QString& name, const QString& text) {
        takeInfoElement(name, text);
        return name == QLatin1String("prefix") && !text.isEmpty() ? Flat::Done : Flat::More;
    });
}

void RadioListForm::takeInfoElement(const QString& name, const QString& text)
{
    const auto number = qint8(text.toInt());
    if (name == QLatin1String("category"))
        m_parsedCategory = number;
    if (name == QLatin1String("channels"))
        m_parsedChannels = number;
    if (text.isEmpty())
        return;
    if (name == QLatin1String("category"))
        m_station.category = number;
    if (name == QLatin1String("channels"))
        m_station.channels = number;
    for (const InfoText& row : infoTexts)
        if (name == row.name)
            m_station.*row.field = text;
}

void RadioListForm::InitList()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    m_model->clear();
    ui->listView->setModel(m_model.get());
    ui->listView->setRootIndex(m_model->index(0, 0));
    const QList<QMap<QString, QString>> stations = m_stations;
    for (const auto& station : stations)
        m_model->appendRow(new QStandardItem(station.value(QStringLiteral("title"))));
}

void RadioListForm::SetCurrentIndexFromXML()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->listView->clearFocus();
    const int row = m_station.channels + (m_station.category == 1 ? m_prefixCount : 0);
    moveTo(row);
}

int RadioListForm::currentRow() const
{
    return ui->listView->currentIndex().row();
}

void RadioListForm::moveTo(int row)
{
    ui->listView->setCurrentIndex(m_model->index(row, 0));
}

void RadioListForm::up_action()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    const int row = currentRow();
    DPRINTF(1, "currentIndex [ %d ] ", row);
    const int next = (row != 0 ? row : m_model->rowCount()) - 1;
    moveTo(next);
    DPRINTF(1, "NextIndex [ %d ] ", next);
}

void RadioListForm::down_action()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    const int row = currentRow();
    DPRINTF(1, "currentIndex [ %d ] ", row);
    const int next = m_model->rowCount() <= row + 1 ? 0 : row + 1;
    moveTo(next);
    DPRINTF(1, "NextIndex [ %d ] ", next);
}

void RadioListForm::select_action()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    const int row = qMax(currentRow(), 0);
    if (row >= m_stations.size())
        return;
    const QMap<QString, QString> station = m_stations.at(row);
    const bool preset = m_prefixCount > row;
    m_station.category = preset ? 0 : 1;
    m_station.channels = preset ? row : row - m_prefixCount;
    m_station.name = station.value(QStringLiteral("title"));
    m_station.url = station.value(QStringLiteral("url"));
    m_station.enable = QStringLiteral("yes");
    XMLwriteInfo();
    emit sgSetMain();
}

void RadioListForm::XMLwriteInfo()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    writeConfig(unitPath(UnitPath::Radio),
                {
                    {QStringLiteral("category"), QString::number(m_station.category)},
                    {QStringLiteral("channels"), QString::number(m_station.channels)},
                    {QStringLiteral("url"), m_station.url},
                    {QStringLiteral("name"), m_station.name},
                    {QStringLiteral("enable"), m_station.enable},
                    {QStringLiteral("prefix"), m_station.prefix},
                });
}

void RadioListForm::SetTickerEffect(QModelIndex current, QModelIndex previous)
{
    if (current.isValid()) {
        auto* ticker = new Ticker;
        ticker->setFont(panelFont(rowPointSize));
        ticker->setAutoFillBackground(true);
        ticker->setText(current.data().toString(), true);
        QPalette palette = ticker->palette();
        palette.setColor(QPalette::Base, Qt::white);
        palette.setColor(QPalette::Text, Qt::black);
        ticker->setPalette(palette);
        ui->listView->setIndexWidget(current, ticker);
    }
    ui->listView->setIndexWidget(previous, nullptr);
}
