#pragma once

#include <QLabel>

#include <array>

/**
 * The eight-segment level meter of a screen's form.
 *
 * Each segment is a pair of labels in one place, the lit one over the unlit one: a segment is lit by showing
 * the upper label. It owns nothing and keeps no state, so it is made where it is needed. The form has labels
 * lbLevel1 to lbLevel8 and lbLevel1_2 to lbLevel8_2.
 */
class LevelMeter {
public:
    static constexpr int segments = 8;

    template <typename Form>
    explicit LevelMeter(const Form& form)
        : m_segments{{
            {form.lbLevel1, form.lbLevel1_2},
            {form.lbLevel2, form.lbLevel2_2},
            {form.lbLevel3, form.lbLevel3_2},
            {form.lbLevel4, form.lbLevel4_2},
            {form.lbLevel5, form.lbLevel5_2},
            {form.lbLevel6, form.lbLevel6_2},
            {form.lbLevel7, form.lbLevel7_2},
            {form.lbLevel8, form.lbLevel8_2},
        }}
    {
    }

    /** Shows all segments unlit. */
    void clear() const;

    /** Lights the segments 1 to `level` and no other. A level above 8 changes nothing. */
    void light(int level) const;

private:
    struct Segment {
        QLabel* unlit;
        QLabel* lit;
    };
    std::array<Segment, segments> m_segments;
};
