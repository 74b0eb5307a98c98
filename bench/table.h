#pragma once

#include <string>
#include <vector>

/** What a row must hold, if anything. */
struct Mark {
    enum Kind {
        Reported, ///< nothing
        AtMostTimes, ///< at most `limit` times the other side
        AtMostMore, ///< at most `limit` more than the other side
        Faster, ///< the other side takes at least `limit` times as long
    };

    Kind kind = Reported;
    double limit = 0;

    bool holds(double ours, double other) const;
    std::string text() const;
};

constexpr Mark reported = {};
constexpr Mark atMostTimes(double limit)
{
    return {Mark::AtMostTimes, limit};
}
constexpr Mark atMostMore(double limit)
{
    return {Mark::AtMostMore, limit};
}
constexpr Mark timesFaster(double limit)
{
    return {Mark::Faster, limit};
}

/** The result of the benchmark: a row a figure, both sides measured in the same run, in one unit. */
class Table {
public:
    void add(const std::string& name, const char* unit, double ours, double other, Mark mark = reported);
    /** A figure without another side. */
    void add(const std::string& name, const char* unit, double ours);
    /** A row that cannot be measured here, and why. */
    void leaveOut(const std::string& name, const std::string& reason);
    void print() const;

private:
    using Cells = std::vector<std::string>;
    std::vector<Cells> m_rows = {{"row", "unit", "ours", "other side", "ratio", "mark", "held"}};
};
