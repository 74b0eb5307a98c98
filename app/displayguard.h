#pragma once

/**
 * Ends the program with one clear line and status 1 where no display can be had, while the application object
 * is made; by itself the toolkit aborts, or finds no screen and aborts when the first window is made.
 *
 * Make one before the application object and release it after. What the toolkit warns of in between is
 * printed on release as always.
 */
class DisplayGuard {
public:
    /** `name`, the program's, begins the line, and `advice` ends it. */
    explicit DisplayGuard(const char* name, const char* advice = "");
    ~DisplayGuard();
    DisplayGuard(const DisplayGuard&) = delete;
    DisplayGuard& operator=(const DisplayGuard&) = delete;

    /** To be called when the application object stands. */
    void release();
};
