#pragma once

#include <QString>

#include <random>

/** Texts by chance, the same ones in every run. */
class RandomTexts {
public:
    explicit RandomTexts(unsigned seed)
        : m_random(seed)
    {
    }

    int below(int bound) { return int(m_random() % unsigned(bound)); }

    QString of(const QString& characters, int length)
    {
        QString text;
        for (int i = 0; i < length; ++i)
            text += characters.at(below(int(characters.size())));
        return text;
    }

    QString ofAnyUnits(int length)
    {
        QString text;
        for (int i = 0; i < length; ++i)
            text += QChar(ushort(below(0x10000)));
        return text;
    }

private:
    std::mt19937 m_random;
};
