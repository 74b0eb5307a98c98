#include "fuzz/harness.h"
#include "screens/panelfont.h"
#include "tests/widgets/plainloop.h"
#include "widgets/plainlabel.h"
#include "widgets/textpieces.h"
#include "widgets/ticker.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QFontMetrics>
#include <QPixmap>
#include <QTimerEvent>

#include <cstring>

/**
 * The input's first byte is the width of the label. Of its second one bit 0 says that the text behind is
 * UTF-16, which may hold halves of characters, instead of UTF-8, and bit 1 that the face kerns and ligates.
 */

namespace {

constexpr int labelHeight = 16;
constexpr int textPoints = 12;
constexpr int turns = 3;
constexpr int utf16Bit = 1;
constexpr int kernedBit = 2;

QFont face(bool kerned)
{
    return kerned ? QFont(QStringLiteral("DejaVu Sans"), textPoints) : panelFont(textPoints);
}

QString textOf(bool utf16, const QByteArray& bytes)
{
    if (!utf16)
        return QString::fromUtf8(bytes);
    QString text(bytes.size() / 2, QLatin1Char(' '));
    std::memcpy(text.data(), bytes.constData(), std::size_t(text.size()) * sizeof(QChar));
    return text;
}

template <typename Label> Label& label()
{
    static auto* const made = new Label;
    made->show();
    return *made;
}

void checkPieces(const QString& text, int limit, const QFontMetrics& metrics)
{
    const auto measure = [&metrics](const QString& part) { return metrics.horizontalAdvance(part); };
    TextPieces cutter(text, limit, {measure, metrics.height()});
    QStringList pieces;
    for (QString piece = cutter.piece(0); !piece.isNull(); piece = cutter.piece(int(pieces.size())))
        pieces << piece;
    const QStringList expected = plainLoop(text, limit, metrics);
    if (pieces != expected)
        Harness::report(QStringLiteral("pieces: %1\ninstead of: %2")
                            .arg(pieces.join(QLatin1Char('|')), expected.join(QLatin1Char('|'))));
}

void turn(Ticker& ticker)
{
    for (const auto& timer : QAbstractEventDispatcher::instance()->registeredTimers(&ticker)) {
        QTimerEvent event(timer.timerId);
        QCoreApplication::sendEvent(&ticker, &event);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 2)
        return 0;
    const int width = data[0];
    const QString text = textOf(data[1] & utf16Bit, Harness::bytesOf(data + 2, size - 2));
    const QFont font = face(data[1] & kernedBit);
    Ticker& ticker = label<Ticker>();
    ticker.setFont(font);
    checkPieces(text, width - 1, ticker.fontMetrics());
    ticker.resize(width, labelHeight);
    ticker.setText(text, true);
    for (int i = 0; i < turns; ++i) {
        ticker.grab();
        turn(ticker);
    }
    PlainLabel& plain = label<PlainLabel>();
    plain.setFont(font);
    plain.resize(width, labelHeight);
    plain.setText(text);
    plain.grab();
    return 0;
}
