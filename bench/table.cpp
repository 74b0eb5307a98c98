#include "bench/table.h"

#include <algorithm>
#include <cstdio>

namespace {

/** About three significant digits. */
std::string numberText(double number)
{
    char text[32];
    const int decimals = number >= 100 || number == 0 ? 0 : number >= 10 ? 1 : number >= 0.1 ? 2 : 4;
    std::snprintf(text, sizeof text, "%.*f", decimals, number);
    return text;
}

std::string padded(const std::string& text, std::size_t width)
{
    return text + std::string(width - std::min(width, text.size()), ' ');
}

} // namespace

bool Mark::holds(double ours, double other) const
{
    switch (kind) {
    case AtMostTimes:
        return ours <= limit * other;
    case AtMostMore:
        return ours <= limit + other;
    case Faster:
        return ours * limit <= other;
    case Reported:
        break;
    }
    return true;
}

std::string Mark::text() const
{
    const std::string number = numberText(limit);
    switch (kind) {
    case AtMostTimes:
        return "<= " + number + "x";
    case AtMostMore:
        return "<= +" + number;
    case Faster:
        return "<= 1/" + number;
    case Reported:
        break;
    }
    return "reported";
}

void Table::add(const std::string& name, const char* unit, double ours, double other, Mark mark)
{
    const std::string ratio = other > 0 ? numberText(ours / other) : "-";
    const char* held = mark.kind == Mark::Reported ? "-" : mark.holds(ours, other) ? "yes" : "NO";
    m_rows.push_back({name, unit, numberText(ours), numberText(other), ratio, mark.text(), held});
}

void Table::add(const std::string& name, const char* unit, double ours)
{
    m_rows.push_back({name, unit, numberText(ours), "-", "-", reported.text(), "-"});
}

void Table::leaveOut(const std::string& name, const std::string& reason)
{
    m_rows.push_back({name, "-", "-", "-", "-", reason, "-"});
}

void Table::print() const
{
    std::vector<std::size_t> widths(m_rows.front().size());
    for (const Cells& row : m_rows) {
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], row[i].size());
    }
    const auto printRow = [&widths](const Cells& row) {
        std::string line = "|";
        for (std::size_t i = 0; i < row.size(); ++i)
            line += ' ' + padded(row[i], widths[i]) + " |";
        std::puts(line.c_str());
    };
    printRow(m_rows.front());
    std::string rule = "|";
    for (const std::size_t width : widths)
        rule += std::string(width + 2, '-') + '|';
    std::puts(rule.c_str());
    std::for_each(m_rows.begin() + 1, m_rows.end(), printRow);
}
