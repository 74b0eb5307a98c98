#include "bench/bench.h"
#include "bench/medians.h"
#include "bench/panel.h"
#include "screens/radiolistform.h"
#include "widgets/textpieces.h"

#include <QDir>
#include <QFile>
#include <QFontMetrics>

#include <memory>

/** What grows with what others wrote: the station list and the texts of tickers. */

namespace {

void writeStations(const QString& unit, int count)
{
    QFile file(QDir(unit).filePath(QStringLiteral("opt/orvane/conf/user_channels.xml")));
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write the stations");
    file.write("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<channels>\n");
    for (int i = 0; i < count; ++i) {
        const QByteArray number = QByteArray::number(i);
        file.write("    <entry>\n        <title>Station number " + number
                   + "</title>\n        <url>http://radio.example/" + number + "</url>\n    </entry>\n");
    }
    file.write("</channels>\n");
}

void enterList(RadioListForm& form, const QString& unit)
{
    qputenv("VIREO_ROOT", unit.toUtf8());
    form.XMLParse();
    form.InitList();
    form.SetCurrentIndexFromXML();
    Panel::settle();
}

/** Of each length but the first, the cost of a piece beside that at the first length. */
void addGrowth(Bench& bench, const std::string& piece, const std::vector<int>& lengths,
               const std::vector<Task>& tasks)
{
    const std::vector<double> times = medianMicroseconds(bench.effort, tasks);
    for (std::size_t i = 1; i < lengths.size(); ++i)
        bench.table.add(piece + " of " + tasks[i].name + " / of " + tasks[0].name, "us",
                        times[i] / lengths[i], times[0] / lengths[0], atMostTimes(1.2));
}

void addStationRows(Bench& bench)
{
    std::vector<int> lengths;
    std::vector<Task> tasks;
    std::vector<std::unique_ptr<RadioListForm>> forms;
    for (int count = 100; count <= bench.effort.mostStations; count *= 10) {
        const QString unit = bench.unit + QString::number(count);
        copyFolder(bench.unit, unit);
        writeStations(unit, count);
        forms.push_back(std::make_unique<RadioListForm>());
        RadioListForm& form = *forms.back();
        form.show();
        lengths.push_back(count);
        tasks.push_back({std::to_string(count), [&form, unit] { enterList(form, unit); }});
    }
    addGrowth(bench, "a station in a list", lengths, tasks);
}

void cutWhole(TextPieces pieces)
{
    for (int index = 0; !pieces.piece(index).isNull();)
        ++index;
}

void addTickerRows(Bench& bench)
{
    constexpr int width = 168; // the player's title
    const QString words = QStringLiteral("A title that somebody made very long indeed. ");
    const QFontMetrics metrics{QFont()};
    const TextRuler ruler = {[metrics](const QString& text) { return metrics.horizontalAdvance(text); },
                             metrics.height()};
    std::vector<int> lengths;
    std::vector<Task> tasks;
    for (int length = 1000; length <= bench.effort.mostTextBytes; length *= 10) {
        const QString text = words.repeated(length / int(words.size()) + 1).left(length);
        lengths.push_back(length);
        tasks.push_back(
            {std::to_string(length), [ruler, text] { cutWhole(TextPieces(text, width - 1, ruler)); }});
    }
    addGrowth(bench, "a character in a ticker text", lengths, tasks);
}

} // namespace

void addListRows(Bench& bench)
{
    addStationRows(bench);
    addTickerRows(bench);
    qputenv("VIREO_ROOT", bench.unit.toUtf8());
}
