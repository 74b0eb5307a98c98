#include "tags/jpegcoefficients.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

using Block = JpegCoefficients::Block;

// Four coefficients are gone through at once, as the lanes of one number, and four bits say which are not
// zero.
constexpr int lanes = 4;
constexpr int groups = 64 / lanes;
constexpr quint64 lowBits = 0x0001000100010001;
constexpr quint64 belowSigns = 0x7FFF * lowBits;

/** The lowest bit of each lane, one beside the other, and back: a lane has 16 bits. */
constexpr quint64 gathered(quint64 lowest)
{
    return (lowest * (1ULL << 48U | 1ULL << 33U | 1ULL << 18U | 1ULL << 3U)) >> 48U & 0xFU;
}
constexpr quint64 spread(quint64 bits)
{
    return (bits * (1ULL | 1ULL << 15U | 1ULL << 30U | 1ULL << 45U)) & lowBits;
}
static_assert(gathered(spread(0b1010)) == 0b1010);

/** Of all but the first; most blocks have none. */
bool hasNone(const Block& block)
{
    static constexpr Block zeros;
    constexpr std::size_t bytes = sizeof zeros.coefficients - sizeof zeros.coefficients.front();
    return std::memcmp(&block.coefficients[1], &zeros.coefficients[1], bytes) == 0;
}

quint64 nonZeroOf(const Block& block)
{
    if (hasNone(block))
        return 0;
    quint64 flags = 0;
    for (int group = 0; group < groups; ++group) {
        quint64 four = 0;
        std::memcpy(&four, block.coefficients.data() + group * lanes, sizeof four);
        const quint64 highest = ((four & belowSigns) + belowSigns) | four;
        flags |= gathered(highest >> 15U & lowBits) << (group * lanes);
    }
    return flags;
}

void fill(Block& block, quint64 nonZero)
{
    block = Block();
    if (nonZero == 0)
        return;
    for (int group = 0; group < groups; ++group) {
        const quint64 four = spread(nonZero >> (group * lanes) & 0xFU);
        std::memcpy(block.coefficients.data() + group * lanes, &four, sizeof four);
    }
}

} // namespace

JpegCoefficients::JpegCoefficients(const std::vector<bool>& neededRows,
                                   const std::vector<bool>& neededColumns, std::size_t atOnce)
    : m_rows(numbered(neededRows))
    , m_columns(numbered(neededColumns))
    , m_kept(m_rows.needed * m_columns.needed)
    , m_nonZero(neededRows.size() * neededColumns.size())
    , m_first(m_nonZero.size())
    , m_unpacked(atOnce, std::vector<Block>(neededColumns.size()))
{
    for (std::size_t place = 0; place < atOnce; ++place)
        m_unpackedRow.push_back(place); // zeros, as all of them are
    for (std::size_t row = 0; row < neededRows.size() + atOnce; ++row)
        m_pointers.push_back(m_unpacked[row % atOnce].data());
}

JpegCoefficients::Numbers JpegCoefficients::numbered(const std::vector<bool>& needed)
{
    Numbers numbers;
    for (const bool is : needed)
        numbers.of.push_back(is ? int(numbers.needed++) : -1);
    return numbers;
}

Block* JpegCoefficients::keptBlock(std::size_t row, std::size_t column)
{
    const int y = m_rows.of[row];
    const int x = m_columns.of[column];
    return y < 0 || x < 0 ? nullptr : &m_kept[std::size_t(y) * m_columns.needed + std::size_t(x)];
}

void JpegCoefficients::pack(std::size_t row)
{
    const std::vector<Block>& blocks = m_unpacked[row % m_unpacked.size()];
    for (std::size_t column = 0; column < blocks.size(); ++column) {
        const std::size_t at = row * blocks.size() + column;
        m_first[at] = blocks[column].coefficients.front();
        if (Block* kept = keptBlock(row, column))
            *kept = blocks[column];
        else
            m_nonZero[at] = nonZeroOf(blocks[column]);
    }
}

void JpegCoefficients::unpack(std::size_t row)
{
    std::vector<Block>& blocks = m_unpacked[row % m_unpacked.size()];
    if (std::exchange(m_unpackedRow[row % m_unpacked.size()], row) == row)
        return;
    for (std::size_t column = 0; column < blocks.size(); ++column) {
        const std::size_t at = row * blocks.size() + column;
        if (const Block* kept = keptBlock(row, column))
            blocks[column] = *kept;
        else
            fill(blocks[column], m_nonZero[at]);
        blocks[column].coefficients.front() = m_first[at];
    }
}

Block* const* JpegCoefficients::rows(std::size_t first, std::size_t count)
{
    for (; m_written > 0; --m_written)
        pack(m_writtenAt++);
    for (std::size_t row = first; row < std::min(first + count, m_rows.of.size()); ++row)
        unpack(row);
    return &m_pointers[first];
}

/** The decoder sometimes reads rows behind those that it asked for. */
Block* const* JpegCoefficients::rowsToRead(std::size_t first)
{
    return rows(first, m_unpacked.size());
}

Block* const* JpegCoefficients::rowsToWrite(std::size_t first, std::size_t count)
{
    Block* const* const toWrite = rows(first, count);
    m_writtenAt = first;
    m_written = count;
    return toWrite;
}
