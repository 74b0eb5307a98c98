#pragma once

#include <QByteArray>

/**
 * Where standard error is the journal's stream, gives every line of the debug stream its priority and leaves
 * the colours out from now on. On a terminal, in a pipe or in a file everything stays as it is.
 */
void speakToJournal();

/** While one lives, every line is information to the journal, whatever its level. */
class JournalInformation {
public:
    JournalInformation();
    ~JournalInformation();
    JournalInformation(const JournalInformation&) = delete;
    JournalInformation& operator=(const JournalInformation&) = delete;
};

/**
 * A line for operators that only the journal gets: who came, who had to go. The log elsewhere says what it
 * always said, line by line. `notable` ones are warnings there.
 */
void noteInJournal(const QByteArray& text, bool notable = false);
