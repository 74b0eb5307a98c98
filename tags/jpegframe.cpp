#include "tags/jpegframe.h"

#include "tags/bytesat.h"
#include "tags/touint.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>
#include <vector>

namespace {

constexpr quint8 endOfImage = 0xD9;
constexpr quint8 startOfScan = 0xDA;

/** Markers that a segment follows, which begins with its length; the others stand alone or are damage. */
struct Range {
    quint8 first;
    quint8 last;
};
constexpr Range segments[] = {{0xC0, 0xCF}, {startOfScan, 0xDD}, {0xE0, 0xEF}, {0xFE, 0xFE}};
constexpr int lengthBytes = 2;

struct FrameKind {
    quint8 marker;
    bool isProgressive;
    bool isArithmetic;
};
constexpr FrameKind frameKinds[] = {
    {0xC0, false, false}, {0xC1, false, false}, {0xC2, true, false}, {0xC9, false, true}, {0xCA, true, true},
};

// A frame's segment: bits a sample, height, width, number of components; of each component its name, its
// sampling factors and its table.
constexpr int heightAt = 1;
constexpr int widthAt = 3;
constexpr int countAt = 5;
constexpr int componentsAt = 6;
constexpr int componentBytes = 3;
constexpr int blockSide = 8;

struct Sampling {
    int across;
    int down;
};

bool hasSegment(quint8 marker)
{
    return std::any_of(std::begin(segments), std::end(segments),
                       [marker](Range range) { return marker >= range.first && marker <= range.last; });
}

const FrameKind* frameKind(quint8 marker)
{
    const auto* kind = std::find_if(std::begin(frameKinds), std::end(frameKinds),
                                    [marker](const FrameKind& row) { return row.marker == marker; });
    return kind == std::end(frameKinds) ? nullptr : kind;
}

int numberAt(const QByteArray& bytes, qint64 at, int count)
{
    return int(toUInt(bytesAt(bytes, at, count), true));
}

/** Where the code of the next marker stands; the end of the file where there is none. */
qint64 nextCode(std::string_view file, qint64 from)
{
    for (auto at = file.find('\xFF', std::size_t(from)); at < file.size(); at = file.find('\xFF', at + 1)) {
        if (at + 1 < file.size() && file[at + 1] != '\0' && file[at + 1] != '\xFF')
            return qint64(at) + 1;
    }
    return qint64(file.size());
}

Sampling samplingOf(const QByteArray& segment, int component)
{
    const int factors = numberAt(segment, componentsAt + component * componentBytes + 1, 1);
    return {factors >> 4, factors & 0xF};
}

struct Component {
    int name;
    qint64 blocks;
};

/** The decoder stores whole units, of as many blocks of each component as its sampling factors say. */
std::vector<Component> componentsOf(const QByteArray& segment, QSize pixels)
{
    std::vector<Component> components;
    Sampling most = {1, 1};
    for (int i = 0; i < numberAt(segment, countAt, 1); ++i) {
        const Sampling sampling = samplingOf(segment, i);
        most = {std::max(most.across, sampling.across), std::max(most.down, sampling.down)};
        const int name = numberAt(segment, componentsAt + i * componentBytes, 1);
        components.push_back({name, qint64(sampling.across) * sampling.down});
    }
    const auto units = [](int side, int factor) {
        return (side + factor * blockSide - 1) / (factor * blockSide);
    };
    const qint64 all = qint64(units(pixels.width(), most.across)) * units(pixels.height(), most.down);
    for (Component& component : components)
        component.blocks *= all;
    return components;
}

/** Walks over the markers as the decoder does: segments are passed over, what lies between them is searched.
 */
class MarkerWalk {
public:
    std::optional<JpegFrame> run(const QByteArray& file)
    {
        const std::string_view view(file.constData(), std::size_t(file.size()));
        for (qint64 at = nextCode(view, 0); at < file.size(); at = nextCode(view, at)) {
            const auto marker = quint8(file.at(int(at++)));
            if (marker == endOfImage)
                break;
            if (!hasSegment(marker))
                continue;
            const int length = std::max(numberAt(file, at, lengthBytes), lengthBytes);
            take(marker, bytesAt(file, at + lengthBytes, length - lengthBytes));
            at = std::min<qint64>(at + length, file.size());
        }
        return m_hasFrame && m_frame.scans > 0 ? std::optional(m_frame) : std::nullopt;
    }

private:
    void take(quint8 marker, const QByteArray& segment)
    {
        if (marker == startOfScan)
            takeScan(segment);
        else if (const FrameKind* kind = frameKind(marker))
            takeFrame(*kind, segment);
    }

    void takeFrame(const FrameKind& kind, const QByteArray& segment)
    {
        if (std::exchange(m_hasFrame, true))
            return; // the decoder gives up
        m_frame.pixels = QSize(numberAt(segment, widthAt, 2), numberAt(segment, heightAt, 2));
        m_components = componentsOf(segment, m_frame.pixels);
        for (const Component& component : m_components)
            m_frame.blocks += component.blocks;
        m_frame.holdsCoefficients = kind.isProgressive;
        m_frame.isArithmetic = kind.isArithmetic;
    }

    void takeScan(const QByteArray& segment)
    {
        const int count = numberAt(segment, 0, 1);
        for (int i = 0; i < count; ++i)
            m_frame.visits += blocksOf(numberAt(segment, 1 + i * 2, 1));
        if (m_frame.scans++ == 0 && count < int(m_components.size()))
            m_frame.holdsCoefficients = true;
    }

    qint64 blocksOf(int name) const
    {
        const auto component = std::find_if(m_components.begin(), m_components.end(),
                                            [name](const Component& one) { return one.name == name; });
        return component == m_components.end() ? 0 : component->blocks; // the decoder gives up
    }

    JpegFrame m_frame;
    bool m_hasFrame = false;
    std::vector<Component> m_components;
};

} // namespace

std::optional<JpegFrame> jpegFrame(const QByteArray& file)
{
    return MarkerWalk().run(file);
}
