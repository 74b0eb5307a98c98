#pragma once

#include <QtGlobal>

#include <array>
#include <cstddef>
#include <vector>

/**
 * The coefficients of one colour of a JPEG that comes in several scans, most of them packed. A block that
 * is needed keeps all of its 64. Of any other this keeps the first, which smooths its neighbours in a picture
 * that broke off, and which of them are not zero, as that decides what the bits of a later scan mean.
 */
class JpegCoefficients {
public:
    /** Aligned as the decoder's vector instructions need it. */
    struct alignas(32) Block {
        std::array<qint16, 64> coefficients = {};
    };

    /** What a packed block takes. */
    static constexpr int packedBytes = sizeof(quint64) + sizeof(qint16);

    /**
     * As many rows and columns of blocks, of zeros; a block is needed where its row and its column are.
     * `atOnce` rows are unpacked at any time.
     */
    JpegCoefficients(const std::vector<bool>& neededRows, const std::vector<bool>& neededColumns,
                     std::size_t atOnce);

    /** Some rows of blocks, from `first` on, to be read; valid until the next call. */
    Block* const* rowsToRead(std::size_t first);

    /** The same with `count` of them to be written, which the next call keeps. */
    Block* const* rowsToWrite(std::size_t first, std::size_t count);

private:
    /** Of each row or column its number among the needed ones, or -1. */
    struct Numbers {
        std::vector<int> of;
        std::size_t needed = 0;
    };
    static Numbers numbered(const std::vector<bool>& needed);

    Block* keptBlock(std::size_t row, std::size_t column);
    void pack(std::size_t row);
    void unpack(std::size_t row);
    Block* const* rows(std::size_t first, std::size_t count);

    Numbers m_rows;
    Numbers m_columns;
    std::vector<Block> m_kept;
    std::vector<quint64> m_nonZero; ///< of each block a bit for each coefficient
    std::vector<qint16> m_first;
    std::vector<std::vector<Block>> m_unpacked; ///< each row has its place, which it shares with others
    std::vector<std::size_t> m_unpackedRow; ///< of each place
    std::vector<Block*> m_pointers; ///< of each row to its place
    std::size_t m_writtenAt = 0;
    std::size_t m_written = 0;
};
