#pragma once

#include <QTimer>

#include <cstdint>

class PictureFlowState;

/**
 * Moves the strip of a PictureFlowState to another slide, one update() every 150 ms.
 *
 * Idle: step 0, timer stopped. Moving: step 1 (to the right in the list) or -1, timer running. While it
 * moves, start() only sets another target. The strip runs about half a slide an update when far from its
 * target and slows down near it. Without a state nothing moves.
 */
class PictureFlowAnimator {
public:
    explicit PictureFlowAnimator(PictureFlowState* flowState);

    void start(int slide);
    void stop(int slide);
    void update();

    PictureFlowState* state;
    int target = 0; ///< the slide to reach
    int step = 0;
    std::int64_t frame = 0; ///< slide index times 65536 plus the fraction of the move; 64 bits hold any index
    QTimer animateTimer;

private:
    void advanceFrame();
    void moveCenterSlide(int tick);
    void moveSideSlides(int tick);
    void moveNeighbour(int pos);
    void turnAround(int index);
    void fadeEnds(int pos);
};
