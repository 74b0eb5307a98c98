#pragma once

class QProcess;

/**
 * Waits for a program to end, for so many milliseconds at most, while the service manager goes on hearing
 * that the panel lives. True when it has ended, or never started.
 */
bool waitAlive(QProcess& program, int ms);
