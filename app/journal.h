#pragma once

/**
 * Where standard error is the journal's stream, gives every line of the debug stream its priority and leaves
 * the colours out from now on. On a terminal, in a pipe or in a file everything stays as it is.
 */
void speakToJournal();
